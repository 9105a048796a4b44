#!/usr/bin/python3
"""Writes products/tollhum/config.plist, the description of Tollhum that the
editor reads.

The plist is committed and is what the build and the editor read; this script
keeps it consistent (every preset lists every parameter that presets govern,
every clump layout names a frame for every parameter) and is the place to
change it:

    /usr/bin/python3 products/tollhum/tools/make_config.py           # rewrite
    /usr/bin/python3 products/tollhum/tools/make_config.py --check   # exit 1 if stale

Geometry, in points, y growing upward:
  editor 540 x 380 = power box (right 62, the meter runs down its middle)
  + preset bar (bottom 30) + clumps area 478 x 350.
  Main area, a 4 x 5 grid of 119 x 70 cells (1 point to spare each side):
  Pitch across the top two rows (476 x 140), Ring and Output below it
  (238 x 210 each). Pitch is a 6 x 7 grid of its own: the title strip on
  top, the note slider across the whole width, Fine and Chord under it.
  Advanced drawer: Input over Strings, each the full width.
"""

import os
import plistlib
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
OUT = os.path.normpath(os.path.join(HERE, "..", "config.plist"))
sys.path.insert(0, os.path.join(HERE, "..", "..", "..", "model", "tools"))
from zel_description_writer import clump_entry, grid, write_or_check  # noqa: E402



def base(pid, code, name, minimal, index, unit):
    return {"pid": pid, "codesafeName": code, "name": name, "minimalName": minimal,
            "labelString": name, "indexInClump": index, "unit": unit}


PERCENT_MARKS = [0, 25, 50, 75, 100]


def percent(pid, code, name, minimal, initial, index):
    p = base(pid, code, name, minimal, index, "Percent")
    p.update({
        "minValue": 0.0, "maxValue": 100.0, "initialValue": float(initial),
        "granularity": 1.0, "fineGranularity": 0.1, "coarseGranularity": 10.0,
        "formatString": "%0.1f", "controlType": "Slider", "automatesSmoothly": True,
        "tickmarks": PERCENT_MARKS, "minorTickmarks": [10, 20, 30, 40, 60, 70, 80, 90],
        "cueValues": PERCENT_MARKS,
    })
    return p


MASTER = base(0, "MasterOnOff", "Power", "pwr", 0, "Boolean")
MASTER.update({
    "minValue": 0.0, "maxValue": 1.0, "initialValue": 1.0,
    "granularity": 1.0, "fineGranularity": 1.0, "coarseGranularity": 1.0,
    "formatString": "%0.0f", "stringValues": ["Off", "On"],
    "controlType": "Boolean", "scope": "global", "presetWildcard": True, "labelDisplay": "hidden",
})

# The root of the strings as a MIDI note, C1 (32.7 Hz) to C7 (2093 Hz); the
# slider runs across the editor like a keyboard, its cues on every C. Coarse
# steps land on the Cs.
NOTE = base(1, "Note", "Note", "note", 0, "Note")
NOTE.update({
    "minValue": 24.0, "maxValue": 96.0, "initialValue": 48.0,
    "granularity": 1.0, "fineGranularity": 1.0, "coarseGranularity": 12.0,
    "formatString": "%0.0f", "controlType": "NoteSlider", "horizontal": True,
    "automatesSmoothly": True,
    "tickmarks": [24, 36, 48, 60, 72, 84, 96], "minorTickmarks": [30, 42, 54, 66, 78, 90],
    "cueValues": [24, 36, 48, 60, 72, 84, 96],
})

FINE = base(2, "Fine", "Fine", "fine", 1, "Generic")
FINE.update({
    "unitSymbol": "ct", "minValue": -50.0, "maxValue": 50.0, "initialValue": 0.0,
    "granularity": 1.0, "fineGranularity": 0.1, "coarseGranularity": 10.0,
    "formatString": "%0.1f", "controlType": "Slider", "horizontal": True, "automatesSmoothly": True,
    "tickmarks": [-50, 0, 50], "minorTickmarks": [-40, -30, -20, -10, 10, 20, 30, 40],
    "cueValues": [-50, -25, 0, 25, 50],
    # Flat and sharp at the two ends of the track, over it.
    "cueSymbols": ["\u266d", "\u266f"], "cueSymbolPositions": [-50, 50], "cueSymbolDisplay": "above",
})

