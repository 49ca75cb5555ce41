"""usage: same_document.py A B: exit status 0 where two OpenConfig documents say the same, whatever their layout."""
import json
import pathlib
import sys
import xml.etree.ElementTree as xml_tree

LISTS = {"channel-monitor", "channel"}


def from_xml(element):
    if len(element) == 0:
        return element.text or ""
    node = {}
    for child in element:
        tag = child.tag.partition("}")[2]
        if tag in LISTS:
            node.setdefault(tag, []).append(from_xml(child))
        else:
            node[tag] = from_xml(child)
    return node


def read(path):
    text = path.read_text(encoding="utf-8")
    if text.startswith("<"):
        return from_xml(xml_tree.fromstring(text))
    return json.loads(text)["openconfig-channel-monitor:channel-monitors"]


def with_decimals(node):
    """libyang writes the canonical form of a decimal64 (-15.2), the mapping two decimals (-15.20)."""
    if isinstance(node, list):
        return [with_decimals(entry) for entry in node]
    if isinstance(node, dict):
        return {tag: float(value) if tag == "power" else with_decimals(value) for tag, value in node.items()}
    return node


def same(a, b):
    """Byte for byte, or in what they hold."""
    return a.read_bytes() == b.read_bytes() or with_decimals(read(a)) == with_decimals(read(b))


sys.exit(0 if same(*map(pathlib.Path, sys.argv[1:])) else 1)
