// zel-make-manual: the user manual, made from the description at build time.
//
//   zel-make-manual --config FILE --texts FILE [--pdf OUT.pdf] [--html OUT.html] [--check]
//
// --texts is resources/manual.plist (see ManualTexts.h). With --check only
// the texts are checked against the description. Every finding is one line
// on stderr; the status is 0 when everything was written, 1 when the texts
// do not match the description or a page does not fit, 2 on bad arguments
// or an unreadable description. With ZEL_MANUAL_DRAFT=1 in the environment a
// page that runs into the bottom margin is written anyway (to look at it).
#include <cstdio>
#include <string>

#include "app/common/ZelDescriptionFile.h"
#include "app/common/ZelEditorStill.h"
#include "app/manual/ManualDocument.h"
#include "dsp/ZelProduct.h"
#include "model/ZelConfig.h"

using namespace zel;

namespace {

int usage(const std::string& message) {
  std::fprintf(stderr, "zel-make-manual: %s\nusage: zel-make-manual --config FILE --texts FILE [--pdf OUT.pdf] "
                       "[--html OUT.html] [--check]\n", message.c_str());
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  std::string configPath, textsPath, pdf, html;
  bool check = false;
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    if (a == "--check") {
      check = true;
    } else if ((a == "--config" || a == "--texts" || a == "--pdf" || a == "--html") && i + 1 < argc) {
      std::string& target = a == "--config" ? configPath : a == "--texts" ? textsPath : a == "--pdf" ? pdf : html;
      target = argv[++i];
    } else {
      return usage("unknown or incomplete option " + a);
    }
  }
  if (configPath.empty() || textsPath.empty()) return usage("--config and --texts are required");
  if (!check && pdf.empty() && html.empty()) return usage("nothing to write: give --pdf, --html or --check");

  std::string error;
  std::unique_ptr<ZelConfig> config = ZelLoadDescription(configPath, error);
  if (!config) {
    std::fprintf(stderr, "zel-make-manual: cannot read the description %s: %s\n", configPath.c_str(), error.c_str());
    return 2;
  }
  // The pictures show the product the description is (its sketch), when
  // this program holds it.
  if (const ZelProduct* product = ZelFindProduct(config->metadata().pluginURLSlug)) ZelSelectProduct(*product);
  const ZelManualTextsLoad texts = ZelLoadManualTexts(textsPath, *config);
  for (const std::string& e : texts.errors) std::fprintf(stderr, "zel-make-manual: %s: %s\n", textsPath.c_str(), e.c_str());
  if (!texts.errors.empty()) return 1;
  if (check) return 0;

  // The pictures: the light theme at scale 2, the editor as it opens and
  // with the advanced drawer out.
  ZelUseTheme(false);
  std::vector<ZelManualShot> shots;
  for (bool advanced : {false, true}) {
    std::unique_ptr<ZelConfig> copy = ZelLoadDescription(configPath, error);
    if (!copy) return usage("the description changed while it was read");
    shots.push_back(ZelShootEditor(std::move(copy), 2, advanced));
  }
  const ZelManualDocument document = ZelBuildManual(*config, texts.texts, std::move(shots));
  // Written under a temporary name and renamed: never half a manual.
  if (!pdf.empty()) {
    const std::string temporary = pdf + ".part";
    if (!ZelWriteManualPDF(document, temporary, error) || std::rename(temporary.c_str(), pdf.c_str()) != 0) {
      std::fprintf(stderr, "zel-make-manual: %s\n", error.empty() ? ("cannot write " + pdf).c_str() : error.c_str());
      std::remove(temporary.c_str());
      return 1;
    }
  }
  if (!html.empty() && !ZelWriteManualHTML(document, html, error)) {
    std::fprintf(stderr, "zel-make-manual: %s\n", error.c_str());
    return 1;
  }
  return 0;
}
