// Parsing `eval` expressions. Argument kinds per verb:
//   n a name   v a number   g a granularity type (0, 1, 2)
//   d forward|backward   s free text (a preset name, blanks allowed)
#include <string_view>

#include "app/describe/DescribeEval.h"
#include "app/describe/DescribeFormat.h"

ZEL_NAMESPACE_BEGIN
namespace {

struct Verb {
  std::string_view word;
  std::string_view kinds;
  std::string_view usage;
};

constexpr Verb kVerbs[] = {
    {"position", "nv", "position NAME V"},
    {"value", "nvg", "value NAME P G"},
    {"normalize", "nvg", "normalize NAME V G"},
    {"round", "nvg", "round NAME V G"},
    {"granularity", "ngv", "granularity NAME G V"},
    {"cycle", "nvd", "cycle NAME V forward|backward"},
    {"text", "nv", "text NAME V"},
    {"cue", "nv", "cue NAME N"},
    {"preset-key", "s", "preset-key NAME"},
    {"preset-apply", "v", "preset-apply K"},
    {"frames", "nvv", "frames WHAT W H"},
};

const Verb* findVerb(std::string_view word) {
  for (const Verb& verb : kVerbs)
    if (verb.word == word) return &verb;
  return nullptr;
}

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

std::vector<std::string> splitBlanks(std::string_view text) {
  std::vector<std::string> words;
  std::size_t i = 0;
  while (i < text.size()) {
    while (i < text.size() && isBlank(text[i])) ++i;
    std::size_t start = i;
    while (i < text.size() && !isBlank(text[i])) ++i;
    if (i > start) words.emplace_back(text.substr(start, i - start));
  }
  return words;
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

// Checks and converts the arguments of `e` by the verb's kinds.
bool typeArguments(const Verb& verb, ZelEvalExpression& e, std::string& error) {
  for (std::size_t k = 0; k < verb.kinds.size(); ++k) {
    const std::string& arg = e.args[k];
    char kind = verb.kinds[k];
    if (kind == 'v') {
      std::optional<double> number = ZelParseNumber(arg);
      if (!number) return error = "not a number: '" + arg + "' in '" + std::string(verb.usage) + "'", false;
      e.numbers.push_back(*number);
    } else if (kind == 'g') {
      if (arg != "0" && arg != "1" && arg != "2")
        return error = "granularity type must be 0, 1 or 2, not '" + arg + "'", false;
      e.granularity = arg[0] - '0';
    } else if (kind == 'd') {
      if (arg != "forward" && arg != "backward")
        return error = "direction must be forward or backward, not '" + arg + "'", false;
      e.forward = arg == "forward";
    }
  }
  return true;
}

// One whole expression in a single word: "verb arg arg".
bool parseSentence(const std::string& sentence, const Verb& verb, ZelEvalExpression& e) {
  std::vector<std::string> words = splitBlanks(sentence);
  e.verb = words.front();
  if (verb.kinds == "s") {
    std::string_view rest = trimmed(std::string_view(sentence).substr(sentence.find(words.front()) + words.front().size()));
    if (rest.empty()) return false;
    e.args = {std::string(rest)};
    return true;
  }
  e.args.assign(words.begin() + 1, words.end());
  return e.args.size() == verb.kinds.size();
}

}  // namespace

std::optional<std::vector<ZelEvalExpression>> ZelParseEvalExpressions(const std::vector<std::string>& words,
                                                                       std::string& error) {
  std::vector<ZelEvalExpression> expressions;
  for (std::size_t i = 0; i < words.size();) {
    const std::string& word = words[i];
    ZelEvalExpression e;
    const Verb* verb = findVerb(word);
    if (verb) {
      if (i + verb->kinds.size() >= words.size()) {
        error = "incomplete expression '" + word + "': expected " + std::string(verb->usage);
        return std::nullopt;
      }
      e.verb = word;
      e.args.assign(words.begin() + static_cast<std::ptrdiff_t>(i + 1),
                    words.begin() + static_cast<std::ptrdiff_t>(i + 1 + verb->kinds.size()));
      i += 1 + verb->kinds.size();
    } else {
      std::vector<std::string> parts = splitBlanks(word);
      verb = parts.size() > 1 ? findVerb(parts.front()) : nullptr;
      if (!verb) {
        error = "unknown expression '" + word + "'";
        return std::nullopt;
      }
      if (!parseSentence(word, *verb, e)) {
        error = "malformed expression '" + word + "': expected " + std::string(verb->usage);
        return std::nullopt;
      }
      ++i;
    }
    if (!typeArguments(*verb, e, error)) return std::nullopt;
    expressions.push_back(std::move(e));
  }
  return expressions;
}

ZEL_NAMESPACE_END
