#!/usr/bin/python3
"""Writes products/vantry/config.plist, the description of Vantry that the editor reads.

The plist is the source the editor reads and is committed; this script keeps it
consistent (every preset lists every parameter that presets govern, clump
layouts name a frame for every parameter) and is the place to change it:

    /usr/bin/python3 products/vantry/tools/make_config.py            # rewrite the file
    /usr/bin/python3 products/vantry/tools/make_config.py --check    # exit 1 if it is stale

Writing drops the label images; ./vantry labels runs this script and then
zel-make-labels, which renders them back in (--check ignores them).

Geometry, in points, y growing upward:
  editor 480 x 380 = power box (right 62) + preset bar (bottom 30) + clumps area 418 x 350.
  Main clumps: three panels of 138 x 350 (6 columns of 69, centred with 2 points to
  spare), two control columns each; every clump has its title strip in its top row.
  Advanced area: the clumps area inset by 14, (14, 14, 390, 322): 6 columns of 65,
  14 rows of 23. Noise above Quality on the left, Stereo on the right.
  The HQ toggle lives in the advanced view's bottom-left corner. The dashed outside
  border of that view (inset 14, so it runs at 7) bends round the control on a circle
  centred at (mx, my) = centre of the control's frame - (40, 40) with radius
  width / 2 + 64. Centring the frame on (47, 47) puts that centre exactly on the
  border's corner (7, 7): the arc then starts on the bottom edge and ends on the left
  edge with no jog, a clean quarter circle of radius 92 round the corner.
"""

import os
import plistlib
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
OUT = os.path.normpath(os.path.join(HERE, "..", "config.plist"))
sys.path.insert(0, os.path.join(HERE, "..", "..", "..", "model", "tools"))
from zel_description_writer import clump_entry, grid, write_or_check  # noqa: E402

# ---------------------------------------------------------------- helpers




PERCENT_CUES = [0, 25, 50, 75, 100]
PERCENT_TICKS = [0, 25, 50, 75, 100]
PERCENT_MINOR = [10, 20, 30, 40, 60, 70, 80, 90]

FREQ_OPTIONS = [20, 30, 40, 50, 60, 80, 100, 120, 150, 200, 250, 300, 400, 500, 600, 800,
                1000, 1200, 1500, 2000, 2500, 3000, 4000, 5000, 6000, 8000,
                10000, 12000, 15000, 20000]
FREQ_TICKS = [100, 1000, 10000]
FREQ_MINOR = [30, 40, 50, 60, 70, 80, 90, 200, 300, 400, 500, 600, 700, 800, 900,
              2000, 3000, 4000, 5000, 6000, 7000, 8000, 9000]
FREQ_CUES = [50, 100, 200, 500, 1000, 2000, 5000, 10000]


def percent(pid, code, name, minimal, initial, index, label=None):
    return {
        "pid": pid, "codesafeName": code, "name": name, "minimalName": minimal,
        "labelString": label or name, "indexInClump": index,
        "unit": "Percent", "unitEnumIdentifier": "kAudioUnitParameterUnit_Percent",
        "minValue": 0.0, "maxValue": 100.0, "initialValue": float(initial),
        "granularity": 1.0, "fineGranularity": 0.1, "coarseGranularity": 10.0,
        "formatString": "%0.1f", "controlType": "Slider", "automatesSmoothly": True,
        "tickmarks": PERCENT_TICKS, "minorTickmarks": PERCENT_MINOR, "cueValues": PERCENT_CUES,
    }


def frequency(pid, code, name, minimal, initial, index):
    return {
        "pid": pid, "codesafeName": code, "name": name, "minimalName": minimal,
        "labelString": name, "indexInClump": index,
        "unit": "Hertz", "unitEnumIdentifier": "kAudioUnitParameterUnit_Hertz",
        "minValue": 20.0, "maxValue": 20000.0, "initialValue": float(initial),
        "logarithmic": True, "auLogarithmic": False, "automatesSmoothly": True,
        # Above 1 kHz the steps widen to 10 Hz and above 10 kHz to 100 Hz on their own.
        "granularity": 1.0, "fineGranularity": 1.0, "coarseGranularity": 10.0,
        "coarseGranularityOptions": FREQ_OPTIONS,
        "formatString": "%0.0f", "controlType": "Slider",
        "tickmarks": FREQ_TICKS, "minorTickmarks": FREQ_MINOR, "cueValues": FREQ_CUES,
    }


def centred_part_layout(rows, control_row, control_rows, label_row):
    """A control's own layout: four columns, the control in the middle two."""
    return grid(4, rows, f0=(1, control_row, 2, control_rows), x=(0, label_row, 4, 1))


# ---------------------------------------------------------------- parameters

