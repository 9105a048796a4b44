#include "toolkit/foundation/ZelNumberParser.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include <unistd.h>

using namespace zel;

// glibc's newlocale leaks its parsed copy of LOCPATH, which the locale cases
// below set when they compile their own locales; that is not ours to report.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
  return "leak:__argz_add_sep\n";
}

TEST(ZelNumberParser, ReadsWholeNumbersWithTheGivenSeparators) {
  const ZelNumberParser german(",", ".");
  const ZelNumberParser english(".", ",");
  EXPECT_EQ(german.parse("2,5"), 2.5);
  EXPECT_EQ(german.parse(" -1.234,5 \n"), -1234.5);
  EXPECT_EQ(english.parse("1,234.5"), 1234.5);
  EXPECT_EQ(english.parse("+1,234,567"), 1234567.0);
  EXPECT_EQ(english.parse(".5"), 0.5);
  EXPECT_EQ(english.parse("5."), 5.0);
  EXPECT_EQ(english.parse("-2.5e3"), -2500.0);
  EXPECT_EQ(german.parse("2,5E-1"), 0.25);
  EXPECT_EQ(english.parse("\xE2\x88\x92" "3"), -3.0);  // the typographic minus
  EXPECT_TRUE(std::isinf(*english.parse("1e999")));
  EXPECT_EQ(english.parse("1e-999"), 0.0);

  for (const char* bad : {"", "   ", "12abc", "abc", "-", ".", "1e", "1e+", "1..2", "1.2.3", ",5", "5,",
                          "1,,000", "1 2", "0x10", "nan", "inf", "--1", "1-"}) {
    EXPECT_EQ(english.parse(bad), std::nullopt) << '"' << bad << '"';
  }
  EXPECT_EQ(german.parse("2.5,1.0"), std::nullopt);  // grouping after the radix
  EXPECT_EQ(ZelNumberParser(".", "").parse("1,000"), std::nullopt);  // no grouping in C

  const ZelNumberParser french(",", "\xE2\x80\xAF");
  EXPECT_EQ(french.parse("1\xE2\x80\xAF" "234,5"), 1234.5);
  EXPECT_EQ(french.parse("1 234,5"), 1234.5);  // a typed space groups where the locale uses a no-break space
  EXPECT_EQ(english.parse("1 234"), std::nullopt);
}

// Uses de_DE.UTF-8 and en_US.UTF-8. Where the system lacks them, they are
// compiled into a scratch directory (LOCPATH) with localedef from the
// system's locale sources; without those, the test skips.
TEST(ZelNumberParser, FollowsTheLocaleTheEnvironmentNames) {
  std::map<std::string, std::optional<std::string>> saved;
  for (const char* name : {"LC_ALL", "LC_NUMERIC", "LANG", "LOCPATH"}) {
    const char* v = std::getenv(name);
    saved[name] = v ? std::optional<std::string>(v) : std::nullopt;
  }
  const auto dir = std::filesystem::temp_directory_path() / ("zel-locales-" + std::to_string(::getpid()));
  if (!ZelNumberParser::forLocale("de_DE.UTF-8") || !ZelNumberParser::forLocale("en_US.UTF-8")) {
    std::filesystem::create_directories(dir);
    for (const char* name : {"de_DE", "en_US"}) {
      const std::string cmd = "localedef -i " + std::string(name) + " -f UTF-8 '" + (dir / name).string() +
                              ".UTF-8' >/dev/null 2>&1";
      if (std::system(cmd.c_str()) != 0) break;
    }
    ::setenv("LOCPATH", dir.c_str(), 1);
  }
  const auto german = ZelNumberParser::forLocale("de_DE.UTF-8");
  const auto english = ZelNumberParser::forLocale("en_US.UTF-8");
  if (german && english) {
    EXPECT_EQ(german->parse("1.234,5"), 1234.5);
    EXPECT_EQ(english->parse("1,234.5"), 1234.5);
    EXPECT_EQ(english->parse("2,5"), 25.0);  // English groups with the comma
    const std::string before = std::setlocale(LC_NUMERIC, nullptr);
    ::unsetenv("LC_ALL");
    ::setenv("LC_NUMERIC", "de_DE.UTF-8", 1);
    ::setenv("LANG", "en_US.UTF-8", 1);
    EXPECT_EQ(ZelNumberParser::fromEnvironment().parse("2,5"), 2.5);  // LC_NUMERIC over LANG
    ::setenv("LC_ALL", "en_US.UTF-8", 1);
    EXPECT_EQ(ZelNumberParser::fromEnvironment().parse("2.5"), 2.5);  // LC_ALL over both
    ::setenv("LC_ALL", "xx_NOPE.UTF-8", 1);
    EXPECT_EQ(ZelNumberParser::fromEnvironment().grouping(), "");  // the C conventions
    EXPECT_EQ(std::setlocale(LC_NUMERIC, nullptr), before);
  }
  for (const auto& [name, value] : saved) {
    if (value) ::setenv(name.c_str(), value->c_str(), 1);
    else ::unsetenv(name.c_str());
  }
  std::filesystem::remove_all(dir);
  if (!german || !english) GTEST_SKIP() << "de_DE.UTF-8 / en_US.UTF-8 unavailable (install the locales package)";
}
