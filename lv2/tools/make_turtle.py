#!/usr/bin/python3
"""Writes a product's LV2 bundle's Turtle files and its URI header from its description.

    make_turtle.py CONFIG.plist OUTDIR [--header OUT.h] [--no-ui]

OUTDIR receives manifest.ttl, SLUG.ttl (one plug-in per channel layout),
SLUG_ui.ttl (the editor) and presets.ttl (every factory preset, for every
plug-in), SLUG being the metadata's pluginURLSlug. The header names the
same URIs and the port layout for C++ (lv2/common/ZelLV2Protocol.h tells
what travels on the ports). The parameters are read the way the unit's
parameter table reads them (dsp/tools), so ports 0..N-1 are the unit's pids
in order. Everything named comes from the metadata: pluginURLSlug (the URIs,
the file names), pluginName, tagline, version, channelLayouts (the
plug-ins: "2-2" a stereo one, "1-1" a mono one). With --no-ui the bundle
announces no editor (a build without the X11 editor).
"""

import os
import re
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "dsp", "tools"))
import make_parameter_table as table  # noqa: E402

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from meter_ports import meter_port_turtle, meter_ports  # noqa: E402

# The maker's web site (as editor/ZelGenericUI.h's kMakerWebSite): every
# product's URIs live under it.
MAKER_SITE = "https://www.zel-audio.example"
HOMEPAGE = MAKER_SITE + "/"


class Product:
    """The names a product's bundle is made of, from its metadata."""

    def __init__(self, metadata, params, has_ui=True):
        self.has_ui = has_ui
        self.slug = metadata.get("pluginURLSlug", "")
        if not re.fullmatch(r"[a-z][a-z0-9-]*", self.slug):
            fail(f"pluginURLSlug {self.slug!r} is not a lower-case word (letters, digits, '-')")
        self.name = metadata.get("pluginName") or fail("the metadata has no pluginName")
        self.tagline = metadata.get("tagline", "")
        self.version = metadata.get("version", "")
        self.base = f"{MAKER_SITE}/plugins/{self.slug}"
        self.preset_base = self.base + "/presets"
        self.prefix = self.slug.replace("-", "_")
        self.dsp_binary = f"{self.slug}_dsp.so"
        self.ui_binary = f"{self.slug}_ui.so"
        self.plugin_ttl = f"{self.slug}.ttl"
        self.ui_ttl = f"{self.slug}_ui.ttl"
        self.variants = variants(metadata.get("channelLayouts", ""))
        # The port layout: the controls, then the latency, control, notify and audio ports.
        self.control_ports = len(params)
        self.latency_port = len(params)
        self.control_atom_port = len(params) + 1
        self.notify_atom_port = len(params) + 2
        # Meter outputs (metadata "meterPorts", lv2/tools/meter_ports.py) sit
        # between the notify port and the audio ports.
        self.meter_ports = meter_ports(metadata, fail)
        self.first_meter_port = len(params) + 3
        self.first_audio_port = len(params) + 3 + len(self.meter_ports)

    def prefixes(self):
        return PREFIXES + f"@prefix {self.prefix}: <{self.base}#> .\n"


# The plug-in of each channel layout: (fragment, name suffix, channels with their designations).
LAYOUTS = {
    "2-2": ("stereo", "Stereo", [("left", "Left", "pg:left"), ("right", "Right", "pg:right")]),
    "1-1": ("mono", "Mono", [("", "", "pg:center")]),
}