MASTER = {
    "pid": 0, "codesafeName": "MasterOnOff", "name": "Power", "minimalName": "pwr",
    "labelString": "Power", "indexInClump": 0,
    "unit": "Boolean", "unitEnumIdentifier": "kAudioUnitParameterUnit_Boolean",
    "minValue": 0.0, "maxValue": 1.0, "initialValue": 1.0,
    "granularity": 1.0, "fineGranularity": 1.0, "coarseGranularity": 1.0,
    "formatString": "%0.0f", "stringValues": ["Off", "On"],
    "controlType": "Boolean", "scope": "global", "presetWildcard": True,
    "labelDisplay": "hidden",
}

DEGRADE = percent(1, "Degrade", "Degrade", "deg", 0, 0)
DRIVE = percent(2, "Drive", "Drive", "drv", 0, 1)

OUTPUT = {
    "pid": 3, "codesafeName": "Output", "name": "Output", "minimalName": "out",
    "labelString": "Output", "indexInClump": 1,
    "unit": "Decibels", "unitEnumIdentifier": "kAudioUnitParameterUnit_Decibels",
    "minValue": -24.0, "maxValue": 24.0, "initialValue": 0.0,
    "granularity": 0.1, "fineGranularity": 0.01, "coarseGranularity": 1.0,
    "formatString": "%0.1f", "controlType": "Slider", "automatesSmoothly": True,
    "tickmarks": [-24, -12, 0, 12, 24], "minorTickmarks": [-18, -6, 6, 18],
    "cueValues": [-24, -12, -6, 0, 6, 12, 24],
}

LOWCUT = frequency(4, "LowCut", "Low Cut", "lo", 20, 0)
HIGHCUT = frequency(5, "HighCut", "High Cut", "hi", 20000, 1)

SLOPE = {
    "pid": 6, "codesafeName": "Slope", "name": "Slope", "minimalName": "slope",
    "labelString": "Slope", "indexInClump": 2,
    "unit": "DecibelsPerOctave", "unitSymbol": "dB/oct",
    "unitEnumIdentifier": "kAudioUnitParameterUnit_Generic",
    "minValue": 6.0, "maxValue": 96.0, "initialValue": 12.0,
    "granularity": 6.0, "fineGranularity": 6.0, "coarseGranularity": 6.0,
    "coarseGranularityOptions": [6, 12, 24, 48, 96],
    "formatString": "%0.0f", "controlType": "Number",
    # The cell under the two frequency sliders is 138 x 100: a 68 x 40 box, title below.
    "computedLayout": grid(4, 5, f0=(1, 2, 2, 2), x=(0, 1, 4, 1)),
}

MIX = percent(7, "Mix", "Mix", "mix", 100, 0)

MODE = {
    "pid": 8, "codesafeName": "Mode", "name": "Mode", "minimalName": "mode",
    "labelString": "Mode", "indexInClump": 0,
    "unit": "Indexed", "unitEnumIdentifier": "kAudioUnitParameterUnit_Indexed",
    "minValue": 0.0, "maxValue": 2.0, "initialValue": 0.0,
    "granularity": 1.0, "fineGranularity": 1.0, "coarseGranularity": 1.0,
    "formatString": "%0.0f", "stringValues": ["Stereo", "Mono", "Mid/Side"],
    "controlType": "Cycle",
    # Width means nothing once the signal is folded to mono.
    "dims": [[], ["Width"], []],
    # A mono track (one in, one out) can only run in Mono.
    "channelLayoutRules": [{"map": [1, 1], "disabled": True, "immutable": 1}],
    # 130 x 299 cell: the selector near the top, under the clump title.
    "computedLayout": centred_part_layout(13, 10, 2, 9),
}

HISS = {
    "pid": 9, "codesafeName": "Hiss", "name": "Hiss", "minimalName": "hiss",
    "labelString": "Hiss", "indexInClump": 0,
    "unit": "Decibels", "unitEnumIdentifier": "kAudioUnitParameterUnit_Decibels",
    "minValue": -96.0, "maxValue": 0.0, "initialValue": -96.0,
    "showsNegativeInfinity": True,
    "granularity": 0.5, "fineGranularity": 0.1, "coarseGranularity": 6.0,
    "formatString": "%0.1f", "controlType": "Slider", "automatesSmoothly": True,
    "tickmarks": [-96, -72, -48, -24, 0], "minorTickmarks": [-84, -60, -36, -12],
    "cueValues": [-72, -48, -24, 0],
    # 130 x 161 cell: a slider as wide as the main ones, title below.
    "computedLayout": centred_part_layout(7, 1, 6, 0),
}

