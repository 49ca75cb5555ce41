"""Runs programs and tells what they cost."""
import os
import statistics
import subprocess
from dataclasses import dataclass


@dataclass
class Cost:
    seconds: float  # processor time, user and system
    peak: int  # bytes; what the measuring process itself held (some 10 MB) is the least that shows


def run_once(command, output=os.devnull, errors=os.devnull):
    """One run of a command, its standard output to a file."""
    with open(output, "wb") as out, open(errors, "wb") as err:
        process = subprocess.Popen(command, stdout=out, stderr=err)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise SystemExit(f"bench: {' '.join(map(str, command))} failed ({process.returncode})")
    return Cost(usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024)


def run_in_turn(commands, rounds, output):
    """Medians of each command's costs. In every round each runs once, so that what the machine does beside hits all
    alike; rounds maps a name to how many rounds it takes part in."""
    costs = {name: [] for name in commands}
    for turn in range(max(rounds.values())):
        for name, command in commands.items():
            if turn < rounds[name]:
                costs[name].append(run_once(command, output))
    return {name: Cost(statistics.median(cost.seconds for cost in each), max(cost.peak for cost in each))
            for name, each in costs.items()}
