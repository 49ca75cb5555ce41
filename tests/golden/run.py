#!/usr/bin/env python3
"""Runs the program on golden cases and on the worked examples of the documents, and compares what it prints.

usage: run.py --chmon PROGRAM [--floor N] [--write] CASES-FOLDER|DOCUMENT.md ...

A case is a folder, at any depth, that holds a file `command`: one command line of chmon per line, quoted as in a shell,
without the program's name (NAME=VALUE before it gives environment; "< FILE" at its end standard input, and "<<< TEXT"
the rest of the line as standard input, \\n, \\x and the like replaced; lines with # are remarks). They run one after the
other in a scratch copy of the folder, in which `examples` and `shared` lead to the examples and to tests/golden/shared.

    expected        what they print on standard output, all together; without it they must print nothing
    expected-error  the same for standard error
    status          exit statuses, one per command; without it all are 0

A worked example of a document is a fenced block that begins with "$ ". "$ cat FILE" defines a file for the examples that
follow; "$ chmon ..." is run and must print, on both outputs together, what follows it, and end with the status that
goes with an error as its last line, or with none. A line that holds nothing but "..." stands for any number of lines.

What differs from run to run, times and in the plug-in's reports a context's address and the source line, is not compared.

--write writes expected, expected-error and status of failing cases anew: read the difference before you keep it.
"""

import argparse
import difflib
import itertools
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
OWN_FILES = {"command", "expected", "expected-error", "status"}
TIME_LIMIT = 120  # seconds a command may take, sanitizers and a busy machine included


def environment():
    """The caller's, without what would make the program look elsewhere."""
    kept = {name: value for name, value in os.environ.items() if not name.startswith("CHMON_")}
    return {**kept, "LC_ALL": "C.UTF-8", "COLUMNS": "80"}


def make_scratch(folder, into):
    for item in folder.iterdir() if folder else []:
        if item.name not in OWN_FILES:
            (shutil.copytree if item.is_dir() else shutil.copy2)(item, into / item.name)
    (into / "examples").symlink_to(ROOT / "examples")
    (into / "shared").symlink_to(ROOT / "tests" / "golden" / "shared")


def run_line(program, line, scratch, error):
    """Runs one command line; `error` is where its standard error goes. Returns status, output, error."""
    line, _, text = line.partition(" <<< ")
    words = shlex.split(line)
    variables = dict(word.split("=", 1) for word in itertools.takewhile(lambda word: re.match(r"[A-Z_]+=", word), words))
    words = words[len(variables) :]
    source = text.encode().decode("unicode_escape").encode("latin-1")
    if len(words) > 1 and words[-2] == "<":
        source = (scratch / words[-1]).read_bytes()
        words = words[:-2]
    done = subprocess.run([program, *words], cwd=scratch, env={**environment(), **variables}, input=source,
                          stdout=subprocess.PIPE, stderr=error, timeout=TIME_LIMIT, check=False)
    decode = lambda data: (data or b"").decode("utf-8", "backslashreplace")
    return done.returncode, decode(done.stdout), decode(done.stderr)


def read(path):
    return path.read_text() if path.exists() else ""


def steady(text):
    """The text without what differs from run to run."""
    text = re.sub(r"(:\d+ )?ctx=0x[0-9a-f]+", lambda found: (":LINE " if found[1] else "") + "ctx=CONTEXT", text)
    return re.sub(r"[\d.]+ us\b", "TIME us", text)


def difference(what, wanted, got):
    return "".join(difflib.unified_diff(wanted.splitlines(True), got.splitlines(True), f"{what} wanted", f"{what} got"))


