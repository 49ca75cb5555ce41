"""What is measured, part by part."""
import json
import subprocess
import sys

import callgrind
import programs
from measure import run_in_turn, run_once
from programs import FLOOR, OURS

MONITORS = 6
SMALL, LARGE, MILLION = 768, 16384, 170667  # slices of one monitor


class Bench:
    def __init__(self, build, full):
        self.build = build
        self.full = full
        self.data = build / "bench-data"
        self.data.mkdir(exist_ok=True)
        self.sizes = [SMALL, LARGE] + ([MILLION] if full else [])
        self.output = self.data / "output"

    def make_data(self, slices):
        if not programs.document_of(self.data, slices, "json").exists():
            script = programs.ROOT / "examples" / "make-device.py"
            command = [sys.executable, script, "--slices", str(slices), "--out", self.data / str(slices)]
            subprocess.run(command, check=True)

    def rounds(self, name):
        if name in programs.SLOW:
            return 5 if self.full else 2
        return 15 if self.full else 7


def heading(text):
    print(f"\n{text}", flush=True)


def verdict(met):
    return "met" if met else "MISSED"


def per_slice(seconds, slices):
    return f"{seconds * 1e6 / (MONITORS * slices):8.2f} us"


# ---- whole documents -------------------------------------------------------------------------------------------------

def check_same(bench, commands, form):
    """All must write the same document before any of them is timed."""
    expected = bench.data / f"expected.{form}"
    run_once(commands[OURS], expected)
    for name, command in commands.items():
        run_once(command, bench.output)
        # In a process of its own: what this one holds would show in the programs' peaks.
        judge = [sys.executable, programs.ROOT / "bench/same_document.py", expected, bench.output]
        if subprocess.run(judge, check=False).returncode != 0:
            raise SystemExit(f"bench: {name} writes another document than {OURS} ({form})")
    print(f"  {len(commands)} programs write the same {form} document ({expected.stat().st_size} bytes)")


def ratio_line(name, cost, base, slices):
    line = f"  {name:16}{per_slice(cost.seconds, slices)} {cost.peak / 1e6:7.0f} MB"
    ratio = cost.seconds / base.seconds
    if name == OURS:
        return line
    if name == FLOOR:
        return f"{line}   ours / it {1 / ratio:5.1f}   goal <= {programs.FLOOR_GOAL}: " \
               f"{verdict(1 / ratio <= programs.FLOOR_GOAL)}"
    return f"{line}   it / ours {ratio:5.1f}   goal >= {programs.GOALS[name]}: " \
           f"{verdict(ratio >= programs.GOALS[name])}"


def documents(bench):
    for form in ("xml", "json"):
        heading(f"Whole document, {form}, {MONITORS * LARGE} slices: processor time of the process, peak memory")
        check_same(bench, programs.all_programs(bench.build, bench.data, SMALL, form), form)
        commands = programs.all_programs(bench.build, bench.data, LARGE, form)
        costs = run_in_turn(commands, {name: bench.rounds(name) for name in commands}, bench.output)
        for name, cost in costs.items():
            print(ratio_line(name, cost, costs[OURS], LARGE))


# ---- in memory -------------------------------------------------------------------------------------------------------

