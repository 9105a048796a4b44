#include "controls/ZelNoteSlider.h"

#include <cmath>

ZEL_NAMESPACE_BEGIN

std::string ZelNoteName(float note) {
  static constexpr const char* kNames[] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B"};
  if (!std::isfinite(note)) return {};
  long n = std::lround(note);
  long octave = (n >= 0 ? n / 12 : (n - 11) / 12) - 1;  // floor division
  long index = n - (octave + 1) * 12;
  return std::string(kNames[index]) + std::to_string(octave);
}

void ZelNoteSlider::readoutForValue(float value, std::string* text, std::string* suffix) const {
  if (!namesNotes()) return ZelVerticalSlider::readoutForValue(value, text, suffix);
  *text = ZelNoteName(value);
  suffix->clear();
}

std::string ZelNoteSlider::cueTextForValue(float value) const {
  return namesNotes() ? ZelNoteName(value) : ZelVerticalSlider::cueTextForValue(value);
}

bool ZelNoteSlider::cueIsInThousands(float value) const {
  return !namesNotes() && ZelVerticalSlider::cueIsInThousands(value);
}

ZEL_NAMESPACE_END
