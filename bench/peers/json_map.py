"""usage: json_map.py FILE [compact]: reads a native JSON document, maps it and writes the result. Without line ends
the module writes much faster, since that part of it is compiled."""
import json
import sys


def channel(entry):
    lower, upper = entry["lower-frequency"], entry["upper-frequency"]
    state = {"lower-frequency": lower, "upper-frequency": upper}
    if "rx-power" in entry:
        state["power"] = f"{entry['rx-power'] / 100:.2f}"
    return {"lower-frequency": lower, "state": state, "upper-frequency": upper}


def monitor(port):
    controller = port["name"]
    prefix = f"{controller[3]}/{controller[5]}"
    name = prefix + ("-CHMON-BST" if controller[9] == "0" else "-CHMON-PRE")
    slices = port["ots-spectrum-info"]["spectrum-slice-power-info"]
    return {"name": name,
            "state": {"name": name, "monitor-port": f"{prefix}-OtsCtrl-0/{controller[9]}"},
            "channels": {"channel": [channel(entry) for entry in slices]}}


with open(sys.argv[1], encoding="utf-8") as file:
    native = json.load(file)
ports = native["Vantra-TALIN-controller-kestrel-ots-oper:ots-oper"]["ots-ports"]["ots-port"]
monitors = {"openconfig-channel-monitor:channel-monitors": {"channel-monitor": [monitor(port) for port in ports]}}
layout = {"separators": (",", ":")} if sys.argv[2:] == ["compact"] else {"indent": 2}
sys.stdout.write(json.dumps(monitors, **layout) + "\n")