CHORD_NAMES = ["Unison", "Octaves", "Fifths", "Major", "Minor", "Sus4"]
CHORD = base(3, "Chord", "Chord", "chord", 2, "Indexed")
CHORD.update({
    "minValue": 0.0, "maxValue": float(len(CHORD_NAMES) - 1), "initialValue": 1.0,
    "granularity": 1.0, "fineGranularity": 1.0, "coarseGranularity": 1.0,
    "formatString": "%0.0f", "stringValues": CHORD_NAMES, "controlType": "Cycle",
})

DECAY = base(4, "Decay", "Decay", "decay", 0, "Generic")
DECAY.update({
    "unitSymbol": "s", "minValue": 0.1, "maxValue": 20.0, "initialValue": 1.5,
    "logarithmic": True, "granularity": 0.01, "fineGranularity": 0.01, "coarseGranularity": 0.1,
    "formatString": "%0.2f", "controlType": "Slider", "automatesSmoothly": True,
    "tickmarks": [0.1, 1, 10], "minorTickmarks": [0.2, 0.5, 2, 5, 20],
    "cueValues": [0.1, 0.5, 1, 2, 5, 20],
})

TONE = percent(5, "Tone", "Tone", "tone", 60, 1)
MIX = percent(6, "Mix", "Mix", "mix", 35, 0)

OUTPUT = base(7, "Output", "Output", "out", 1, "Decibels")
OUTPUT.update({
    "minValue": -24.0, "maxValue": 12.0, "initialValue": 0.0,
    "granularity": 0.1, "fineGranularity": 0.01, "coarseGranularity": 1.0,
    "formatString": "%0.1f", "controlType": "Slider", "automatesSmoothly": True,
    "tickmarks": [-24, -12, 0, 12], "minorTickmarks": [-18, -6, 6],
    "cueValues": [-24, -12, -6, 0, 6, 12],
})

INPUTCUT = base(8, "InputCut", "Input Cut", "cut", 0, "Hertz")
INPUTCUT.update({
    "minValue": 20.0, "maxValue": 2000.0, "initialValue": 80.0,
    "logarithmic": True, "granularity": 1.0, "fineGranularity": 1.0, "coarseGranularity": 10.0,
    "coarseGranularityOptions": [20, 40, 60, 80, 100, 150, 200, 300, 500, 800, 1000, 1500, 2000],
    "formatString": "%0.0f", "controlType": "Slider", "horizontal": True, "automatesSmoothly": True,
    "tickmarks": [20, 100, 1000], "minorTickmarks": [50, 200, 500, 2000],
    "cueValues": [20, 50, 100, 200, 500, 1000, 2000],
})

DETUNE = base(9, "Detune", "Detune", "det", 0, "Generic")
DETUNE.update({
    "unitSymbol": "ct", "minValue": 0.0, "maxValue": 30.0, "initialValue": 3.0,
    "granularity": 0.5, "fineGranularity": 0.1, "coarseGranularity": 5.0,
    "formatString": "%0.1f", "controlType": "Slider", "horizontal": True, "automatesSmoothly": True,
    "tickmarks": [0, 10, 20, 30], "minorTickmarks": [5, 15, 25],
    "cueValues": [0, 10, 20, 30],
})

WIDTH = percent(10, "Width", "Width", "width", 100, 1)
WIDTH.update({"horizontal": True, "channelLayoutRules": [{"map": [1, 1], "disabled": True}]})

PARAMETERS = [MASTER, NOTE, FINE, CHORD, DECAY, TONE, MIX, OUTPUT, INPUTCUT, DETUNE, WIDTH]
assert [p["pid"] for p in PARAMETERS] == list(range(len(PARAMETERS)))

