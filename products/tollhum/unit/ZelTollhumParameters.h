// Tollhum's parameters as the unit sees them: ids, ranges and defaults of
// products/tollhum/config.plist (a test holds the two together), and the
// intervals of each Chord.
// Threading: constants only.
#pragma once

#include <array>

#include "dsp/ZelRamp.h"

ZEL_DSP_NAMESPACE_BEGIN

namespace tollhum {

// Parameter ids (pids), as param::Note.
namespace param {
enum : int {
  Power = 0,
  Note = 1,
  Fine = 2,
  Chord = 3,
  Decay = 4,
  Tone = 5,
  Mix = 6,
  Output = 7,
  InputCut = 8,
  Detune = 9,
  Width = 10,
};
}  // namespace param

inline constexpr int kParameterCount = 11;

struct ParameterRange {
  const char* codeName;
  float minimum, maximum, initial;
};

inline constexpr std::array<ParameterRange, kParameterCount> kParameters{{
    {"MasterOnOff", 0, 1, 1},
    {"Note", 24, 96, 48},
    {"Fine", -50, 50, 0},
    {"Chord", 0, 5, 1},
    {"Decay", 0.1f, 20, 1.5f},
    {"Tone", 0, 100, 60},
    {"Mix", 0, 100, 35},
    {"Output", -24, 12, 0},
    {"InputCut", 20, 2000, 80},
    {"Detune", 0, 30, 3},
    {"Width", 0, 100, 100},
}};

// Four strings per channel.
inline constexpr int kStrings = 4;
inline constexpr int kChordCount = 6;
// Semitones above the Note of each string, by Chord (Unison, Octaves,
// Fifths, Major, Minor, Sus4).
inline constexpr int kChordIntervals[kChordCount][kStrings] = {
    {0, 0, 0, 0}, {0, 12, 19, 24}, {0, 7, 12, 19}, {0, 4, 7, 12}, {0, 3, 7, 12}, {0, 5, 7, 12},
};
// Each string's share of Detune, in cents, on the left (first) channel;
// the right channel takes the opposite shares, so a detuned pair beats
// differently on each side.
inline constexpr float kDetuneShares[kStrings] = {-0.5f, 0.5f, -1.0f / 6.0f, 1.0f / 6.0f};

}  // namespace tollhum

ZEL_DSP_NAMESPACE_END