HQ = {
    "pid": 10, "codesafeName": "HQ", "name": "HQ", "minimalName": "hq",
    "labelString": "HQ", "indexInClump": 0,
    "unit": "Indexed", "unitEnumIdentifier": "kAudioUnitParameterUnit_Indexed",
    "minValue": 0.0, "maxValue": 1.0, "initialValue": 0.0,
    "granularity": 1.0, "fineGranularity": 1.0, "coarseGranularity": 1.0,
    "formatString": "%0.0f", "stringValues": ["Off", "On"],
    "controlType": "Toggle",
    # Centred on (47, 47) of the advanced view: see the module comment.
    "displacedFrame": [19, 19, 56, 56],
    "computedLayout": grid(1, 7, f0=(0, 3, 1, 4), x=(0, 0, 1, 3)),
}

WIDTH = percent(11, "Width", "Width", "width", 100, 1)
WIDTH["channelLayoutRules"] = [{"map": [1, 1], "disabled": True}]
WIDTH["computedLayout"] = centred_part_layout(13, 1, 12, 0)

PARAMETERS = [MASTER, DEGRADE, DRIVE, OUTPUT, LOWCUT, HIGHCUT, SLOPE, MIX, MODE, HISS, HQ, WIDTH]
assert [p["pid"] for p in PARAMETERS] == list(range(12))

# ---------------------------------------------------------------- clumps

# (name, type, parameters in index order, computedLayout over the clump's frame)
CLUMPS = [
    # 138 x 350: sliders 69 x 225 over the slope box, title strip 25.
    ("Filter", "Normal", [LOWCUT, HIGHCUT, SLOPE],
     grid(2, 14, f0=(0, 4, 1, 9), f1=(1, 4, 1, 9), f2=(0, 0, 2, 4), x=(0, 13, 2, 1))),
    # 138 x 350: two full-height sliders.
    ("Degrade", "Normal", [DEGRADE, DRIVE],
     grid(2, 14, f0=(0, 0, 1, 13), f1=(1, 0, 1, 13), x=(0, 13, 2, 1))),
    ("Output", "Normal", [MIX, OUTPUT],
     grid(2, 14, f0=(0, 0, 1, 13), f1=(1, 0, 1, 13), x=(0, 13, 2, 1))),
    # 130 x 184.
    ("Noise", "Advanced", [HISS],
     grid(1, 8, f0=(0, 0, 1, 7), x=(0, 7, 1, 1))),
    # 260 x 322.
    ("Stereo", "Advanced", [MODE, WIDTH],
     grid(2, 14, f0=(0, 0, 1, 13), f1=(1, 0, 1, 13), x=(0, 13, 2, 1))),
    # 130 x 138; the HQ toggle itself is displaced into the corner below the title.
    ("Quality", "Advanced", [HQ],
     grid(2, 6, f0=(0, 0, 1, 3), x=(0, 5, 2, 1))),
    # The power strip, 62 x 380: the switch at the top. No title frame: the
    # switch's own label already says what it is.
    ("Power", "PowerBox", [MASTER],
     grid(1, 19, f0=(0, 15, 1, 3))),
]

# Each clump's accent: the colour its controls fill and glow with. Mid tones
# that read on the light texture and on the dark one alike.
CLUMP_COLORS = {
    "Filter": "#2F8FB8", "Degrade": "#D9822B", "Output": "#5E9E4B",
    "Noise": "#B0644B", "Stereo": "#2F8FB8", "Quality": "#D9822B", "Power": "#D9822B",
}
for _name, _kind, _params, _layout in CLUMPS:
    for _p in _params:
        _p.setdefault("color", CLUMP_COLORS[_name])

# Editor layouts, indexed by clump position (cid).
CLUMPS_LAYOUT = grid(6, 1, f0=(0, 0, 2, 1), f1=(2, 0, 2, 1), f2=(4, 0, 2, 1))
ADVANCED_LAYOUT = grid(6, 14, f3=(0, 6, 2, 8), f4=(2, 0, 4, 14), f5=(0, 0, 2, 6))



# ---------------------------------------------------------------- presets

GOVERNED = [p for p in PARAMETERS if not p.get("presetWildcard")]
DEFAULT = {p["codesafeName"]: p["initialValue"] for p in GOVERNED}

