#include "app/lv2host/HostScript.h"

#include <cstdlib>
#include <sstream>

namespace zel::lv2host {

namespace {

// Argument kinds: w word, i integer >= 0, n number, o comparison operator,
// t the rest of the line as one text (quotes around it are removed).
// Kinds after '?' are optional.
struct Syntax {
  const char* name;
  const char* args;
  const char* usage;
};

constexpr Syntax kCommands[] = {
    {"plugin", "w", "plugin URI"},
    {"ui", "?w", "ui [URI]"},
    {"close-ui", "", "close-ui"},
    {"open-ui", "", "open-ui"},
    {"instances", "i", "instances K"},
    {"select", "i", "select I"},
    {"idle", "i", "idle N"},
    {"wait", "i", "wait MS"},
    {"measure-idle", "i", "measure-idle N"},
    {"flood", "i?i", "flood RATE [LAG_MS]"},
    {"run", "i", "run FRAMES"},
    {"signal", "w?nn", "signal silence | signal sine HZ [AMPLITUDE]"},
    {"set", "wn", "set SYMBOL VALUE"},
    {"expect-port", "won?n", "expect-port SYMBOL OP VALUE [TOLERANCE]"},
    {"expect-writes", "wnn", "expect-writes SYMBOL MIN MAX"},
    {"expect-no-writes", "?w", "expect-no-writes [SYMBOL]"},
    {"expect-atoms", "wi", "expect-atoms SYMBOL MIN"},
    {"expect-touch", "w", "expect-touch SYMBOL"},
    {"expect-monotonic-writes", "w", "expect-monotonic-writes SYMBOL"},
    {"clear-writes", "", "clear-writes"},
    {"print-writes", "", "print-writes"},
    {"print-ports", "", "print-ports"},
    {"expect-log", "t", "expect-log TEXT"},
    {"expect-no-log", "t", "expect-no-log TEXT"},
    {"clear-log", "", "clear-log"},
    {"click", "nn?i", "click X Y [BUTTON]"},
    {"drag", "nnnn?i", "drag X1 Y1 X2 Y2 [STEPS]"},
    {"scroll", "nnn", "scroll X Y CLICKS"},
    {"key", "w?w", "key KEYSYM [MODIFIERS]"},
    {"type", "t", "type TEXT"},
    {"clipboard-expect", "t", "clipboard-expect TEXT"},
    {"clipboard-print", "", "clipboard-print"},
    {"expect-size", "ii", "expect-size W H"},
    {"expect-ui-fits", "ii", "expect-ui-fits W H"},
    {"expect-paint-ms", "n", "expect-paint-ms MAX"},
    {"screenshot", "w", "screenshot FILE.png"},
    {"save-state", "w", "save-state NAME"},
    {"restore-state", "w", "restore-state NAME"},
    {"preset-load", "t", "preset-load LABEL|URI"},
    {"expect-presets-load", "", "expect-presets-load"},
    {"expect-x-errors", "i", "expect-x-errors N"},
    {"print", "?t", "print TEXT"},
    {"print-memory", "", "print-memory"},
};

const Syntax* findCommand(const std::string& name) {
  for (const auto& c : kCommands)
    if (name == c.name) return &c;
  return nullptr;
}

bool isNumber(const std::string& s) {
  if (s.empty()) return false;
  char* end = nullptr;
  std::strtod(s.c_str(), &end);
  return end && *end == '\0';
}

bool isCount(const std::string& s) {
  if (s.empty() || s.size() > 9) return false;
  for (char c : s)
    if (c < '0' || c > '9') return false;
  return true;
}

bool isOperator(const std::string& s) {
  return s == "==" || s == "!=" || s == "<" || s == "<=" || s == ">" || s == ">=";
}

std::string trim(const std::string& s) {
  const auto b = s.find_first_not_of(" \t\r");
  if (b == std::string::npos) return {};
  const auto e = s.find_last_not_of(" \t\r");
  return s.substr(b, e - b + 1);
}

std::string unquote(std::string s) {
  if (s.size() >= 2 && s.front() == '"' && s.back() == '"') return s.substr(1, s.size() - 2);
  return s;
}

// Removes a comment: a '#' at the start of the line or after a blank, outside
// double quotes (URIs keep their fragments).
std::string stripComment(const std::string& line) {
  bool quoted = false;
  for (size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '"') quoted = !quoted;
    if (line[i] == '#' && !quoted && (i == 0 || line[i - 1] == ' ' || line[i - 1] == '\t')) return line.substr(0, i);
  }
  return line;
}

}  // namespace

ParsedScript parseScript(const std::string& text) {
  ParsedScript out;
  std::istringstream in(text);
  std::string raw;
  int lineNo = 0;
  auto bad = [&](const std::string& why) {
    out.error = "line " + std::to_string(lineNo) + ": " + why;
    out.commands.clear();
    return out;
  };
  while (std::getline(in, raw)) {
    ++lineNo;
    const std::string line = trim(stripComment(raw));
    if (line.empty()) continue;
    const auto space = line.find_first_of(" \t");
    Command cmd;
    cmd.line = lineNo;
    cmd.name = line.substr(0, space);
    const std::string rest = space == std::string::npos ? std::string() : trim(line.substr(space));
    const Syntax* syntax = findCommand(cmd.name);
    if (!syntax) return bad("unknown command '" + cmd.name + "'");
    const std::string kinds = syntax->args;
    const bool textArg = kinds.find('t') != std::string::npos;
    if (textArg) {
      if (!rest.empty()) cmd.args.push_back(unquote(rest));
    } else {
      std::istringstream words(rest);
      std::string w;
      while (words >> w) cmd.args.push_back(w);
    }
    size_t required = kinds.find('?');
    std::string all = kinds;
    if (required == std::string::npos) {
      required = kinds.size();
    } else {
      all.erase(required, 1);
    }
    if (cmd.args.size() < required || cmd.args.size() > all.size())
      return bad("'" + cmd.name + "' takes " + syntax->usage);
    for (size_t i = 0; i < cmd.args.size(); ++i) {
      const std::string& a = cmd.args[i];
      if (all[i] == 'i' && !isCount(a)) return bad("'" + a + "' is not a count (" + syntax->usage + ")");
      if (all[i] == 'n' && !isNumber(a)) return bad("'" + a + "' is not a number (" + syntax->usage + ")");
      if (all[i] == 'o' && !isOperator(a)) return bad("'" + a + "' is not one of == != < <= > >=");
    }
    if (cmd.name == "signal") {
      const bool silence = cmd.args[0] == "silence" && cmd.args.size() == 1;
      const bool sine = cmd.args[0] == "sine" && cmd.args.size() >= 2;
      if (!silence && !sine) return bad(std::string("'signal' takes ") + syntax->usage);
    }
    out.commands.push_back(std::move(cmd));
  }
  return out;
}

std::string commandSummary() {
  std::string s;
  for (const auto& c : kCommands) s += std::string("  ") + c.usage + "\n";
  return s;
}

}  // namespace zel::lv2host
