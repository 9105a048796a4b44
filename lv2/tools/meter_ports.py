"""The meter output ports of a product's LV2 plug-ins, from its description.

A product whose unit measures its signal lists its levels in the metadata's
"meterPorts": an array of dictionaries, one per level, in the order the unit
publishes them (ZelUnit::readMeters):

    symbol     the port's symbol (a C identifier, unique among the ports)
    name       the port's name, as hosts show it
    minValue   the level's range, for hosts that draw it (decibels: units:db)
    maxValue
    unit       optional: "Decibels" (the default) or "Generic"

The ports are control outputs placed after the notify port and before the
audio ports (a product without meters keeps the port layout it always had).
Hosts may show them (Ardour draws output controls as meters); the editor
hears them through the host's port events and draws them in its sketch.
"""

import re

SYMBOL = re.compile(r"[A-Za-z_][A-Za-z0-9_]*")


def meter_ports(metadata, fail):
    """The validated list of (symbol, name, minimum, maximum, unit) tuples."""
    found = metadata.get("meterPorts", [])
    if not isinstance(found, list):
        fail("meterPorts is not an array")
    ports = []
    for i, port in enumerate(found):
        if not isinstance(port, dict):
            fail(f"meterPorts[{i}] is not a dictionary")
        symbol = port.get("symbol", "")
        if not SYMBOL.fullmatch(symbol):
            fail(f"meterPorts[{i}].symbol {symbol!r} is not a port symbol")
        name = port.get("name") or fail(f"meterPorts[{i}] has no name")
        low, high = port.get("minValue"), port.get("maxValue")
        if not isinstance(low, (int, float)) or not isinstance(high, (int, float)) or not low < high:
            fail(f"meterPorts[{i}]: minValue and maxValue are not a range")
        unit = port.get("unit", "Decibels")
        if unit not in ("Decibels", "Generic"):
            fail(f"meterPorts[{i}].unit {unit!r} is not Decibels or Generic")
        ports.append((symbol, name, float(low), float(high), unit))
    if len({p[0] for p in ports}) != len(ports):
        fail("meterPorts: a symbol is used twice")
    return ports


def meter_port_turtle(port, index, literal, number):
    symbol, name, low, high, unit = port
    lines = ["a lv2:OutputPort , lv2:ControlPort",
             f"lv2:index {index}",
             f"lv2:symbol {literal(symbol)}",
             f"lv2:name {literal(name)}",
             f"lv2:minimum {number(low)}",
             f"lv2:maximum {number(high)}",
             f"lv2:default {number(low)}"]
    if unit == "Decibels":
        lines.append("units:unit units:db")
    return "[\n\t\t" + " ;\n\t\t".join(lines) + "\n\t]"