def mapping_times(bench, slices, names, repetitions):
    """Median processor seconds of one mapping, by Google Benchmark."""
    command = [bench.build / "bin/mapping_bench", programs.document_of(bench.data, slices, "xml"), programs.YANG,
               f"--benchmark_filter=^({'|'.join(names)})$", f"--benchmark_repetitions={repetitions}",
               "--benchmark_enable_random_interleaving=true", "--benchmark_min_time=0.2", "--benchmark_format=json"]
    report = json.loads(subprocess.run(command, check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout)
    medians = [run for run in report["benchmarks"] if run.get("aggregate_name", "median") == "median"]
    return {run["run_name"].partition("/")[0]: run["cpu_time"] / 1e3 for run in medians}


def memory(bench):
    heading(f"Mapping in memory, tree to tree, {MONITORS * LARGE} slices, new memory each time: processor time")
    times = mapping_times(bench, LARGE, ["ours", "ours_unpacked", "structs", "containers", "pugixml",
                                          "libyang_typed"], 15 if bench.full else 5)
    times.update(mapping_times(bench, SMALL if not bench.full else LARGE, ["libyang_natural"], 2))
    if not bench.full:
        times["libyang_natural"] *= LARGE / SMALL
    goals = {"pugixml": 2, "libyang_typed": 10}
    for name, seconds in times.items():
        line = f"  {name:16}{per_slice(seconds, LARGE)}"
        if name == "structs":
            ratio = times["ours"] / seconds
            line += f"   ours / it {ratio:5.1f}   goal <= 5: {verdict(ratio <= 5)}"
        elif not name.startswith("ours"):
            ratio = seconds / times["ours"]
            line += f"   it / ours {ratio:5.1f}"
            line += f"   goal >= {goals[name]}: {verdict(ratio >= goals[name])}" if name in goals else ""
        print(line)


# ---- growth ----------------------------------------------------------------------------------------------------------

def growth(bench):
    heading("Growth")
    base = None
    for slices in bench.sizes:
        seconds = mapping_times(bench, slices, ["ours"], 5)["ours"]
        base = base or seconds / slices
        ratio = seconds / slices / base
        print(f"  in memory {MONITORS * slices:8} slices {per_slice(seconds, slices)}   {ratio:4.2f} x the first   "
              f"goal <= 1.15: {verdict(ratio <= 1.15)}")
    for form in ("xml", "json"):
        for slices in bench.sizes:
            commands = {OURS: programs.ours(bench.build, bench.data, slices, form)}
            if form == "xml":
                commands["pugixml"] = programs.all_programs(bench.build, bench.data, slices, form)["pugixml"]
            costs = run_in_turn(commands, dict.fromkeys(commands, 3), bench.output)
            for name, cost in costs.items():
                print(f"  {form:5}{name:10}{MONITORS * slices:8} slices {per_slice(cost.seconds, slices)}   peak "
                      f"{cost.peak / 1e6:6.0f} MB, {cost.peak / (MONITORS * slices):6.0f} bytes a slice")


# ---- the plug-in's own share -----------------------------------------------------------------------------------------

def share(bench):
    heading("The plug-in's own share, framework operations that do nothing: instructions a slice (callgrind)")
    program = [bench.build / "bin/plugin_share"]
    counts = json.loads(subprocess.run([*program, "1000"], check=True, stdout=subprocess.PIPE).stdout)
    costs = callgrind.per_item(program, bench.data / "callgrind.out", 100, 1100)
    own = {function: cost for (place, function), cost in costs.items() if "liboc-chmon" in place and cost > 0.5}
    for function, cost in sorted(own.items(), key=lambda item: -item[1]):
        print(f"  {cost:6.0f}  {function}")
    total = sum(own.values())
    kept = json.loads((programs.ROOT / "bench/plugin-share.json").read_text())["instructions_per_slice"]
    print(f"  {total:6.0f}  in all; bench/plugin-share.json has {kept}: {'same' if abs(total / kept - 1) < 0.05 else 'CHANGED'}")
    libc = sum(cost for (place, _), cost in costs.items() if "libc.so" in place)
    print(f"  {libc:6.0f}  in the C library, for it and for the operations that compare and copy")
    print(f"  {counts['reports_asked'] / 1000:6.0f}  reports asked for, {counts['paths_added'] / 1000:.0f} paths added, "
          f"{counts['heap_calls']} heap calls")
    report, tests = (sum(cost for (_, function), cost in costs.items() if function == wanted)
                     for wanted in ("one_report", "two_tests"))
    print(f"  {report:6.0f}  for a report that nobody wants; its two tests alone: {tests:.0f}   "
          f"goal: no more: {verdict(report <= tests)}")


# ---- reads of a device -----------------------------------------------------------------------------------------------

FILTER = """<channel-monitors xmlns="http://openconfig.net/yang/channel-monitor">
  <channel-monitor><name>0/2-CHMON-PRE</name></channel-monitor></channel-monitors>"""


def get(bench):
    heading(f"chmon get of a loaded device and chmon map of the same data, {MONITORS * LARGE} slices")
    chmon = bench.build / "bin/chmon"
    device = bench.data / "loaded-device"
    source = programs.device_folder(bench.data, LARGE)
    if not device.exists():
        run_once([chmon, "--device", device, "init"])
        run_once([chmon, "--device", device, "load", source / "inventory.json", source / "ots-oper.json"])
    one = bench.data / "one-monitor.xml"
    one.write_text(FILTER)
    commands = {}
    for form in ("xml", "json"):
        commands[f"map {form}"] = programs.ours(bench.build, bench.data, LARGE, form)
        commands[f"get {form}"] = [chmon, "--device", device, "get", "--format", form]
    commands["get one"] = [chmon, "--device", device, "get", "--filter", one]
    commands["get config"] = [chmon, "--device", device, "get", "--config"]
    costs = run_in_turn(commands, dict.fromkeys(commands, bench.rounds(OURS)), bench.output)
    for name, cost in costs.items():
        print(f"  {name:12}{cost.seconds * 1e3:7.1f} ms {cost.peak / 1e6:6.0f} MB")
    for form in ("xml", "json"):
        ratio = costs[f"map {form}"].seconds / costs[f"get {form}"].seconds
        print(f"  map / get, {form}: {ratio:.2f}   goal > 1: {verdict(ratio > 1)}")
    # What every start of the program costs is in both: a get of the configuration, of which there is none, is that.
    start = costs["get config"].seconds
    part = (costs["get one"].seconds - start) / (costs["get xml"].seconds - start)
    print(f"  one monitor of six / all: {part:.3f}   goal: a sixth, {1 / 6:.3f}")


# ---- logs ------------------------------------------------------------------------------------------------------------

def logs(bench):
    heading("Logs on, written to a file: chmon map, xml")
    for slices in (SMALL, 4 * SMALL):
        bench.make_data(slices)
        for options in ([], ["--log", "trc"], ["--trace"]):
            command = programs.ours(bench.build, bench.data, slices, "xml", *options)
            seconds = min(run_once(command, bench.output, bench.data / "log").seconds for _ in range(3))
            print(f"  {' '.join(options) or 'off':10}{MONITORS * slices:7} slices {per_slice(seconds, slices)}   "
                  f"{(bench.data / 'log').stat().st_size / (MONITORS * slices):6.0f} bytes of log a slice")


ALL = {"documents": documents, "memory": memory, "growth": growth, "share": share, "get": get, "logs": logs}
