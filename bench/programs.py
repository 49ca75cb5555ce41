"""The programs that do the same job: read a native document, map it, write the OpenConfig document."""
import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
PEERS = ROOT / "bench" / "peers"
YANG = ROOT / "yang"

OURS, FLOOR = "chmon map", "floor"

# How many times as long as ours each has to take; the floor's is the other way round: ours at most so many times its.
GOALS = {"pugixml": 2, "python json": 6, "python compact": 6, "jq": 15, "xsltproc": 8, "libyang typed": 8, "libyang natural": 8}
FLOOR_GOAL = 6
SLOW = {"jq", "xsltproc", "libyang typed", "libyang natural"}


def device_folder(data, slices):
    return data / str(slices) / "device"


def document_of(data, slices, form):
    return device_folder(data, slices) / f"ots-oper.{form}"


def ours(build, data, slices, form, *options):
    inventory = device_folder(data, slices) / "inventory.json"
    return [build / "bin/chmon", "map", *options, "--inventory", inventory, document_of(data, slices, form)]


def all_programs(build, data, slices, form):
    """Name to command; `slices` is the number of each of six monitors."""
    document = document_of(data, slices, form)
    programs = {OURS: ours(build, data, slices, form), FLOOR: [build / "bin/floor_map", form, document]}
    if form == "xml":
        programs["pugixml"] = [build / "bin/pugixml_map", document]
        programs["xsltproc"] = ["xsltproc", PEERS / "map.xsl", document]
    else:
        programs["python json"] = [sys.executable, PEERS / "json_map.py", document]
        programs["python compact"] = [*programs["python json"], "compact"]
        programs["jq"] = ["jq", "-f", PEERS / "map.jq", document]
    for calls in ("typed", "natural"):
        programs[f"libyang {calls}"] = [build / "bin/libyang_map", calls, form, YANG, document]
    return programs
