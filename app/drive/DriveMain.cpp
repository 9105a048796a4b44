// zel-drive: drives the editor from a script, for checking it from outside.
//
//   zel-drive [--product SLUG] [--config FILE] [--scale S] [--no-echo] [SCRIPT]
//
// --product chooses among the products this program holds (every product
// folder of the build): its description (bin/resources/SLUG) and its
// sketch; without it the build's default product.
// The editor is built on the offscreen backend with a virtual clock and an
// in-memory clipboard; the stand-in unit reports every value as a host does
// when a view opens, the clock runs 1.1 s (drawers, sketch, first undo
// snapshot), then the script runs (standard input without SCRIPT). The unit
// echoes every change back unless --no-echo. See DriveRunner.h for the
// output and README.md for the script's commands.
//
// Exit status: 0 when the whole script ran; 2 for a bad option, an
// unreadable description or script, or a line that is not understood (the
// message names its line number).
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>

#include "app/common/ZelAppResources.h"
#include "app/common/ZelDescriptionFile.h"
#include "app/common/ZelNumberWords.h"
#include "app/drive/DriveRunner.h"
#include "dsp/ZelProduct.h"
#include "model/ZelConfig.h"

namespace {

using namespace zel;

struct Options {
  std::string config = ZelDefaultDescriptionPath();
  double scale = 1;
  bool echoes = true;
  std::string script;  // empty: standard input
};

int fail(const std::string& message) {
  std::fprintf(stderr, "zel-drive: %s\n", message.c_str());
  return 2;
}

bool parse(int argc, char** argv, Options& o, std::string& error) {
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    const bool hasValue = i + 1 < argc;
    if (a == "--no-echo") {
      o.echoes = false;
    } else if (a == "--product" && hasValue) {
      ++i;  // chosen before anything else (chooseProduct)
    } else if (a == "--config" && hasValue) {
      o.config = argv[++i];
    } else if (a == "--scale" && hasValue) {
      const auto scale = ZelParseNumberWord(argv[++i]);
      if (!scale || *scale <= 0 || *scale > 4) return error = "--scale needs a number above 0, at most 4", false;
      o.scale = *scale;
    } else if (a.size() > 1 && a[0] == '-') {  // "-" alone: standard input
      return error = "unknown option " + a, false;
    } else if (o.script.empty()) {
      o.script = a;
    } else {
      return error = "more than one script given", false;
    }
  }
  return true;
}

constexpr char kUsage[] = "usage: zel-drive [--product SLUG] [--config FILE] [--scale S] [--no-echo] [SCRIPT]\n";

// Selects the product named by --product; false (with the reason) when the
// program holds none of that name.
bool chooseProduct(int argc, char** argv, std::string& error) {
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--product") != 0) continue;
    if (i + 1 >= argc) return error = "--product needs a product's slug", false;
    const ZelProduct* product = ZelFindProduct(argv[i + 1]);
    if (!product) {
      error = std::string("no product \"") + argv[i + 1] + "\" in this build (";
      for (const ZelProduct* p : ZelProducts()) error += std::string(p == ZelProducts().front() ? "" : ", ") + p->slug;
      return error += ")", false;
    }
    ZelSelectProduct(*product);
    ++i;
  }
  return true;
}

int runScript(ZelDriveRunner& runner, std::istream& in) {
  std::string text, error;
  for (int number = 1; std::getline(in, text); ++number) {
    if (!runner.runLine(text, error)) return fail("line " + std::to_string(number) + ": " + error);
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  std::string error;
  if (!chooseProduct(argc, argv, error)) {
    std::fprintf(stderr, "zel-drive: %s\n%s", error.c_str(), kUsage);
    return 2;
  }
  ZelUseResourcesBesideExecutable();
  Options o;
  if (!parse(argc, argv, o, error)) {
    std::fprintf(stderr, "zel-drive: %s\n%s", error.c_str(), kUsage);
    return 2;
  }
  std::unique_ptr<ZelConfig> config = ZelLoadDescription(o.config, error);
  if (!config) return fail("cannot read the description " + o.config + ": " + error);
  std::ifstream file;
  if (o.script == "-") o.script.clear();
  if (!o.script.empty()) {
    file.open(o.script);
    if (!file) return fail("cannot open the script " + o.script + ": " + std::strerror(errno));
  }
  ZelDriveRunner runner(std::move(config), o.scale, o.echoes, stdout, stderr);
  runner.start();
  return runScript(runner, o.script.empty() ? std::cin : file);
}
