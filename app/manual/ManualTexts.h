// The manual's own words: what the description cannot say (what each
// parameter does to the sound, what each clump is for, the overview), read
// from resources/manual.plist and checked against the description.
//
// The file is a dictionary of exactly three keys, each required:
//   overview    string
//   clumps      dictionary: clump code name -> string
//   parameters  dictionary: parameter code name -> string
// Every clump and every parameter of the description must have a non-empty
// text, and every key must name one that exists; anything else (another
// key, a value that is not a string) is an error too.
//
// Threading: pure functions; any thread.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

class ZelConfig;
class ZelPlist;

struct ZelManualTexts {
  std::string overview;
  std::map<std::string, std::string, std::less<>> clumps, parameters;
};

struct ZelManualTextsLoad {
  ZelManualTexts texts;
  std::vector<std::string> errors;  // one line each; empty when the file is usable
};

ZelManualTextsLoad ZelReadManualTexts(const ZelPlist& file, const ZelConfig& config);
// Reads the file at `path` (a property list) and checks it.
ZelManualTextsLoad ZelLoadManualTexts(const std::string& path, const ZelConfig& config);

ZEL_NAMESPACE_END
