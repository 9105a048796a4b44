// The expressions of `eval`, parsed before anything is evaluated so that a
// bad expression stops the run with no partial output.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "model/ZelConfig.h"

ZEL_NAMESPACE_BEGIN

struct ZelEvalExpression {
  std::string verb;               // "position", "frames", ...
  std::vector<std::string> args;  // as written
  std::vector<double> numbers;    // the numeric arguments, in order
  ZelGranularityType granularity = 0;
  bool forward = true;            // cycle
};

// Parses the expressions from the command line. Each one is either a verb
// followed by its arguments as separate words, or one word holding the
// whole expression separated by blanks ("position Cutoff 1000"). Returns
// none and sets `error` (naming the offending expression) on failure.
std::optional<std::vector<ZelEvalExpression>> ZelParseEvalExpressions(const std::vector<std::string>& words,
                                                                       std::string& error);

// One expression's output lines (each ending in a newline).
std::string ZelEvaluate(const ZelConfig& config, const ZelEvalExpression& e);

// `frames WHAT W H`: the frames of the named layout over (0, 0, W, H).
std::string ZelEvaluateFrames(const ZelConfig& config, const std::string& what, double width, double height);

ZEL_NAMESPACE_END
