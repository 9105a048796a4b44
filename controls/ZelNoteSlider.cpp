#include "controls/ZelNoteSlider.h"

#include <cctype>
#include <cmath>
#include <cstring>

ZEL_NAMESPACE_BEGIN

std::string ZelNoteName(float note) {
  static constexpr const char* kNames[] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B"};
  if (!std::isfinite(note)) return {};
  long n = std::lround(note);
  long octave = (n >= 0 ? n / 12 : (n - 11) / 12) - 1;  // floor division
  long index = n - (octave + 1) * 12;
  return std::string(kNames[index]) + std::to_string(octave);
}

std::optional<float> ZelNoteFromName(std::string_view name) {
  static constexpr int kSemitones[] = {9, 11, 0, 2, 4, 5, 7};  // A B C D E F G
  if (name.empty()) return std::nullopt;
  const char letter = static_cast<char>(std::toupper(static_cast<unsigned char>(name[0])));
  if (letter < 'A' || letter > 'G') return std::nullopt;
  int semitone = kSemitones[letter - 'A'];
  std::size_t i = 1;
  if (i < name.size() && name[i] == '#') ++semitone, ++i;
  else if (i + 1 < name.size() && name[i] == 'b') --semitone, ++i;
  bool negative = false;
  if (i < name.size() && name[i] == '-') negative = true, ++i;
  if (i == name.size() || name.size() - i > 2) return std::nullopt;
  int octave = 0;
  for (; i < name.size(); ++i) {
    if (!std::isdigit(static_cast<unsigned char>(name[i]))) return std::nullopt;
    octave = octave * 10 + (name[i] - '0');
  }
  return static_cast<float>(((negative ? -octave : octave) + 1) * 12 + semitone);
}

bool ZelIsNoteNameCharacter(std::string_view typed, std::string_view text) {
  if (text.size() != 1) return false;
  const char c = text[0];
  if (typed.empty()) return std::strchr("ABCDEFGabcdefg", c) != nullptr && c != '\0';
  const bool afterLetter = typed.size() == 1 && std::isalpha(static_cast<unsigned char>(typed[0]));
  if (c == '#' || c == 'b') return afterLetter;
  if (c == '-') return std::isalpha(static_cast<unsigned char>(typed.back())) || typed.back() == '#';
  return false;
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
