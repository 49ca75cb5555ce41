#!/usr/bin/env python3
"""Write the example device and the example requests, XML and JSON.

The same arguments give the same bytes on every machine, so the files beside this script are kept in the
repository and a test compares them with what the script writes.

    make-device.py                          the files of examples/
    make-device.py --slices 768 --out DIR   the same device with finer spectra, for measurements
"""
import argparse
import json
import math
import pathlib
import random

OPENCONFIG = ("http://openconfig.net/yang/channel-monitor", "openconfig-channel-monitor")
IFMGR = ("urn:vantra:talin:ifmgr-cfg", "Vantra-TALIN-ifmgr-cfg")
OTS_OPER = ("urn:vantra:talin:controller-kestrel-ots-oper", "Vantra-TALIN-controller-kestrel-ots-oper")
NETCONF = "urn:ietf:params:xml:ns:netconf:base:1.0"

MONITORS = [f"0/{slot}-CHMON-{amplifier}" for slot in (1, 2, 3) for amplifier in ("BST", "PRE")]
PORTS = [f"Ots0/{slot}/0/{port}" for slot in (1, 2, 3) for port in (0, 1)] + ["Ots0/4/0/0"]  # the last: no monitor

# The C-band in MHz. ITU-T G.694.1: a channel's width is a multiple of 12.5 GHz, its centre lies on
# 193.1 THz + n * 6.25 GHz; both bounds on 193.1 THz + k * 12.5 GHz satisfy that.
BAND = (191_350_000, 196_100_000)
STEP = 12_500
NARROWEST, WIDEST = 4, 12  # in steps: 50 to 150 GHz
WIDTHS, WEIGHTS = (4, 5, 6, 7, 8, 9, 10, 12), (8, 1, 10, 1, 8, 1, 2, 4)


def flexgrid(rng):
    """Media channels that fill the band without gaps, as (lower, upper)."""
    lower, steps_left = BAND[0], (BAND[1] - BAND[0]) // STEP
    while steps_left:
        width = rng.choices(WIDTHS, WEIGHTS)[0]
        if steps_left <= WIDEST:  # the last channel takes the rest
            width = steps_left
        elif steps_left - width < NARROWEST:  # leave room for one more
            width = NARROWEST
        yield lower, lower + width * STEP
        lower, steps_left = lower + width * STEP, steps_left - width


def even(count):
    """The band cut into count slices of nearly one width: the raw raster of a finer monitor."""
    width = BAND[1] - BAND[0]
    for index in range(count):
        yield BAND[0] + width * index // count, BAND[0] + width * (index + 1) // count


def powers(port, slices, rng, complete):
    """(lower, upper, power in 0.01 dBm or None) of each slice of a loaded line as the port sees it."""
    booster = port.endswith("/0")
    level = -11.5 if booster else -17.0  # dBm in 50 GHz: behind the booster, before the pre-amplifier
    tilt = rng.uniform(-2.5, 2.5)  # dB over the band: gain tilt, and what the fibre moves to longer waves
    phase = rng.uniform(0, 2 * math.pi)
    for lower, upper in slices:
        place = (lower + upper - 2 * BAND[0]) / (2 * (BAND[1] - BAND[0])) - 0.5
        if not complete and rng.random() < 0.01:
            yield lower, upper, None  # the monitor has no reading
        elif rng.random() < 0.22:
            yield lower, upper, rng.randint(-5000, -4000)  # dark: amplifier noise
        else:
            dbm = level + tilt * place + 0.6 * math.sin(5 * math.pi * place + phase) + rng.gauss(0, 0.25)
            dbm += 10 * math.log10(min((upper - lower) / 50_000, 3.0)) if upper - lower >= 50_000 else 0
            yield lower, upper, max(-2200, min(-500, round(dbm * 100)))


def ots_oper(slices_per_port):
    """(port, its slices) for every port; in measurements the monitors' ports alone."""
    for index, port in enumerate(PORTS[:len(MONITORS)] if slices_per_port else PORTS):
        rng = random.Random(4711 + index)
        slices = even(slices_per_port) if slices_per_port else flexgrid(rng)
        yield port, powers(port, slices, rng, complete=slices_per_port is not None)


