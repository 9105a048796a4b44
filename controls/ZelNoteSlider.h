// A slider whose texts are note names: the readout and the cue marks of a
// parameter whose unit is Note name MIDI notes, 0 = "C-1" to 127 = "G9",
// with sharps ("C#4" is 61). Other units show their usual texts. Behaves as
// the vertical slider in every other way.
//
// Ownership and threading as ZelVerticalSlider.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "controls/ZelVerticalSlider.h"

ZEL_NAMESPACE_BEGIN

// The name of MIDI note `note` (rounded to the nearest whole note; any
// integer has one: -1 is "B-2").
std::string ZelNoteName(float note);
// The MIDI note of a typed note name: a letter A to G (either case), an
// optional sharp ("#") or flat ("b") and an octave, which may be negative
// ("C-1" is 0, "A4" 69, "Bb2" 46, "e#3" 53); nothing for any other text.
std::optional<float> ZelNoteFromName(std::string_view name);
// Whether `text` can begin or continue a typed note name after `typed`.
bool ZelIsNoteNameCharacter(std::string_view typed, std::string_view text);

class ZelNoteSlider : public ZelVerticalSlider {
 public:
  using ZelVerticalSlider::ZelVerticalSlider;

 protected:
  void readoutForValue(float value, std::string* text, std::string* suffix) const override;
  std::string cueTextForValue(float value) const override;
  bool cueIsInThousands(float value) const override;

 private:
  bool namesNotes() const { return parameter()->unit == ZelUnit::Note; }
};

ZEL_NAMESPACE_END
