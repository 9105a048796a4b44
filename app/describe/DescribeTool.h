// zel-describe: the command-line view of a description file for whoever
// writes one. Its output is a contract checked from outside:
//   summary FILE         metadata, clumps, parameters, preset names
//   json FILE            the whole model as JSON
//   check FILE           findings, one line each; exit 0 clean, 1 errors, 2 unreadable
//   eval FILE EXPR...    value operations, one line per expression
// Exit status 2 also means a usage error (unknown command or expression).
//
// Everything here is single-threaded; each command writes its whole output
// into a string that main() prints.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "model/ZelConfig.h"
#include "toolkit/foundation/ZelPlistReader.h"

ZEL_NAMESPACE_BEGIN

// Exit statuses.
inline constexpr int kDescribeOK = 0;
inline constexpr int kDescribeFindings = 1;
inline constexpr int kDescribeUnusable = 2;

// A description as read from disk: the raw property list (null when the file
// could not be read at all), the reader's findings, and the model built from
// the value (the empty model when it is not a dictionary). Owns everything.
struct ZelDescription {
  ZelPlistReadResult read;
  std::unique_ptr<ZelConfig> config;
  bool readable() const { return !read.value.isNull(); }
};

// Reads `path` (XML or binary). Never throws; `config` is never null.
ZelDescription ZelReadDescription(const std::string& path);

// The commands. Each fills `out` (standard output) and `err` (standard
// error) and returns the exit status.
int ZelDescribeSummary(const ZelDescription& d, std::string& out);
int ZelDescribeJson(const ZelDescription& d, std::string& out);
int ZelDescribeCheck(const ZelDescription& d, std::string& out);
int ZelDescribeEval(const ZelDescription& d, const std::vector<std::string>& expressions, std::string& out,
                    std::string& err);

ZEL_NAMESPACE_END
