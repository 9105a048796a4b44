// The script zel-lv2-host runs: one command per line, `#` starts a comment.
// The whole script is read and checked before anything runs, so a typo on
// the last line never leaves a half-run plug-in behind (exit status 2).
#pragma once

#include <string>
#include <vector>

namespace zel::lv2host {

struct Command {
  int line = 0;                   // 1-based line in the script
  std::string name;               // "plugin", "drag", ...
  std::vector<std::string> args;  // words; a text argument is one element
};

struct ParsedScript {
  std::vector<Command> commands;
  std::string error;  // "line N: ..." when the script is bad
};

// Splits and checks every line against the command table (names, argument
// counts, numbers where numbers belong, comparison operators).
ParsedScript parseScript(const std::string& text);

// The command table as help text (one line per command), for --help.
std::string commandSummary();

}  // namespace zel::lv2host
