// Tollhum's parameters as the unit sees them (ids, ranges and defaults of
// products/tollhum/config.plist, through the generated table) and the
// intervals of each Chord.
// Threading: constants only.
#pragma once

#include "dsp/ZelTollhumParameterTable.h"

ZEL_DSP_NAMESPACE_BEGIN

namespace tollhum {

// Parameter ids (pids), as param::Note, and their ranges: the table the
// build generates from products/tollhum/config.plist.
namespace param {
enum : int {
  Power = kPidMasterOnOff,
  Note = kPidNote,
  Fine = kPidFine,
  Chord = kPidChord,
  Decay = kPidDecay,
  Tone = kPidTone,
  Mix = kPidMix,
  Output = kPidOutput,
  InputCut = kPidInputCut,
  Detune = kPidDetune,
  Width = kPidWidth,
};
}  // namespace param

inline constexpr int kParameterCount = kZelParameterCount;
inline constexpr const auto& kParameters = kZelParameters;

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
