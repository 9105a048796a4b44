// The CLIPBOARD selection with xclip as the other application: copying
// from us, pasting into us, large texts (incremental transfers) both ways,
// no owner, and an owner that never answers.
#include <gtest/gtest.h>

#include <chrono>

#include "X11TestSupport.h"

#include <X11/Xatom.h>
#include <unistd.h>

using namespace zel;
using namespace zeltest;

namespace {

#define ZEL_REQUIRE_XCLIP()                                   \
  do {                                                        \
    ZEL_REQUIRE_XVFB();                                       \
    if (!haveProgram("xclip")) GTEST_SKIP() << "xclip not installed"; \
  } while (0)

struct ClipFixture {
  ClipFixture() : window(loop, CGSizeMake(100, 80)) {
    ZelX11WindowOptions options;
    options.backingScale = 1;
    host = openHost(window, options);
  }
  // Asks for the clipboard and pumps until the answer arrives.
  std::optional<std::optional<std::string>> paste(double timeout = 10) {
    std::optional<std::optional<std::string>> answer;
    host->pasteboard().requestString([&](std::optional<std::string> text) { answer = std::move(text); });
    pumpUntil(*host, [&] { return answer.has_value(); }, timeout);
    return answer;
  }
  ZelMonotonicClock clock;
  ZelRunLoop loop{clock};
  ZelWindow window;
  std::unique_ptr<ZelX11WindowHost> host;
};

Atom clipboardAtom(TestClient& client) { return XInternAtom(client.display(), "CLIPBOARD", False); }

// Starts `xclip -i` with the text and waits until it owns the clipboard.
int startOwner(TestClient& client, const std::string& text) {
  int pid = startChild({"xclip", "-quiet", "-selection", "clipboard", "-i"}, text);
  auto start = std::chrono::steady_clock::now();
  while (std::chrono::steady_clock::now() - start < std::chrono::seconds(10)) {
    Window owner = XGetSelectionOwner(client.display(), clipboardAtom(client));
    if (owner != None) return pid;
    usleep(10000);
  }
  return pid;
}

void clearClipboard(TestClient& client) {
  XSetSelectionOwner(client.display(), clipboardAtom(client), None, CurrentTime);
  XSync(client.display(), False);
}

std::string largeText(std::size_t bytes) {
  std::string s;
  for (int line = 0; s.size() < bytes; ++line) s += "line " + std::to_string(line) + " \xc3\xa4\xe2\x9c\x93\n";
  s.resize(bytes);
  return s;
}

}  // namespace

TEST(X11Pasteboard, CopyFromUsPasteElsewhere) {
  ZEL_REQUIRE_XCLIP();
  ClipFixture f;
  ASSERT_TRUE(f.host);
  const std::string text = "https://example.com/vantry/1.1/?gain:1.5/mix:40 Gr\xc3\xbc\xc3\x9f" "e \xe2\x9c\x93";
  f.host->pasteboard().setString(text);
  EXPECT_TRUE(f.host->x11Pasteboard().ownsClipboard());

  auto utf8 = runChild({"xclip", "-o", "-selection", "clipboard"}, "", *f.host);
  ASSERT_TRUE(utf8);
  EXPECT_EQ(utf8->output, text);
  auto targets = runChild({"xclip", "-o", "-selection", "clipboard", "-t", "TARGETS"}, "", *f.host);
  ASSERT_TRUE(targets);
  for (const char* t : {"TARGETS", "UTF8_STRING", "text/plain", "text/plain;charset=utf-8", "STRING"}) {
    EXPECT_NE(targets->output.find(std::string(t) + "\n"), std::string::npos) << t;
  }
  // Latin-1 for STRING; what Latin-1 cannot hold becomes "?".
  auto latin1 = runChild({"xclip", "-o", "-selection", "clipboard", "-t", "STRING"}, "", *f.host);
  ASSERT_TRUE(latin1);
  EXPECT_EQ(latin1->output.substr(latin1->output.size() - 7), "Gr\xfc\xdf" "e ?");
  auto refused = runChild({"xclip", "-o", "-selection", "clipboard", "-t", "image/png"}, "", *f.host);
  ASSERT_TRUE(refused);
  EXPECT_TRUE(refused->output.empty());

  // While we own it, a paste of our own answers later, from the run loop.
  std::optional<std::string> own;
  f.host->pasteboard().requestString([&](std::optional<std::string> s) { own = std::move(s); });
  EXPECT_FALSE(own);
  f.host->pump();
  EXPECT_EQ(own, text);
  EXPECT_EQ(f.host->connection().errorCount(), 0u);
}

