// Argument handling of zel-describe: picks the command, reads the file once
// and prints what the command produced.
#include <cstdio>
#include <string>
#include <vector>

#include "app/describe/DescribeTool.h"

ZEL_NAMESPACE_BEGIN
namespace {

constexpr const char* kUsage =
    "usage: zel-describe summary FILE\n"
    "       zel-describe json FILE\n"
    "       zel-describe check FILE\n"
    "       zel-describe eval FILE EXPR...\n";

void write(std::FILE* stream, const std::string& text) {
  if (!text.empty()) std::fwrite(text.data(), 1, text.size(), stream);
}

// The reader's errors for a file that could not be read at all.
std::string unreadable(const std::string& path, const ZelDescription& d) {
  std::string text;
  for (const ZelDiagnostic& diagnostic : d.read.diagnostics)
    if (diagnostic.severity == ZelDiagnostic::Severity::Error) text += path + ": " + diagnostic.description() + "\n";
  if (text.empty()) text = path + ": error: cannot read the file\n";
  return text;
}

int run(const std::vector<std::string>& args, std::string& out, std::string& err) {
  if (args.size() < 2) {
    err = kUsage;
    return kDescribeUnusable;
  }
  const std::string& command = args[0];
  if (command != "summary" && command != "json" && command != "check" && command != "eval") {
    err = "zel-describe: unknown command '" + command + "'\n" + kUsage;
    return kDescribeUnusable;
  }
  if (command != "eval" && args.size() != 2) {
    err = "zel-describe: '" + command + "' takes one FILE\n" + kUsage;
    return kDescribeUnusable;
  }
  ZelDescription d = ZelReadDescription(args[1]);
  if (command == "check") {
    int status = ZelDescribeCheck(d, out);
    return status;
  }
  if (!d.readable()) {
    err = unreadable(args[1], d);
    return kDescribeUnusable;
  }
  if (command == "summary") return ZelDescribeSummary(d, out);
  if (command == "json") return ZelDescribeJson(d, out);
  return ZelDescribeEval(d, {args.begin() + 2, args.end()}, out, err);
}

}  // namespace
ZEL_NAMESPACE_END

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  std::string out, err;
  int status = zel::run(args, out, err);
  zel::write(stdout, out);
  zel::write(stderr, err);
  return status;
}
