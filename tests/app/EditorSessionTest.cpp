// The host's start-up as the session runs it, focus, the designer's reload,
// and the idle editor: once the deferred steps are over nothing is pending.
#include <gtest/gtest.h>

#include <memory>

#include "app/common/ZelEditorSession.h"
#include "editor/ZelPowerBox.h"
#include "editor/ZelPresetBar.h"
#include "model/ZelConfig.h"
#include "sketch/ZelParameterSketch.h"
#include "toolkit/core/ZelFrameClock.h"
#include "toolkit/core/ZelPlatformWindow.h"

namespace {

using namespace zel;

std::unique_ptr<ZelConfig> product() { return ZelConfig::configNamed("config", ZEL_RESOURCES_DIR); }

struct Fixture {
  ZelVirtualClock clock;
  ZelRunLoop loop{clock};
  ZelWindow window{loop, {10, 10}};
  ZelNullPlatformWindow platform{loop};
  std::unique_ptr<ZelEditorSession> session;

  explicit Fixture(std::unique_ptr<ZelConfig> config = product()) {
    window.setPlatformWindow(&platform);
    session = std::make_unique<ZelEditorSession>(window, std::move(config));
  }
  ~Fixture() {
    session.reset();
    window.setPlatformWindow(nullptr);
  }
  void runUntil(double t) { ZelRunVirtualTime(loop, clock, t); }
  ZelGenericUI& ui() { return *session->editor(); }
  float shown(const char* name) { return ui().parameterControlWithCodename(name)->floatValue(); }
};

TEST(EditorSession, StartsUpAsAHostDoes) {
  Fixture f;
  f.session->unit().setValueFromHost(1, 33);
  f.session->unit().setChannels(1, 1);
  f.session->open();
  ASSERT_NE(f.session->editor(), nullptr);
  EXPECT_EQ(f.window.contentSize(), CGSizeMake(480, 380)) << "the window takes the description's size";
  EXPECT_EQ(f.window.firstResponder(), f.session->editor());
  EXPECT_EQ(f.ui().delegate(), &f.session->unit());
  // Channels at once; values through the run loop; drawers 0.1 s and the
  // sketch 1 s later.
  EXPECT_TRUE(f.ui().parameterControlWithCodename("Mode")->primaryControl()->isDisabled());
  EXPECT_EQ(f.shown("Degrade"), 0.0f);
  f.runUntil(0);
  EXPECT_EQ(f.shown("Degrade"), 33.0f);
  EXPECT_EQ(f.ui().advDrawer(), nullptr);
  f.runUntil(0.11);
  EXPECT_NE(f.ui().advDrawer(), nullptr);
  EXPECT_NE(f.ui().presetDrawer(), nullptr);
  EXPECT_EQ(f.ui().sketch(), nullptr);
  f.runUntil(1.01);
  EXPECT_NE(f.ui().sketch(), nullptr);
}

// An idle editor costs nothing: after the deferred steps and the sketch's
// fade-in no call is pending and the frame clock has no work.
TEST(EditorSession, IsIdleOnceTheDeferredStepsHaveRun) {
  Fixture f;
  f.session->open();
  f.window.setKeyWindow(true);
  f.runUntil(1.1);
  EXPECT_GT(f.loop.pendingCount() + f.window.frameClock().clientCount(), 0u) << "the sketch is fading in";
  f.runUntil(3);
  EXPECT_EQ(f.loop.pendingCount(), 0u);
  EXPECT_EQ(f.window.frameClock().clientCount(), 0u);
  EXPECT_EQ(f.window.frameClock().animatingLayerCount(), 0u);
  EXPECT_FALSE(f.window.frameClock().isRunning());
}

TEST(EditorSession, WindowFocusIsTheEditorsFocus) {
  Fixture f;
  f.session->open();
  f.runUntil(1.1);
  EXPECT_FALSE(f.ui().hasFocus()) << "no focus until the window is key";
  f.window.setKeyWindow(true);
  EXPECT_TRUE(f.ui().hasFocus());
  // Something else takes the first responder; the session takes it back.
  f.window.makeFirstResponder(nullptr);
  f.runUntil(1.7);
  EXPECT_EQ(f.window.firstResponder(), f.session->editor());
  f.window.setKeyWindow(false);
  EXPECT_FALSE(f.ui().hasFocus());
}

TEST(EditorSession, ReloadKeepsValuesPresetAndFocusState) {
  Fixture f;
  f.session->open();
  f.window.setKeyWindow(true);
  f.runUntil(1.1);
  f.ui().requestPresetNamed("Telephone");
  f.session->unit().setValueFromHost(3, -6);
  f.runUntil(1.2);
  // The old editor is marked: the new one may well take its memory, so its
  // address says nothing.
  f.session->editor()->setIdentifier("before the reload");

  f.session->reload(product());
  ASSERT_NE(f.session->editor(), nullptr);
  EXPECT_EQ(f.session->editor()->identifier(), "editor") << "a new editor";
  EXPECT_TRUE(f.ui().hasFocus()) << "the window is still key";
  f.runUntil(1.2);
  EXPECT_EQ(f.shown("Output"), -6.0f);
  EXPECT_EQ(f.shown("HighCut"), 3400.0f) << "Telephone's value, kept by the unit";
  EXPECT_EQ(f.ui().presetBar()->presetControl()->floatValue(), 1.0f) << "the preset name comes back";
  f.runUntil(2.3);
  EXPECT_NE(f.ui().sketch(), nullptr);

  f.session->close();
  EXPECT_EQ(f.session->editor(), nullptr);
  EXPECT_TRUE(f.window.contentView()->subviews().empty());
}

TEST(EditorSession, TakesTheDescriptionsSizeOrTheDefault) {
  ZelConfig empty;
  EXPECT_EQ(ZelEditorSession::editorSizeFor(empty), CGSizeMake(480, 380));
  // An empty description still opens: an editor without controls.
  Fixture f(std::make_unique<ZelConfig>());
  f.session->open();
  f.runUntil(2);
  EXPECT_TRUE(f.ui().parameterControls().empty());
  EXPECT_EQ(f.ui().sketch(), nullptr);
}

}  // namespace