def write_ots_oper_xml(file, ports):
    """One line a slice."""
    file.write(f'<ots-oper xmlns="{OTS_OPER[0]}">\n  <ots-ports>\n')
    for port, slices in ports:
        file.write(f"    <ots-port>\n      <name>{port}</name>\n      <ots-spectrum-info>\n")
        for lower, upper, power in slices:
            reading = "" if power is None else f"<rx-power>{power}</rx-power>"
            file.write(f"        <spectrum-slice-power-info><lower-frequency>{lower}</lower-frequency>"
                       f"<upper-frequency>{upper}</upper-frequency>{reading}</spectrum-slice-power-info>\n")
        file.write("      </ots-spectrum-info>\n    </ots-port>\n")
    file.write("  </ots-ports>\n</ots-oper>\n")


def write_ots_oper_json(file, ports):
    """One line a slice; 64-bit integers are strings (RFC 7951, section 6.1)."""
    file.write(f'{{"{OTS_OPER[1]}:ots-oper": {{"ots-ports": {{"ots-port": [')
    for index, (port, slices) in enumerate(ports):
        comma = "," if index else ""
        file.write(f'{comma}\n  {{"name": "{port}", "ots-spectrum-info": {{"spectrum-slice-power-info": [')
        comma = ""
        for lower, upper, power in slices:
            reading = "" if power is None else f', "rx-power": {power}'
            file.write(f'{comma}\n    {{"lower-frequency": "{lower}", "upper-frequency": "{upper}"{reading}}}')
            comma = ","
        file.write("]}}")
    file.write("]}}}\n")


# Small trees: (tag, content[, edit operation]); content is a text, None (no value) or a list of trees.
LISTS = {"interface-configuration", "channel-monitor", "channel"}
NUMBERS = {"mtu"}


def interfaces():
    """The configured interfaces: optical controllers among all others. Ots0/3/0/1 waits for a first edit."""
    def entry(name, *rest, active="act"):
        return ("interface-configuration", [("active", active), ("interface-name", name), *rest])

    return ("interface-configurations", [
        entry("Loopback0", ("description", "router id")),
        entry("MgmtEth0/RP0/CPU0/0", ("description", 'management & "out of band"'), ("mtu", "1514")),
        entry("HundredGigE0/0/0/0", ("description", "client <east>"), ("mtu", "9216")),
        entry("HundredGigE0/0/0/1", ("shutdown", None)),
        entry("Ots0/1/0/0", ("description", "line to Zürich, booster")),
        entry("Ots0/1/0/1"),
        entry("Ots0/2/0/0"),
        entry("HundredGigE0/5/0/0", active="pre"),
        entry("Ots0/2/0/1"),
        entry("Ots0/3/0/0"),
        entry("Ots0/4/0/0", ("description", "add/drop shelf, carries no monitor")),
        entry("Optics0/0/0/0"),
    ])


def monitors(*entries):
    return ("channel-monitors", list(entries))


def monitor(name, *rest, operation=None):
    return ("channel-monitor", [("name", name), *rest], operation)


def configured(name, *rest):
    return ("config", [("name", name), *rest])


