#!/usr/bin/python3
"""Writes the LV2 bundle's Turtle files from the description.

    make_turtle.py CONFIG.plist VERSION OUTDIR

VERSION is the project's MAJOR.MINOR.MICRO; OUTDIR receives manifest.ttl,
vantry.ttl (the stereo and mono plug-ins), vantry_ui.ttl (the editor) and
presets.ttl (every factory preset, for both plug-ins). The parameters are
read the way the unit's parameter table reads them (dsp/tools), so ports
0-11 are the unit's pids in order.
"""

import os
import re
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "dsp", "tools"))
import make_parameter_table as table  # noqa: E402

BASE = "https://www.zel-audio.example/plugins/vantry"
PRESET_BASE = "https://www.zel-audio.example/plugins/vantry/presets"
HOMEPAGE = "https://www.zel-audio.example/"
DSP_BINARY = "vantry_dsp.so"
UI_BINARY = "vantry_ui.so"

# Must agree with lv2/common/ZelVantryURIs.h.
LATENCY_PORT = 12
CONTROL_ATOM_PORT = 13
NOTIFY_ATOM_PORT = 14
FIRST_AUDIO_PORT = 15
CONTROL_PORT_COUNT = 12

PREFIXES = """\
@prefix atom:  <http://lv2plug.in/ns/ext/atom#> .
@prefix doap:  <http://usefulinc.com/ns/doap#> .
@prefix foaf:  <http://xmlns.com/foaf/0.1/> .
@prefix log:   <http://lv2plug.in/ns/ext/log#> .
@prefix lv2:   <http://lv2plug.in/ns/lv2core#> .
@prefix patch: <http://lv2plug.in/ns/ext/patch#> .
@prefix pg:    <http://lv2plug.in/ns/ext/port-groups#> .
@prefix pprops: <http://lv2plug.in/ns/ext/port-props#> .
@prefix pset:  <http://lv2plug.in/ns/ext/presets#> .
@prefix rdf:   <http://www.w3.org/1999/02/22-rdf-syntax-ns#> .
@prefix rdfs:  <http://www.w3.org/2000/01/rdf-schema#> .
@prefix state: <http://lv2plug.in/ns/ext/state#> .
@prefix ui:    <http://lv2plug.in/ns/extensions/ui#> .
@prefix units: <http://lv2plug.in/ns/extensions/units#> .
@prefix urid:  <http://lv2plug.in/ns/ext/urid#> .
@prefix vantry: <""" + BASE + """#> .
"""

# The two plug-ins: (fragment, channel names with their designations, name suffix).
PLUGINS = [
    ("stereo", "Stereo", [("left", "Left", "pg:left"), ("right", "Right", "pg:right")]),
    ("mono", "Mono", [("", "", "pg:center")]),
]

PROPERTIES = [
    ("presetName", "preset name", "atom:String", "The name of the preset last chosen, kept in the state."),
    ("theme", "theme", "atom:Int", "The editor's theme: 0 or 1, the number of theme toggles modulo 2."),
    ("themeToggle", "theme toggle", "atom:Bool", "Set to true by the editor when the user toggles the theme."),
    ("zoom", "zoom", "atom:Int", "The editor's zoom in percent, 100 to 200."),
    ("channelsIn", "input channels", "atom:Int", "The plug-in's input channel count."),
    ("channelsOut", "output channels", "atom:Int", "The plug-in's output channel count."),
]

EDITOR_NS = "https://www.zel-audio.example/ns/editor#"
MESSAGES = [
    ("Set", "Sets the patch:property to the patch:value, as a patch:Set would."),
    ("Get", "Asks for the patch:property, or for every property without one."),
]

UNITS = {
    "Percent": "units:pc",
    "Decibels": "units:db",
    "Hertz": "units:hz",
    "DecibelsPerOctave": "vantry:dBPerOctave",
}


def fail(message):
    print(f"make_turtle: {message}", file=sys.stderr)
    sys.exit(1)


def literal(text):
    escaped = text.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\n").replace("\r", "\\r")
    return f'"{escaped}"'


def number(value):
    # A decimal literal always: Turtle reads "1.0" as xsd:decimal, "1" as xsd:integer.
    text = repr(float(value))
    if "e" in text or "inf" in text or "nan" in text:
        fail(f"{value!r} cannot be written as a port value")
    return text


def slug(name):
    s = re.sub(r"[^A-Za-z0-9]+", "-", name).strip("-").lower()
    if not s:
        fail(f"preset name {name!r} gives an empty identifier")
    return s