def variants(layouts):
    """The plug-ins of the metadata's channelLayouts ("1-1, 2-2"), the widest first."""
    words = [w.strip() for w in str(layouts).split(",") if w.strip()]
    if not words:
        fail("the metadata's channelLayouts names no layout (1-1 for mono, 2-2 for stereo)")
    for w in words:
        if w not in LAYOUTS:
            fail(f"channelLayouts: {w!r} is not a layout the plug-in offers (1-1 or 2-2)")
    if len(set(words)) != len(words):
        fail(f"channelLayouts: {layouts!r} names a layout twice")
    return [LAYOUTS[w] for w in sorted(words, key=lambda w: -len(LAYOUTS[w][2]))]


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
"""

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
    "DecibelsPerOctave": "{prefix}:dBPerOctave",  # a unit of our own, declared in the plug-in's file
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


def control_port(product, p):
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
    if pid == 0 and unit == "Boolean":
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
        lines.append(f"units:unit {UNITS[unit].format(prefix=product.prefix)}")
    if names and not (pid == 0):
        points = []
        for i, n in enumerate(names):
            points.append(f"[ rdfs:label {literal(n)} ; rdf:value {number(p['minValue'] + i)} ]")
        lines.append("lv2:scalePoint " + " ,\n\t\t\t".join(points))
    return "[\n\t\t" + " ;\n\t\t".join(lines) + "\n\t]"


def plugin_turtle(product, params, fragment, suffix, channels, first):
    minor, micro = version_numbers(product.version)
    P = product.prefix
    uri = f"{P}:{fragment}"
    ports = [control_port(product, p) for p in params]
    ports.append(
        "[\n\t\ta lv2:OutputPort , lv2:ControlPort ;\n"
        f"\t\tlv2:index {product.latency_port} ;\n"
        '\t\tlv2:symbol "latency" ;\n'
        '\t\tlv2:name "Latency" ;\n'
        "\t\tlv2:designation lv2:latency ;\n"
        "\t\tlv2:portProperty lv2:reportsLatency , lv2:integer , pprops:notOnGUI ;\n"
        "\t\tunits:unit units:frame\n\t]")
    ports.append(
        "[\n\t\ta lv2:InputPort , atom:AtomPort ;\n"
        f"\t\tlv2:index {product.control_atom_port} ;\n"
        '\t\tlv2:symbol "control" ;\n'
        '\t\tlv2:name "Control" ;\n'
        "\t\tatom:bufferType atom:Sequence ;\n"
        "\t\tatom:supports atom:Object ;\n"
        "\t\tlv2:portProperty lv2:connectionOptional ;\n"
        "\t\tlv2:designation lv2:control\n\t]")
    ports.append(
        "[\n\t\ta lv2:OutputPort , atom:AtomPort ;\n"
        f"\t\tlv2:index {product.notify_atom_port} ;\n"
        '\t\tlv2:symbol "notify" ;\n'
        '\t\tlv2:name "Notify" ;\n'
        "\t\tatom:bufferType atom:Sequence ;\n"
        "\t\tatom:supports atom:Object ;\n"
        "\t\tlv2:portProperty lv2:connectionOptional ;\n"
        "\t\tlv2:designation lv2:control\n\t]")
    for i, port in enumerate(product.meter_ports):
        ports.append(meter_port_turtle(port, product.first_meter_port + i, literal, number))
    index = product.first_audio_port
    for direction, group in (("Input", "In"), ("Output", "Out")):
        for key, label, designation in channels:
            symbol = ("in" if direction == "Input" else "out") + (f"_{key[0]}" if key else "")
            name = f"{label} {direction.lower()}" if label else direction
            ports.append(
                f"[\n\t\ta lv2:{direction}Port , lv2:AudioPort ;\n"
                f"\t\tlv2:index {index} ;\n"
                f"\t\tlv2:symbol {literal(symbol)} ;\n"
                f"\t\tlv2:name {literal(name)} ;\n"
                f"\t\tpg:group {P}:{fragment}{group} ;\n"
                f"\t\tlv2:designation {designation}\n\t]")
            index += 1
    group_class = "pg:StereoGroup" if len(channels) == 2 else "pg:MonoGroup"
    out = []
    w = out.append
    w(f"{P}:{fragment}In\n\ta {group_class} , pg:InputGroup ;\n"
      '\tlv2:symbol "in" ;\n\trdfs:label "Input" .\n')
    w(f"{P}:{fragment}Out\n\ta {group_class} , pg:OutputGroup ;\n"
      '\tlv2:symbol "out" ;\n\trdfs:label "Output" ;\n'
      f"\tpg:source {P}:{fragment}In .\n")
    name = product.name if first else f"{product.name} {suffix}"
    w(f"{uri}\n"
      "\ta lv2:Plugin , lv2:FilterPlugin ;\n"
      f"\tdoap:name {literal(name)} ;\n"
      f"\trdfs:comment {literal(product.tagline + ' (' + suffix.lower() + ').')} ;\n"
      "\tdoap:license <https://opensource.org/licenses/ISC> ;\n"
      f"\tlv2:project {P}:project ;\n"
      f"\tlv2:minorVersion {minor} ;\n"
      f"\tlv2:microVersion {micro} ;\n"
      "\tlv2:optionalFeature lv2:hardRTCapable , log:log , urid:map ;\n"
      "\tlv2:extensionData state:interface ;\n"
      + (f"\tui:ui {P}:ui ;\n" if product.has_ui else "") +
      f"\tpg:mainInput {P}:{fragment}In ;\n"
      f"\tpg:mainOutput {P}:{fragment}Out ;\n"
      "\tlv2:port " + " , ".join(ports) + " .\n")
    return "\n".join(out)


def plugins_turtle(product, params):
    P = product.prefix
    out = [product.prefixes()]
    # The maintainer belongs to the project (doap:maintainer's domain); hosts
    # read it from there through lv2:project.
    out.append(f"{P}:project\n\ta doap:Project ;\n\tdoap:name {literal(product.name)} ;\n"
               "\tdoap:license <https://opensource.org/licenses/ISC> ;\n"
               "\tdoap:maintainer [\n\t\tfoaf:name \"Zel Audio\" ;\n"
               f"\t\tfoaf:homepage <{HOMEPAGE}>\n\t] ;\n"
               f"\tdoap:homepage <{HOMEPAGE}> .\n")
    # The properties of the plug-in's own state and of its messages to the editor.
    for name, label, rng, comment in PROPERTIES:
        out.append(f"{P}:{name}\n\ta rdf:Property ;\n\trdfs:label {literal(label)} ;\n"
                   f"\trdfs:range {rng} ;\n\trdfs:comment {literal(comment)} .\n")
    # The types of the messages between the editor and the plug-in: our own,
    # so that hosts, which read patch:Set for the properties they know, leave
    # them alone.
    for name, comment in MESSAGES:
        out.append(f"<{EDITOR_NS}{name}>\n\ta rdfs:Class ;\n\trdfs:subClassOf atom:Object ;\n"
                   f"\trdfs:comment {literal(comment)} .\n")
    if any(p.get("unit") == "DecibelsPerOctave" for p in params):
        out.append(f"{P}:dBPerOctave\n\ta units:Unit ;\n\trdfs:label \"decibels per octave\" ;\n"
                   "\tunits:symbol \"dB/oct\" ;\n\tunits:render \"%.0f dB/oct\" .\n")
    for i, (fragment, suffix, channels) in enumerate(product.variants):
        out.append(plugin_turtle(product, params, fragment, suffix, channels, i == 0))
    return "\n".join(out)


def ui_turtle(product):
    P = product.prefix
    notes = []
    for fragment, _, _ in product.variants:
        notes.append(f"[\n\t\tui:plugin {P}:{fragment} ;\n\t\tlv2:symbol \"notify\" ;\n"
                     "\t\tui:protocol atom:eventTransfer\n\t]")
    return (product.prefixes() + f"\n{P}:ui\n\ta ui:X11UI ;\n"
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


def preset_uri(product, fragment, name):
    return f"<{product.preset_base}#{fragment}-{slug(name)}>"


def bank_uri(product, name):
    return f"<{product.preset_base}#bank-{slug(name)}>"


def presets_turtle(product, found, banks):
    P = product.prefix
    out = [product.prefixes()]
    bank_of = {}
    for bank, ids in banks:
        out.append(f"{bank_uri(product, bank)}\n\ta pset:Bank ;\n\trdfs:label {literal(bank)} .\n")
        for i in ids:
            bank_of.setdefault(i, []).append(bank_uri(product, bank))
    for fragment, _, _ in product.variants:
        for i, (name, ports) in enumerate(found):
            lines = [
                "a pset:Preset",
                f"lv2:appliesTo {P}:{fragment}",
                f"rdfs:label {literal(name)}",
            ]
            if i in bank_of:
                lines.append("pset:bank " + " , ".join(bank_of[i]))
            entries = [f"[\n\t\tlv2:symbol {literal(code)} ;\n\t\tpset:value {number(value)}\n\t]"
                       for _, code, value in ports]
            lines.append("lv2:port " + " , ".join(entries))
            lines.append(f"state:state [\n\t\t{P}:presetName {literal(name)}\n\t]")
            out.append(preset_uri(product, fragment, name) + "\n\t" + " ;\n\t".join(lines) + " .\n")
    return "\n".join(out)


def manifest_turtle(product, found):
    P = product.prefix
    out = [product.prefixes()]
    for fragment, _, _ in product.variants:
        out.append(f"{P}:{fragment}\n\ta lv2:Plugin ;\n\tlv2:binary <{product.dsp_binary}> ;\n"
                   f"\trdfs:seeAlso <{product.plugin_ttl}> .\n")
    if product.has_ui:
        # Hosts that never load the UI's own file (Ardour asks the world
        # whether the user may resize the window) find the editor's sizing here.
        out.append(f"{P}:ui\n\ta ui:X11UI ;\n\tui:binary <{product.ui_binary}> ;\n"
                   "\tlv2:optionalFeature ui:noUserResize ;\n"
                   f"\trdfs:seeAlso <{product.ui_ttl}> .\n")
    for fragment, _, _ in product.variants:
        for name, _ in found:
            out.append(f"{preset_uri(product, fragment, name)}\n\ta pset:Preset ;\n\tlv2:appliesTo {P}:{fragment} ;\n"
                       "\trdfs:seeAlso <presets.ttl> .\n")
    return "\n".join(out)


def c_string(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def uris_header(product, source):
    """The same URIs and port layout for C++, in namespace zel_<slug>_lv2."""
    ns = "zel_" + product.prefix + "_lv2"
    out = [f"// Generated from {source} by lv2/tools/make_turtle.py: do not edit.",
           "// The URIs, state keys and port layout of the product's LV2 plug-ins and",
           "// editor (lv2/common/ZelLV2Protocol.h tells what travels on the ports).",
           "#pragma once", "", "#include <cstdint>", "", '#include "lv2/common/ZelLV2Protocol.h"', "",
           f"namespace {ns} {{", "",
           "using zel_lv2::kMaxPresetNameBytes;", "using zel_lv2::kMaxZoomPercent;", "using zel_lv2::kMinZoomPercent;", "",
           f"inline constexpr char kPluginURIPrefix[] = {c_string(product.base)};"]
    for fragment, suffix, _ in product.variants:
        out.append(f"inline constexpr char k{suffix}URI[] = {c_string(product.base + '#' + fragment)};")
    out.append(f"inline constexpr char kUIURI[] = {c_string(product.base + '#ui')};")
    out.append("")
    out.append("// The plug-ins, the widest first.")
    out.append(f"inline constexpr int kVariantCount = {len(product.variants)};")
    out.append("inline constexpr const char* kVariantURIs[kVariantCount] = {"
               + ", ".join(f"k{suffix}URI" for _, suffix, _ in product.variants) + "};")
    out.append("inline constexpr int kVariantChannels[kVariantCount] = {"
               + ", ".join(str(len(ch)) for _, _, ch in product.variants) + "};")
    out.append("")
    for name, key in (("kPresetName", "presetName"), ("kTheme", "theme"), ("kThemeToggle", "themeToggle"),
                      ("kZoom", "zoom"), ("kChannelsIn", "channelsIn"), ("kChannelsOut", "channelsOut")):
        out.append(f"inline constexpr char {name}[] = {c_string(product.base + '#' + key)};")
    out.append("")
    out.append(f"inline constexpr std::uint32_t kControlPortCount = {product.control_ports};  // parameter ids in order")
    out.append(f"inline constexpr std::uint32_t kLatencyPort = {product.latency_port};")
    out.append(f"inline constexpr std::uint32_t kControlAtomPort = {product.control_atom_port};")
    out.append(f"inline constexpr std::uint32_t kNotifyAtomPort = {product.notify_atom_port};")
    out.append(f"inline constexpr std::uint32_t kFirstAudioPort = {product.first_audio_port};  // inputs, then outputs")
    out.append(f"inline constexpr std::uint32_t kFirstMeterPort = {product.first_meter_port};")
    out.append(f"inline constexpr std::uint32_t kMeterPortCount = {len(product.meter_ports)};  // metadata meterPorts")
    out.append("")
    out.append(f"}}  // namespace {ns}")
    return "\n".join(out) + "\n"


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
    args = argv[1:]
    has_ui = "--no-ui" not in args
    args = [a for a in args if a != "--no-ui"]
    header = None
    if "--header" in args:
        i = args.index("--header")
        if i + 1 >= len(args):
            fail("--header needs a file")
        header = args[i + 1]
        del args[i:i + 2]
    if len(args) != 2:
        print(__doc__.strip().splitlines()[2].strip(), file=sys.stderr)
        return 2
    config, outdir = args
    description = table.read_description(config, fail)
    params = table.parameters(description)
    product = Product(description.get("metadata", {}), params, has_ui)
    version_numbers(product.version)
    found, banks = presets(description, params)
    os.makedirs(outdir, exist_ok=True)
    write_if_changed(os.path.join(outdir, "manifest.ttl"), manifest_turtle(product, found))
    write_if_changed(os.path.join(outdir, product.plugin_ttl), plugins_turtle(product, params))
    if has_ui:
        write_if_changed(os.path.join(outdir, product.ui_ttl), ui_turtle(product))
    write_if_changed(os.path.join(outdir, "presets.ttl"), presets_turtle(product, found, banks))
    if header:
        os.makedirs(os.path.dirname(os.path.abspath(header)), exist_ok=True)
        write_if_changed(header, uris_header(product, "/".join(config.rsplit("/", 3)[-3:])))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
