"""What is measured, part by part."""
import json
import subprocess
import sys

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
    times = mapping_times(bench, LARGE, ["ours", "structs", "containers", "pugixml", "libyang_typed"],
                          15 if bench.full else 5)
    times.update(mapping_times(bench, SMALL if not bench.full else LARGE, ["libyang_natural"], 2))
    if not bench.full:
        times["libyang_natural"] *= LARGE / SMALL
    goals = {"pugixml": 2, "libyang_typed": 10}
    for name, seconds in times.items():
        line = f"  {name:16}{per_slice(seconds, LARGE)}"
        if name == "structs":
            ratio = times["ours"] / seconds
            line += f"   ours / it {ratio:5.1f}   goal <= 5: {verdict(ratio <= 5)}"
        elif name != "ours":
            ratio = seconds / times["ours"]
            line += f"   it / ours {ratio:5.1f}"
            line += f"   goal >= {goals[name]}: {verdict(ratio >= goals[name])}" if name in goals else ""
        print(line)


# ---- growth ----------------------------------------------------------------------------------------------------------

def growth(bench):
    heading("Growth")
    base = None
    for slices in bench.sizes:
        seconds = mapping_times(bench, slices, ["ours"], 9)["ours"]
        base = base or seconds / slices
        ratio = seconds / slices / base
        print(f"  in memory {MONITORS * slices:8} slices {per_slice(seconds, slices)}   {ratio:4.2f} x the first   "
              f"goal <= 1.15: {verdict(ratio <= 1.15)}")
    for form in ("xml", "json"):
        for slices in bench.sizes:
            commands = {OURS: programs.ours(bench.build, bench.data, slices, form)}
            if form == "xml":
                commands["pugixml"] = programs.all_programs(bench.build, bench.data, slices, form)["pugixml"]
            costs = run_in_turn(commands, dict.fromkeys(commands, 5), bench.output)
            for name, cost in costs.items():
                print(f"  {form:5}{name:10}{MONITORS * slices:8} slices {per_slice(cost.seconds, slices)}   peak "
                      f"{cost.peak / 1e6:6.0f} MB, {cost.peak / (MONITORS * slices):6.0f} bytes a slice")


ALL = {"documents": documents, "memory": memory, "growth": growth}