def version_numbers(version):
    m = re.fullmatch(r"(\d+)\.(\d+)\.(\d+)", version)
    if not m:
        fail(f"version {version!r} is not MAJOR.MINOR.MICRO")
    return int(m.group(2)), int(m.group(3))


def is_toggle(p):
    names = p.get("stringValues") or []
    return p.get("minValue") == 0 and p.get("maxValue") == 1 and (p.get("unit") == "Boolean" or len(names) == 2)


def control_port(p):
    pid = p["pid"]
    lines = [
        "a lv2:InputPort , lv2:ControlPort",
        f"lv2:index {pid}",
        f"lv2:symbol {literal(p['codesafeName'])}",
        f"lv2:name {literal(p.get('name', p['codesafeName']))}",
        f"lv2:default {number(p.get('initialValue', 0))}",
        f"lv2:minimum {number(p.get('minValue', 0))}",
        f"lv2:maximum {number(p.get('maxValue', 0))}",
    ]
    unit = p.get("unit", "")
    names = p.get("stringValues") or []
    props = []
    if pid == 0:
        # The host's bypass: 0 turns the unit's power off (it crossfades).
        lines.append("lv2:designation lv2:enabled")
    if is_toggle(p):
        props += ["lv2:toggled"]
    elif unit == "Indexed":
        props += ["lv2:integer", "lv2:enumeration"]
    elif unit == "DecibelsPerOctave":
        granularity = p.get("granularity", 0)
        if granularity and float(granularity).is_integer():
            steps = round((p["maxValue"] - p["minValue"]) / granularity) + 1
            props += ["lv2:integer"]
            lines.append(f"pprops:rangeSteps {steps}")
    if p.get("logarithmic"):
        props.append("pprops:logarithmic")
    if props:
        lines.append("lv2:portProperty " + " , ".join(props))
    if unit in UNITS:
        lines.append(f"units:unit {UNITS[unit]}")
    if names and not (pid == 0):
        points = []
        for i, n in enumerate(names):
            points.append(f"[ rdfs:label {literal(n)} ; rdf:value {number(p['minValue'] + i)} ]")
        lines.append("lv2:scalePoint " + " ,\n\t\t\t".join(points))
    return "[\n\t\t" + " ;\n\t\t".join(lines) + "\n\t]"


def plugin_turtle(params, fragment, suffix, channels, version):
    minor, micro = version_numbers(version)
    uri = f"vantry:{fragment}"
    ports = [control_port(p) for p in params]
    ports.append(
        "[\n\t\ta lv2:OutputPort , lv2:ControlPort ;\n"
        f"\t\tlv2:index {LATENCY_PORT} ;\n"
        '\t\tlv2:symbol "latency" ;\n'
        '\t\tlv2:name "Latency" ;\n'
        "\t\tlv2:designation lv2:latency ;\n"
        "\t\tlv2:portProperty lv2:reportsLatency , lv2:integer , pprops:notOnGUI ;\n"
        "\t\tunits:unit units:frame\n\t]")
    ports.append(
        "[\n\t\ta lv2:InputPort , atom:AtomPort ;\n"
        f"\t\tlv2:index {CONTROL_ATOM_PORT} ;\n"
        '\t\tlv2:symbol "control" ;\n'
        '\t\tlv2:name "Control" ;\n'
        "\t\tatom:bufferType atom:Sequence ;\n"
        "\t\tatom:supports atom:Object ;\n"
        "\t\tlv2:portProperty lv2:connectionOptional ;\n"
        "\t\tlv2:designation lv2:control\n\t]")
    ports.append(
        "[\n\t\ta lv2:OutputPort , atom:AtomPort ;\n"
        f"\t\tlv2:index {NOTIFY_ATOM_PORT} ;\n"
        '\t\tlv2:symbol "notify" ;\n'
        '\t\tlv2:name "Notify" ;\n'
        "\t\tatom:bufferType atom:Sequence ;\n"
        "\t\tatom:supports atom:Object ;\n"
        "\t\tlv2:portProperty lv2:connectionOptional ;\n"
        "\t\tlv2:designation lv2:control\n\t]")
    index = FIRST_AUDIO_PORT
    for direction, group in (("Input", "In"), ("Output", "Out")):
        for key, label, designation in channels:
            symbol = ("in" if direction == "Input" else "out") + (f"_{key[0]}" if key else "")
            name = f"{label} {direction.lower()}" if label else direction
            ports.append(
                f"[\n\t\ta lv2:{direction}Port , lv2:AudioPort ;\n"
                f"\t\tlv2:index {index} ;\n"
                f"\t\tlv2:symbol {literal(symbol)} ;\n"
                f"\t\tlv2:name {literal(name)} ;\n"
                f"\t\tpg:group vantry:{fragment}{group} ;\n"
                f"\t\tlv2:designation {designation}\n\t]")
            index += 1
    group_class = "pg:StereoGroup" if len(channels) == 2 else "pg:MonoGroup"
    out = []
    w = out.append
    w(f"vantry:{fragment}In\n\ta {group_class} , pg:InputGroup ;\n"
      '\tlv2:symbol "in" ;\n\trdfs:label "Input" .\n')
    w(f"vantry:{fragment}Out\n\ta {group_class} , pg:OutputGroup ;\n"
      '\tlv2:symbol "out" ;\n\trdfs:label "Output" ;\n'
      f"\tpg:source vantry:{fragment}In .\n")
    name = "Vantry" if fragment == "stereo" else f"Vantry {suffix}"
    w(f"{uri}\n"
      "\ta lv2:Plugin , lv2:FilterPlugin ;\n"
      f"\tdoap:name {literal(name)} ;\n"
      f"\trdfs:comment {literal('Band limiting and degradation (' + suffix.lower() + ').')} ;\n"
      "\tdoap:license <https://opensource.org/licenses/ISC> ;\n"
      f"\tlv2:project vantry:project ;\n"
      f"\tlv2:minorVersion {minor} ;\n"
      f"\tlv2:microVersion {micro} ;\n"
      "\tlv2:optionalFeature lv2:hardRTCapable , log:log , urid:map ;\n"
      "\tlv2:extensionData state:interface ;\n"
      "\tui:ui vantry:ui ;\n"
      f"\tpg:mainInput vantry:{fragment}In ;\n"
      f"\tpg:mainOutput vantry:{fragment}Out ;\n"
      "\tlv2:port " + " , ".join(ports) + " .\n")
    return "\n".join(out)