TEST(X11Pasteboard, PasteFromElsewhere) {
  ZEL_REQUIRE_XCLIP();
  TestClient client;
  ClipFixture f;
  ASSERT_TRUE(f.host);
  f.host->pasteboard().setString("ours");
  const std::string text = "bass:-3/treble:x \xc3\xa9t\xc3\xa9";
  int owner = startOwner(client, text);
  ASSERT_TRUE(pumpUntil(*f.host, [&] { return !f.host->x11Pasteboard().ownsClipboard(); }));

  // Two requests while the answer is on its way get the same answer.
  std::optional<std::optional<std::string>> first;
  f.host->pasteboard().requestString([&](std::optional<std::string> s) { first = std::move(s); });
  auto second = f.paste();
  stopChild(owner);
  ASSERT_TRUE(first && second);
  EXPECT_EQ(*first, text);
  EXPECT_EQ(*second, text);
}

TEST(X11Pasteboard, LargeTextsGoIncrementallyBothWays) {
  ZEL_REQUIRE_XCLIP();
  TestClient client;
  ClipFixture f;
  ASSERT_TRUE(f.host);
  const std::string big = largeText(1024 * 1024 + 1);
  ASSERT_LT(f.host->x11Pasteboard().chunkSize(), big.size());

  f.host->pasteboard().setString(big);
  auto copied = runChild({"xclip", "-o", "-selection", "clipboard"}, "", *f.host, 30);
  ASSERT_TRUE(copied);
  EXPECT_EQ(copied->output.size(), big.size());
  EXPECT_TRUE(copied->output == big);
  settle(*f.host);
  EXPECT_EQ(f.host->x11Pasteboard().incrementalCopies(), 1u);
  EXPECT_EQ(f.host->x11Pasteboard().activeTransfers(), 0u);

  int owner = startOwner(client, big);
  ASSERT_TRUE(pumpUntil(*f.host, [&] { return !f.host->x11Pasteboard().ownsClipboard(); }));
  auto pasted = f.paste(30);
  stopChild(owner);
  ASSERT_TRUE(pasted && *pasted);
  EXPECT_EQ((*pasted)->size(), big.size());
  EXPECT_TRUE(**pasted == big);
  EXPECT_EQ(f.host->x11Pasteboard().incrementalPastes(), 1u);
  EXPECT_EQ(f.host->connection().errorCount(), 0u);
}

TEST(X11Pasteboard, NoTextWithoutAnOwnerOrAnAnswer) {
  ZEL_REQUIRE_XVFB();
  TestClient client;
  ClipFixture f;
  ASSERT_TRUE(f.host);
  clearClipboard(client);
  auto none = f.paste();
  ASSERT_TRUE(none);
  EXPECT_FALSE(*none);

  // An owner that never answers: the request gives up after the timeout,
  // without ever blocking the pump.
  Window silent = XCreateSimpleWindow(client.display(), client.root(), 0, 0, 1, 1, 0, 0, 0);
  XSetSelectionOwner(client.display(), clipboardAtom(client), silent, CurrentTime);
  XSync(client.display(), False);
  f.host->x11Pasteboard().setTimeout(0.2);
  auto start = std::chrono::steady_clock::now();
  auto unanswered = f.paste();
  double waited = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  ASSERT_TRUE(unanswered);
  EXPECT_FALSE(*unanswered);
  EXPECT_GE(waited, 0.2);
  EXPECT_LT(waited, 2.0);
  XDestroyWindow(client.display(), silent);
  XSync(client.display(), False);
}