def run_case(program, folder, write):
    """Returns what is wrong, empty when nothing is."""
    commands = [line for line in read(folder / "command").splitlines() if line.strip() and not line.startswith("#")]
    wanted_status = [int(word) for word in read(folder / "status").split()] or [0] * len(commands)
    output, error, status = "", "", []
    with tempfile.TemporaryDirectory() as name:
        make_scratch(folder, pathlib.Path(name))
        for line in commands:
            code, printed, complaint = run_line(program, line, pathlib.Path(name), subprocess.PIPE)
            output, error, status = output + printed, error + steady(complaint), status + [code]
    faults = "" if status == wanted_status else f"status wanted {wanted_status}, got {status}\n"
    for file, got in (("expected", output), ("expected-error", error)):
        faults += difference(file, read(folder / file), got)
    if faults and write:
        for file, text in (("expected", output), ("expected-error", error), ("status", " ".join(map(str, status)) + "\n")):
            empty = not any(status) if file == "status" else not text
            (folder / file).unlink(missing_ok=True) if empty else (folder / file).write_text(text)
    return faults


def document_blocks(path):
    """The document's worked examples: pairs of line number and lines."""
    text = path.read_text()
    for block in re.finditer(r"^```.*\n((?:.*\n)*?)```", text, re.MULTILINE):
        if block[1].startswith("$ "):
            yield text.count("\n", 0, block.start(1)) + 1, block[1].splitlines()


def block_matches(wanted, got):
    """Whether lines match, where a wanted line of three dots stands for any number of them."""
    pattern = "".join(r"(?:.*\n)*?" if line == "..." else re.escape(line + "\n") for line in wanted)
    return re.fullmatch(pattern, "".join(line + "\n" for line in got)) is not None


def run_block(program, block, scratch):
    """Yields (command line, what is wrong) of each command of the block."""
    starts = [i for i, line in enumerate(block) if line.startswith("$ ")] + [len(block)]
    for start, end in zip(starts, starts[1:]):
        line, wanted = block[start][2:], block[start + 1 : end]
        program_name, _, rest = line.partition(" ")
        if program_name == "cat" and not (scratch / rest).exists():
            (scratch / rest).write_text("".join(text + "\n" for text in wanted))
            continue
        if program_name == "cat":
            got = (scratch / rest).read_text()
        elif program_name == "chmon":
            status, got, _ = run_line(program, rest, scratch, subprocess.STDOUT)
            complaint = got.splitlines()[-1] if got else ""
            told = 2 if complaint.endswith("see chmon --help") else 1 if complaint.startswith("chmon: ") else 0
            got += "" if status == told else f"exit status {status}, not {told}\n"
        else:
            got = "neither chmon nor cat FILE\n"
        wanted, got = steady("".join(text + "\n" for text in wanted)), steady(got)
        yield line, "" if block_matches(wanted.splitlines(), got.splitlines()) else difference("output", wanted, got)


def results(program, places, write):
    """Yields (place, what is wrong) of each case and of each worked example."""
    for place in places:
        if place.suffix != ".md":
            for command in sorted(place.rglob("command")):
                yield str(command.parent), run_case(program, command.parent, write)
            continue
        with tempfile.TemporaryDirectory() as name:
            scratch = pathlib.Path(name)
            make_scratch(None, scratch)
            for number, block in document_blocks(place):
                for line, fault in run_block(program, block, scratch):
                    yield f"{place}:{number}: {line}", fault


def main():
    arguments = argparse.ArgumentParser(usage=__doc__.splitlines()[2][len("usage: ") :])
    arguments.add_argument("--chmon", required=True)
    arguments.add_argument("--floor", type=int, default=1, help="fail when fewer cases ran")
    arguments.add_argument("--write", action="store_true")
    arguments.add_argument("places", type=pathlib.Path, nargs="+")
    given = arguments.parse_args()
    program = str(pathlib.Path(given.chmon).resolve())
    ran = failed = 0
    for place, fault in results(program, given.places, given.write):
        ran += 1
        if fault:
            failed += 1
            print(f"FAILED {place}\n{fault}")
    print(f"cases={ran} failed={failed} floor={given.floor}")
    if failed:
        print("repeat with: tests/golden/run.py --chmon", given.chmon, "CASE-FOLDER|DOCUMENT")
    return 1 if failed or ran < given.floor else 0


sys.exit(main())