def vantry_turtle(params, version):
    out = [PREFIXES]
    # The maintainer belongs to the project (doap:maintainer's domain); hosts
    # read it from there through lv2:project.
    out.append("vantry:project\n\ta doap:Project ;\n\tdoap:name \"Vantry\" ;\n"
               "\tdoap:license <https://opensource.org/licenses/ISC> ;\n"
               "\tdoap:maintainer [\n\t\tfoaf:name \"Zel Audio\" ;\n"
               f"\t\tfoaf:homepage <{HOMEPAGE}>\n\t] ;\n"
               f"\tdoap:homepage <{HOMEPAGE}> .\n")
    # The properties of the plug-in's own state and of its messages to the editor.
    for name, label, rng, comment in PROPERTIES:
        out.append(f"vantry:{name}\n\ta rdf:Property ;\n\trdfs:label {literal(label)} ;\n"
                   f"\trdfs:range {rng} ;\n\trdfs:comment {literal(comment)} .\n")
    # The types of the messages between the editor and the plug-in: our own,
    # so that hosts, which read patch:Set for the properties they know, leave
    # them alone.
    for name, comment in MESSAGES:
        out.append(f"<{EDITOR_NS}{name}>\n\ta rdfs:Class ;\n\trdfs:subClassOf atom:Object ;\n"
                   f"\trdfs:comment {literal(comment)} .\n")
    out.append("vantry:dBPerOctave\n\ta units:Unit ;\n\trdfs:label \"decibels per octave\" ;\n"
               "\tunits:symbol \"dB/oct\" ;\n\tunits:render \"%.0f dB/oct\" .\n")
    for fragment, suffix, channels in PLUGINS:
        out.append(plugin_turtle(params, fragment, suffix, channels, version))
    return "\n".join(out)


def ui_turtle():
    notes = []
    for fragment, _, _ in PLUGINS:
        notes.append(f"[\n\t\tui:plugin vantry:{fragment} ;\n\t\tlv2:symbol \"notify\" ;\n"
                     "\t\tui:protocol atom:eventTransfer\n\t]")
    return (PREFIXES + "\nvantry:ui\n\ta ui:X11UI ;\n"
            "\tlv2:requiredFeature ui:parent , urid:map ;\n"
            "\tlv2:optionalFeature ui:resize , ui:noUserResize , ui:touch , ui:idleInterface ;\n"
            "\tlv2:extensionData ui:idleInterface ;\n"
            "\tui:portNotification " + " , ".join(notes) + " .\n")


