#include "app/drive/DriveScript.h"


ZEL_NAMESPACE_BEGIN

namespace {

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

}  // namespace

std::vector<std::string> ZelDriveWords(std::string_view line) {
  std::vector<std::string> words;
  std::size_t i = 0;
  while (i < line.size()) {
    while (i < line.size() && isSpace(line[i])) ++i;
    if (i == line.size() || line[i] == '#') break;
    const std::size_t start = i;
    while (i < line.size() && !isSpace(line[i])) ++i;
    words.emplace_back(line.substr(start, i - start));
  }
  return words;
}

std::string ZelDriveRestOfLine(const std::vector<std::string>& words, std::size_t from) {
  std::string rest;
  for (std::size_t i = from; i < words.size(); ++i) {
    if (!rest.empty()) rest += ' ';
    rest += words[i];
  }
  return rest;
}

ZEL_NAMESPACE_END