# (name, type, parameters in index order, computedLayout over the clump's frame)
CLUMPS = [
    # 476 x 140: title strip 20, the note slider across (60), Fine and Chord under it.
    ("Pitch", "Normal", [NOTE, FINE, CHORD],
     grid(6, 7, f0=(0, 3, 6, 3), f1=(0, 0, 4, 3), f2=(4, 0, 2, 3), x=(0, 6, 6, 1))),
    # 238 x 210: two full-height sliders under the title.
    ("Ring", "Normal", [DECAY, TONE],
     grid(2, 14, f0=(0, 0, 1, 13), f1=(1, 0, 1, 13), x=(0, 13, 2, 1))),
    ("Output", "Normal", [MIX, OUTPUT],
     grid(2, 14, f0=(0, 0, 1, 13), f1=(1, 0, 1, 13), x=(0, 13, 2, 1))),
    ("Input", "Advanced", [INPUTCUT],
     grid(1, 4, f0=(0, 0, 1, 3), x=(0, 3, 1, 1))),
    ("Strings", "Advanced", [DETUNE, WIDTH],
     grid(1, 7, f0=(0, 3, 1, 3), f1=(0, 0, 1, 3), x=(0, 6, 1, 1))),
    ("Power", "PowerBox", [MASTER],
     grid(1, 19, f0=(0, 15, 1, 3))),
]

CLUMP_COLORS = {
    "Pitch": "#8A5CC2", "Ring": "#2F9E8F", "Output": "#C2743C",
    "Input": "#2F9E8F", "Strings": "#8A5CC2", "Power": "#C2743C",
}
for _name, _kind, _params, _layout in CLUMPS:
    for _p in _params:
        _p.setdefault("color", CLUMP_COLORS[_name])

# Editor layouts, indexed by clump position (cid).
CLUMPS_LAYOUT = grid(4, 5, f0=(0, 3, 4, 2), f1=(0, 0, 2, 3), f2=(2, 0, 2, 3))
ADVANCED_LAYOUT = grid(1, 10, f3=(0, 6, 1, 4), f4=(0, 0, 1, 6))



GOVERNED = [p for p in PARAMETERS if not p.get("presetWildcard")]
DEFAULT = {p["codesafeName"]: p["initialValue"] for p in GOVERNED}
CHORD_INDEX = {name: i for i, name in enumerate(CHORD_NAMES)}

# Name -> changes from the defaults (Chord by name). Notes are MIDI numbers.
PRESETS = [
    ("Default", {}),
    ("Gentle Sympathy", dict(Chord="Octaves", Decay=2.5, Tone=55, Mix=20)),
    ("Sitar Strings", dict(Note=50, Chord="Fifths", Decay=3.5, Tone=80, Mix=40, Detune=2,
                           InputCut=150)),
    ("Tanpura Drone", dict(Note=48, Chord="Fifths", Decay=8, Tone=45, Mix=50, Detune=4)),
    ("Harp Wash", dict(Note=55, Chord="Major", Decay=6, Tone=65, Mix=45, Output=-2)),
    ("Minor Haze", dict(Note=45, Chord="Minor", Decay=10, Tone=35, Mix=55, Detune=8,
                        Output=-3)),
    ("Sus Shimmer", dict(Note=62, Chord="Sus4", Decay=5, Tone=90, Mix=40, Detune=6,
                         InputCut=300)),
    ("Bell Tree", dict(Note=72, Chord="Octaves", Decay=4, Tone=95, Mix=35, Detune=12,
                       InputCut=400)),
    ("Metal Box", dict(Note=57, Chord="Unison", Decay=0.5, Tone=90, Mix=60, Detune=25,
                       Output=-3)),
    ("Short Comb", dict(Note=60, Chord="Unison", Decay=0.15, Tone=100, Mix=50, Detune=0)),
    ("Tuned Snare", dict(Note=50, Chord="Octaves", Decay=0.4, Tone=70, Mix=40, InputCut=120)),
    ("Kick Boom", dict(Note=33, Chord="Unison", Decay=1.2, Tone=10, Mix=30, InputCut=20,
                       Detune=0)),
    ("Dark Room", dict(Note=41, Chord="Fifths", Decay=3, Tone=15, Mix=45, InputCut=60,
                       Width=60)),
]

