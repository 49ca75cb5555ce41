"""Instructions by object file and function, from callgrind's own record."""
import collections
import re
import subprocess


def count(command, record):
    """Runs a command under callgrind; (object, function) to the instructions in the function itself."""
    subprocess.run(["valgrind", "--tool=callgrind", f"--callgrind-out-file={record}", *command], check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    names = {}  # a name stands once, with a number that stands for it from then on

    def name(text):
        number, _, written = text.partition(" ")
        return names.setdefault(number, written) if written else names[number]

    costs = collections.Counter()
    at_object = at_function = None
    is_call = False
    for line in record.read_text().splitlines():
        key, _, rest = line.partition("=")
        if key in ("ob", "cob"):
            value = name("ob" + rest)
            at_object = value if key == "ob" else at_object
        elif key in ("fn", "cfn"):
            value = name("fn" + rest)
            at_function = value if key == "fn" else at_function
        elif key == "calls":
            is_call = True  # the next line tells what the called function cost, which counts there
        elif re.match(r"[+\-*\d]", line):
            if not is_call:
                costs[at_object, at_function] += int(line.split()[1])
            is_call = False
    return costs


def per_item(command, record, small, large):
    """What one more item costs: the difference of two runs, so that what is done once drops out."""
    few, many = (count([*command, str(items)], record) for items in (small, large))
    return {place: (many[place] - few[place]) / (large - small) for place in many}