REQUESTS = {
    # reads: subtree filters (RFC 6241, section 6); a leaf without value selects, one with a value matches
    "get-all": monitors(),
    "get-names": monitors(("channel-monitor", [("name", None)])),
    "get-one": monitors(monitor("0/2-CHMON-PRE")),
    "get-ports": monitors(monitor("0/2-CHMON-PRE", ("config", []), ("state", []))),
    "get-state": monitors(("channel-monitor", [("name", None), ("state", [])])),
    "get-spectrum": monitors(monitor("0/1-CHMON-BST", ("channels", []))),
    "get-one-channel": monitors(monitor("0/1-CHMON-BST", ("channels", [
        ("channel", [("lower-frequency", str(BAND[0])), ("state", [("power", None)])])]))),
    "get-unknown-leaf": monitors(("channel-monitor", [("name", None), ("serial-number", None)])),
    # edits
    "edit-add": monitors(monitor("0/3-CHMON-PRE", configured("0/3-CHMON-PRE"))),
    "edit-create": monitors(monitor("0/3-CHMON-PRE", configured("0/3-CHMON-PRE"), operation="create")),
    "edit-delete": monitors(monitor("0/1-CHMON-PRE", operation="delete")),
    "edit-remove": monitors(monitor("0/3-CHMON-PRE", operation="remove")),
    "edit-replace": monitors(monitor("0/1-CHMON-BST", configured("0/1-CHMON-BST"), operation="replace")),
    "edit-bad-key": monitors(monitor("0/3-CHMON-PRE", configured("0/3-CHMON-BST"))),
    "edit-bad-element": monitors(monitor("0/3-CHMON-PRE", ("config", [("name", "0/3-CHMON-PRE"), ("color", "red")]))),
}


def escaped(text):
    return text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")


def xml_lines(node, indent="", attributes=""):
    tag, content, operation = (*node, None)[:3]
    if operation:
        attributes += f' nc:operation="{operation}"'
    if not content:
        yield f"{indent}<{tag}{attributes}/>"
    elif isinstance(content, str):
        yield f"{indent}<{tag}{attributes}>{escaped(content)}</{tag}>"
    else:
        yield f"{indent}<{tag}{attributes}>"
        for child in content:
            yield from xml_lines(child, indent + "  ")
        yield f"{indent}</{tag}>"


def to_json(node):
    """A node's value as RFC 7951 has it; an operation is metadata of the object (RFC 7952)."""
    tag, content, operation = (*node, None)[:3]
    if content is None:
        return [None]
    if isinstance(content, str):
        return int(content) if tag in NUMBERS else content
    value = {"@": {"ietf-netconf:operation": operation}} if operation else {}
    for child in content:
        if child[0] in LISTS:
            value.setdefault(child[0], []).append(to_json(child))
        else:
            value[child[0]] = to_json(child)
    return value


def has_operation(node):
    return len(node) > 2 and node[2] is not None or isinstance(node[1], list) and any(map(has_operation, node[1]))


def write_both(folder, name, tree, module):
    prefix = f' xmlns:nc="{NETCONF}"' if has_operation(tree) else ""
    lines = xml_lines(tree, attributes=f' xmlns="{module[0]}"{prefix}')
    (folder / f"{name}.xml").write_text("\n".join(lines) + "\n", encoding="utf-8")
    document = {f"{module[1]}:{tree[0]}": to_json(tree)}
    text = json.dumps(document, indent=2, ensure_ascii=False)
    (folder / f"{name}.json").write_text(text + "\n", encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--slices", type=int, metavar="N", help="slices per port, of one width (default: flexgrid)")
    parser.add_argument("--out", type=pathlib.Path, default=pathlib.Path(__file__).resolve().parent, metavar="DIR")
    arguments = parser.parse_args()
    if arguments.slices is not None and not 1 <= arguments.slices <= BAND[1] - BAND[0]:
        parser.error(f"--slices must be 1 to {BAND[1] - BAND[0]}: a slice is at least 1 MHz wide")

    device, requests = arguments.out / "device", arguments.out / "requests"
    for folder in (device, requests):
        folder.mkdir(parents=True, exist_ok=True)
    (device / "inventory.json").write_text(json.dumps({"inventory": MONITORS}, indent=2) + "\n")
    write_both(device, "interfaces", interfaces(), IFMGR)
    for name, writer in (("ots-oper.xml", write_ots_oper_xml), ("ots-oper.json", write_ots_oper_json)):
        with open(device / name, "w", encoding="utf-8") as file:
            writer(file, ots_oper(arguments.slices))
    for name, tree in REQUESTS.items():
        write_both(requests, name, tree, OPENCONFIG)


if __name__ == "__main__":
    main()
