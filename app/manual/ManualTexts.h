// The manual's own words: what the description cannot say (what each
// parameter does to the sound, what each clump is for, the overview), read
// from resources/manual.plist and checked against the description.
//
// The file is a dictionary of three required keys and one optional:
//   overview    string
//   clumps      dictionary: clump code name -> string
//   parameters  dictionary: parameter code name -> string
//   flow        (optional) the signal chain drawn under the overview:
//               steps       array of strings, in signal order ("\n" breaks
//                           a box's line)
//               chainFirst, chainLast   (optional) the steps, by index,
//                           that run for each channel of processing: framed
//               chainLabel  (optional) what the frame says
//               note        (optional) a line under the chain
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

struct ZelManualFlow {
  std::vector<std::string> steps;  // empty: no chain is drawn
  int chainFirst = -1, chainLast = -1;  // -1: no frame
  std::string chainLabel, note;
};

struct ZelManualTexts {
  std::string overview;
  ZelManualFlow flow;
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