def presets(description, params):
    section = description.get("presets", {})
    names = section.get("stringValues") or []
    values = section.get("values") or []
    if not names or len(names) != len(values):
        fail("presets: stringValues and values differ in length")
    codes = {p["codesafeName"]: p for p in params}
    found = []
    for name, settings in zip(names, values):
        if not isinstance(name, str) or not name:
            fail(f"preset {name!r} has no name")
        if len(name.encode("utf-8")) > 255:
            fail(f"preset {name!r}: the name is longer than the plug-in keeps")
        ports = []
        for code, value in settings.items():
            p = codes.get(code)
            if p is None:
                fail(f"preset {name!r} sets unknown parameter {code!r}")
            if not (p["minValue"] <= value <= p["maxValue"]):
                fail(f"preset {name!r}: {code} = {value} is out of range")
            ports.append((p["pid"], code, value))
        found.append((name, sorted(ports)))
    if len({slug(n) for n, _ in found}) != len(found):
        fail("two presets share an identifier")
    banks = []
    for s in description.get("categorizedPresets", {}).get("sections", []):
        ids = []
        for entry in s.get("presets", []):
            i = entry.get("presetID")
            if not isinstance(i, int) or not 0 <= i < len(found):
                fail(f"section {s.get('section')!r} lists unknown preset {i!r}")
            if entry.get("name") not in (None, found[i][0]):
                fail(f"section {s.get('section')!r}: preset {i} is not named {entry.get('name')!r}")
            ids.append(i)
        banks.append((s.get("section", ""), ids))
    return found, banks


def preset_uri(fragment, name):
    return f"<{PRESET_BASE}#{fragment}-{slug(name)}>"


def bank_uri(name):
    return f"<{PRESET_BASE}#bank-{slug(name)}>"


def presets_turtle(found, banks):
    out = [PREFIXES]
    bank_of = {}
    for bank, ids in banks:
        out.append(f"{bank_uri(bank)}\n\ta pset:Bank ;\n\trdfs:label {literal(bank)} .\n")
        for i in ids:
            bank_of.setdefault(i, []).append(bank_uri(bank))
    for fragment, _, _ in PLUGINS:
        for i, (name, ports) in enumerate(found):
            lines = [
                "a pset:Preset",
                f"lv2:appliesTo vantry:{fragment}",
                f"rdfs:label {literal(name)}",
            ]
            if i in bank_of:
                lines.append("pset:bank " + " , ".join(bank_of[i]))
            entries = [f"[\n\t\tlv2:symbol {literal(code)} ;\n\t\tpset:value {number(value)}\n\t]"
                       for _, code, value in ports]
            lines.append("lv2:port " + " , ".join(entries))
            lines.append(f"state:state [\n\t\tvantry:presetName {literal(name)}\n\t]")
            out.append(preset_uri(fragment, name) + "\n\t" + " ;\n\t".join(lines) + " .\n")
    return "\n".join(out)


def manifest_turtle(found):
    out = [PREFIXES]
    for fragment, _, _ in PLUGINS:
        out.append(f"vantry:{fragment}\n\ta lv2:Plugin ;\n\tlv2:binary <{DSP_BINARY}> ;\n"
                   "\trdfs:seeAlso <vantry.ttl> .\n")
    # Hosts that never load the UI's own file (Ardour asks the world whether
    # the user may resize the window) find the editor's sizing here.
    out.append(f"vantry:ui\n\ta ui:X11UI ;\n\tui:binary <{UI_BINARY}> ;\n"
               "\tlv2:optionalFeature ui:noUserResize ;\n\trdfs:seeAlso <vantry_ui.ttl> .\n")
    for fragment, _, _ in PLUGINS:
        for name, _ in found:
            out.append(f"{preset_uri(fragment, name)}\n\ta pset:Preset ;\n\tlv2:appliesTo vantry:{fragment} ;\n"
                       "\trdfs:seeAlso <presets.ttl> .\n")
    return "\n".join(out)


def write_if_changed(path, text):
    try:
        with open(path, encoding="utf-8") as f:
            if f.read() == text:
                return
    except OSError:
        pass
    with open(path, "w", encoding="utf-8") as f:
        f.write(text)


def main(argv):
    if len(argv) != 4:
        print(__doc__.strip().splitlines()[2].strip(), file=sys.stderr)
        return 2
    description = table.read_description(argv[1], fail)
    params = table.parameters(description)
    if len(params) != CONTROL_PORT_COUNT:
        fail(f"{len(params)} parameters, but the port layout has {CONTROL_PORT_COUNT} control ports")
    found, banks = presets(description, params)
    os.makedirs(argv[3], exist_ok=True)
    write_if_changed(os.path.join(argv[3], "manifest.ttl"), manifest_turtle(found))
    write_if_changed(os.path.join(argv[3], "vantry.ttl"), vantry_turtle(params, argv[2]))
    write_if_changed(os.path.join(argv[3], "vantry_ui.ttl"), ui_turtle())
    write_if_changed(os.path.join(argv[3], "presets.ttl"), presets_turtle(found, banks))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
