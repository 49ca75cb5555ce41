#!/usr/bin/env python3
"""The program at its limits: documents of 500 levels and more on a small stack, files that may not grow, and standard
streams that are closed, whose places no file of the device may take.

usage: limits.py --chmon PROGRAM [--stack BYTES]

Whatever happens, it is status 0 or 1 and at most one line of error, and the device is as it was.
"""

import argparse
import os
import pathlib
import resource
import subprocess
import sys
import tempfile

EXAMPLES = pathlib.Path(__file__).resolve().parent.parent.parent / "examples"
MODELS = {  # top container: namespace, module, elements that are repeated below it
    "channel-monitors": ("http://openconfig.net/yang/channel-monitor", "openconfig-channel-monitor",
                         (["x"], ["channel-monitor"], ["channel-monitor", "name"], ["channel-monitor", "config"])),
    "interface-configurations": ("urn:vantra:talin:ifmgr-cfg", "Vantra-TALIN-ifmgr-cfg",
                                 (["x"], ["interface-configuration"], ["interface-configuration", "description"])),
    "ots-oper": ("urn:vantra:talin:controller-kestrel-ots-oper", "Vantra-TALIN-controller-kestrel-ots-oper",
                 (["ots-ports", "ots-port", "ots-spectrum-info"],)),
}
NATIVE = ("interface-configurations", "ots-oper")
WAYS = [(f"map --inventory {EXAMPLES}/device/inventory.json", NATIVE), ("load", NATIVE), ("edit", ("channel-monitors",))]
WAYS += [(way, ("channel-monitors",)) for way in ("plan", "plan --kind 1", "get --filter")]


def deep_xml(top, inner, levels):
    tags = [top] + [inner[i % len(inner)] for i in range(levels - 1)]
    opening = "".join(f"<{tag}>" for tag in tags).replace(">", f' xmlns="{MODELS[top][0]}">', 1)
    return opening + "".join(f"</{tag}>" for tag in reversed(tags))


def deep_json(top, inner, levels):
    tags = [f"{MODELS[top][1]}:{top}"] + [inner[i % len(inner)] for i in range(levels - 1)]
    return "".join('{"%s":' % tag for tag in tags) + "{}" + "}" * levels


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("--chmon", required=True)
    arguments.add_argument("--stack", type=int, default=256 << 10)
    given = arguments.parse_args()
    program = str(pathlib.Path(given.chmon).resolve())
    faults, ran = [], 0

    def run(line, limit=resource.RLIMIT_STACK, size=given.stack, closed=()):
        def prepare():
            resource.setrlimit(limit, (size, size))
            for stream in closed:
                os.close(stream)

        return subprocess.run([program, "--device", "device", *line.split()], capture_output=True, check=False,
                              errors="backslashreplace", preexec_fn=prepare)

    def expect(what, done, statuses, part=""):
        nonlocal ran
        ran += 1
        lines = [line for line in done.stderr.splitlines() if not line.startswith("note: ")]
        if done.returncode not in statuses or len(lines) != done.returncode or (done.returncode and part not in lines[0]):
            faults.append(f"{what}: status {done.returncode}, {done.stderr[:500]}")

    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        expect("init", run("init"), {0})
        expect("load", run(f"load {EXAMPLES}/device/inventory.json {EXAMPLES}/device/interfaces.xml"), {0})
        before = run("native").stdout
        for way, tops in WAYS:
            refusal = "" if way == "load" else "500 levels"  # load's judge stops at the first element out of place
            for top, inner in ((top, inner) for top in tops for inner in MODELS[top][2]):
                for name, make in (("deep.xml", deep_xml), ("deep.json", deep_json)):
                    for levels in (500, 501, 100000) if inner == MODELS[top][2][0] else (500,):
                        pathlib.Path(name).write_text(make(top, inner, levels))
                        too_deep = levels > 500
                        expect(f"{way} {name}, {inner} {levels} levels deep", run(f"{way} {name}"),
                               {1} if too_deep else {0, 1}, refusal if too_deep else "")
        for piece in ("<a>", "[", '{"m:a":', '{"m:a":[', '{"m:a":{"@":'):
            pathlib.Path("torn").write_text(piece * 100000)
            expect(f"plan, 100000 times {piece}", run("plan --kind 1 torn"), {1})
        for line in (f"load {EXAMPLES}/device/ots-oper.xml", f"edit {EXAMPLES}/requests/edit-add.xml"):
            for size in (1 << 10, 8 << 10, 24 << 10):
                expect(f"{line}, files of {size} bytes", run(line, resource.RLIMIT_FSIZE, size), {1}, "cannot write")
        loading = f"load {EXAMPLES}/device/interfaces.xml"
        for line, closed, statuses, part in (("plan -", (0,), {1}, "standard input: cannot read"),
                                             (loading, (1,), {1}, "cannot write; the documents are stored"),
                                             (loading, (0, 1), {1}, "cannot write"), ("get --stats", (2,), {0}, "")):
            expect(f"{line}, streams {closed} closed", run(line, closed=closed), statuses, part)
        if run("native").stdout != before or not before:
            faults.append("the device changed")
        expect("edit", run(f"edit {EXAMPLES}/requests/edit-add.xml"), {0})
    print("\n".join(faults + [f"runs={ran} failed={len(faults)}"]))
    return 1 if faults or ran < 70 else 0


sys.exit(main())