SECTIONS = [
    ("Essentials", ["Default", "Gentle Sympathy", "Short Comb"]),
    ("Strings & Drones", ["Sitar Strings", "Tanpura Drone", "Harp Wash"]),
    ("Pads & Colours", ["Minor Haze", "Sus Shimmer", "Bell Tree", "Dark Room"]),
    ("Percussion", ["Tuned Snare", "Kick Boom", "Metal Box", "Short Comb"]),
]


def preset_value_sets():
    sets = []
    for name, changes in PRESETS:
        unknown = set(changes) - set(DEFAULT)
        assert not unknown, (name, unknown)
        values = dict(DEFAULT)
        for key, value in changes.items():
            values[key] = float(CHORD_INDEX[value] if key == "Chord" else value)
        for p in GOVERNED:
            v = values[p["codesafeName"]]
            assert p["minValue"] <= v <= p["maxValue"], (name, p["codesafeName"], v)
        sets.append(values)
    return sets


def presets():
    names = [name for name, _ in PRESETS]
    assert len(set(names)) == len(names)
    return {
        "pid": len(PARAMETERS), "codesafeName": "Preset", "name": "Preset", "labelString": "Preset",
        "unit": "Indexed", "controlType": "Preset",
        "minValue": 0.0, "maxValue": float(len(names) - 1), "initialValue": 0.0,
        "granularity": 1.0, "fineGranularity": 1.0, "coarseGranularity": 1.0,
        "formatString": "%0.0f", "stringValues": names, "values": preset_value_sets(),
    }


def categorized():
    names = [name for name, _ in PRESETS]
    return {"sections": [{"section": title, "presets": [{"name": m, "presetID": names.index(m)} for m in members]}
                         for title, members in SECTIONS]}


# The level meter's six levels, as the unit publishes them (tollhum::Meter):
# the LV2 plug-ins' meter output ports, which hosts can show too.
METER_PORTS = [
    {"symbol": f"{kind}_{side}", "name": f"{title} {side_name}", "minValue": -90.0, "maxValue": 12.0}
    for kind, title in (("peak", "Peak"), ("hold", "Held peak"), ("rms", "RMS"))
    for side, side_name in (("l", "left"), ("r", "right"))
]

TAB_ORDER = ["Note", "Fine", "Chord", "Decay", "Tone", "Mix", "Output", "InputCut", "Detune", "Width"]

METADATA = {
    "classPrefix": "ZelTollhum",
    "pluginName": "Tollhum",
    "pluginLongName": "Tollhum Sympathetic Resonator",
    "pluginPackageName": "Tollhum",
    "pluginURLSlug": "tollhum",
    "tagline": "Strings that ring along, tuned by note",
    "version": "1.0.0",
    "versionHex": "0x00010000",
    "versionInteger": 65536,
    "channelLayouts": "1-1, 2-2",
    "channelLayoutsCount": 2,
    "width": 540.0,
    "height": 380.0,
    "color": "#8A5CC2",
    "hasParameterSketch": True,
    "parameterOrder": [p["codesafeName"] for p in PARAMETERS],
    "tabOrder": TAB_ORDER,
    "clumpsLayout": CLUMPS_LAYOUT,
    "advancedClumpsLayout": ADVANCED_LAYOUT,
    "meterPorts": METER_PORTS,
}


def description():
    return {"metadata": METADATA, "clumps": [clump_entry(*c) for c in CLUMPS],
            "presets": presets(), "categorizedPresets": categorized()}


def main(argv):
    return write_or_check(description(), OUT, argv)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