# Name -> changes from the defaults. Frequencies sit on their step (10 Hz above
# 1 kHz, 100 Hz above 10 kHz), so a freshly loaded preset reads clean. The
# unit keeps a driven signal's level; Output makes up what the band limits
# and the crushing take away, so that speech through any preset comes out
# within about 3 dB of its level going in (vantry process reports both).
PRESETS = [
    ("Default", {}),
    ("Telephone", dict(LowCut=300, HighCut=3400, Slope=24, Degrade=20, Drive=35, Output=2,
                       Mode=1, Hiss=-60)),
    ("AM Radio", dict(LowCut=150, HighCut=4500, Slope=18, Degrade=25, Drive=30, Output=1.5,
                      Mode=1, Hiss=-48)),
    ("Walkie-Talkie", dict(LowCut=500, HighCut=2500, Slope=48, Degrade=45, Drive=60,
                           Output=4.5, Mode=1, Hiss=-42)),
    ("12-Bit Sampler", dict(LowCut=30, HighCut=12000, Degrade=35, Drive=10, Hiss=-84, HQ=1)),
    ("Crushed Drums", dict(LowCut=40, HighCut=8000, Degrade=60, Drive=45, Output=0, Mix=70,
                           Hiss=-72)),
    ("Cassette Dub", dict(LowCut=40, HighCut=10000, Degrade=15, Drive=25, Hiss=-54, HQ=1,
                          Width=85)),
    ("Dusty Vinyl", dict(LowCut=30, HighCut=14000, Degrade=10, Drive=15, Hiss=-60, Width=90)),
    ("Underwater", dict(HighCut=800, Slope=24, Drive=10, Output=3, HQ=1)),
    ("Clean Band-Pass", dict(LowCut=80, HighCut=16000, HQ=1)),
    ("Bitcrusher Mayhem", dict(Degrade=90, Drive=80, Output=3)),
    ("Parallel Grit", dict(LowCut=100, HighCut=9000, Slope=24, Degrade=50, Drive=50,
                           Output=1.5, Mix=35, HQ=1)),
    ("Narrow Lo-Fi", dict(LowCut=120, HighCut=6000, Degrade=30, Drive=20, Mode=2, Width=60,
                          Hiss=-66)),
]

SECTIONS = [
    ("Essentials", ["Default", "Clean Band-Pass", "Underwater"]),
    ("Voices & Radio", ["Telephone", "AM Radio", "Walkie-Talkie"]),
    ("Lo-Fi", ["12-Bit Sampler", "Crushed Drums", "Cassette Dub", "Dusty Vinyl",
               "Bitcrusher Mayhem"]),
    ("Mix Tricks", ["Parallel Grit", "Narrow Lo-Fi", "Telephone"]),
]


def preset_value_sets():
    sets = []
    for name, changes in PRESETS:
        unknown = set(changes) - set(DEFAULT)
        assert not unknown, (name, unknown)
        values = dict(DEFAULT)
        for key, value in changes.items():
            values[key] = float(value)
        for p in GOVERNED:
            v = values[p["codesafeName"]]
            assert p["minValue"] <= v <= p["maxValue"], (name, p["codesafeName"], v)
        sets.append(values)
    return sets


def presets():
    names = [name for name, _ in PRESETS]
    assert len(set(names)) == len(names)
    return {
        "pid": 12, "codesafeName": "Preset", "name": "Preset", "labelString": "Preset",
        "unit": "Indexed", "controlType": "Preset",
        "minValue": 0.0, "maxValue": float(len(names) - 1), "initialValue": 0.0,
        "granularity": 1.0, "fineGranularity": 1.0, "coarseGranularity": 1.0,
        "formatString": "%0.0f",
        "stringValues": names,
        "values": preset_value_sets(),
    }


def categorized():
    names = [name for name, _ in PRESETS]
    sections = []
    for title, members in SECTIONS:
        entries = [{"name": m, "presetID": names.index(m)} for m in members]
        sections.append({"section": title, "presets": entries})
    return {"sections": sections}


# ---------------------------------------------------------------- metadata

TAB_ORDER = ["LowCut", "HighCut", "Slope", "Degrade", "Drive", "Mix", "Output",
             "Mode", "Width", "Hiss", "HQ"]

METADATA = {
    "classPrefix": "ZelVantry",
    "pluginName": "Vantry",
    "pluginLongName": "Vantry Band Limiter & Degrader",
    "pluginPackageName": "Vantry",
    "pluginURLSlug": "vantry",
    "tagline": "Band limiting and degradation",
    "version": "1.1.1",
    "versionHex": "0x00010101",
    "versionInteger": 65793,
    "channelLayouts": "1-1, 2-2",
    "channelLayoutsCount": 2,
    "width": 480.0,
    "height": 380.0,
    "color": "#D9822B",
    "hasParameterSketch": True,
    "hasGenericHQMode": True,
    "genericHQParameter": "HQ",
    # The unit's oversampling with HQ on: the factor of the lowest listed rate
    # at or above the session's rate, 1 above them all.
    "genericHQMultsBySampleRate": {"44100": 4, "48000": 4, "88200": 2, "96000": 2},
    "parameterOrder": [p["codesafeName"] for p in PARAMETERS],
    "tabOrder": TAB_ORDER,
    "clumpsLayout": CLUMPS_LAYOUT,
    "advancedClumpsLayout": ADVANCED_LAYOUT,
}


def description():
    return {
        "metadata": METADATA,
        "clumps": [clump_entry(*c) for c in CLUMPS],
        "presets": presets(),
        "categorizedPresets": categorized(),
    }


def main(argv):
    return write_or_check(description(), OUT, argv)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
