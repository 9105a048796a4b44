// Event routing through a window: mouse tracking, first mouse, context
// menus, the first responder and key equivalents, and the popup menu.
#include <gtest/gtest.h>

#include "tests/toolkit/ViewTestSupport.h"
#include "toolkit/core/ZelControl.h"
#include "toolkit/core/ZelPopupMenuView.h"
#include "toolkit/core/ZelRecordingGraphicsContext.h"

namespace zel::testing {
namespace {

using T = ZelEventType;

struct EventsFixture : WindowFixture {
  Log log;
  EventsFixture() { window.setKeyWindow(true); }
};

TEST(WindowMouse, DragAndUpGoToTheViewThatGotTheDown) {
  EventsFixture f;
  ProbeView* a = f.root().addSubview(probe("a", CGRectMake(0, 0, 50, 50), &f.log));
  f.root().addSubview(probe("b", CGRectMake(100, 0, 50, 50), &f.log));
  // A view that does not handle the mouse passes it to its superview.
  ProbeView* passive = a->addSubview(probe("passive", CGRectMake(10, 10, 10, 10), &f.log));
  passive->handlesMouse = false;

  f.window.sendEvent(click(T::LeftMouseDown, 20, 20));
  f.window.sendEvent(click(T::LeftMouseDragged, 120, 20));  // over b
  f.window.sendEvent(click(T::LeftMouseUp, 300, 250));      // over nothing of ours
  EXPECT_EQ(f.log, (Log{"a:down", "a:drag", "a:up"}));
  EXPECT_EQ(a->lastLocalPoint, (CGPoint{300, 250}));
  EXPECT_EQ(f.window.mouseTrackingView(), nullptr);

  // After the release nothing tracks: a stray drag reaches nobody.
  f.log.clear();
  EXPECT_FALSE(f.window.sendEvent(click(T::LeftMouseDragged, 20, 20)));
  EXPECT_TRUE(f.log.empty());

  // A view leaving the window mid-drag gets nothing more, and nothing crashes.
  f.window.sendEvent(click(T::LeftMouseDown, 110, 10));
  ASSERT_NE(f.window.mouseTrackingView(), nullptr);
  std::unique_ptr<ZelView> gone = f.window.mouseTrackingView()->removeFromSuperview();
  gone.reset();
  EXPECT_FALSE(f.window.sendEvent(click(T::LeftMouseUp, 110, 10)));
  EXPECT_EQ(f.log, (Log{"b:down"}));
}

TEST(WindowMouse, ClickOnInactiveWindowActivatesItAndActsOnlyWhereFirstMouseIsAccepted) {
  WindowFixture f;
  Log log;
  std::vector<bool> keyChanges;
  f.window.setKeyWindowChangedHandler([&](bool key) { keyChanges.push_back(key); });
  f.root().addSubview(probe("plain", CGRectMake(0, 0, 50, 50), &log));
  ProbeView* eager = f.root().addSubview(probe("eager", CGRectMake(100, 0, 50, 50), &log));
  eager->firstMouse = true;

  f.window.sendEvent(click(T::LeftMouseDown, 10, 10));
  f.window.sendEvent(click(T::LeftMouseUp, 10, 10));
  EXPECT_TRUE(log.empty());  // neither the down nor its up
  EXPECT_TRUE(f.window.isKeyWindow());
  EXPECT_EQ(keyChanges, (std::vector<bool>{true}));
  EXPECT_EQ(f.platform.keyFocusRequests(), 1u);
  f.window.sendEvent(click(T::LeftMouseDown, 10, 10));
  EXPECT_EQ(log, (Log{"plain:down"}));

  f.window.setKeyWindow(false);
  log.clear();
  f.window.sendEvent(click(T::LeftMouseDown, 110, 10));
  EXPECT_EQ(log, (Log{"eager:down"}));
}

TEST(WindowMouse, RightClickAndCommandClickOpenTheNearestViewsMenu) {
  EventsFixture f;
  ProbeView* parent = f.root().addSubview(probe("parent", CGRectMake(0, 0, 100, 100), &f.log));
  parent->menu = [] {
    auto m = std::make_unique<ZelMenu>("Parent");
    m->addItem("Reset", [] {});
    return m;
  };
  f.root().addSubview(probe("noMenu", CGRectMake(200, 0, 50, 50), &f.log));
  parent->addSubview(probe("child", CGRectMake(10, 10, 20, 20), &f.log));

  f.window.sendEvent(click(T::RightMouseDown, 15, 15));  // on the child, which has no menu
  ASSERT_NE(f.window.openMenu(), nullptr);
  EXPECT_EQ(f.window.openMenu()->title(), "Parent");
  EXPECT_TRUE(f.log.empty());  // no view saw a mouse-down
  f.window.closeMenu();

  // Ctrl+click: held back while it could still become a (fine) drag; a
  // release within the slop opens the menu and no view sees the press.
  f.window.sendEvent(click(T::LeftMouseDown, 50, 50, ZelEventModifierCommand));
  EXPECT_EQ(f.window.openMenu(), nullptr);
  f.window.sendEvent(click(T::LeftMouseDragged, 52, 51, ZelEventModifierCommand));  // within the slop
  f.window.sendEvent(click(T::LeftMouseUp, 52, 51, ZelEventModifierCommand));
  ASSERT_NE(f.window.openMenu(), nullptr);
  EXPECT_EQ(f.window.openMenu()->title(), "Parent");
  EXPECT_TRUE(f.log.empty());
  f.window.closeMenu();

  // Ctrl+drag past the slop: the press is delivered where it happened, then
  // the drag and the release; no menu.
  f.window.sendEvent(click(T::LeftMouseDown, 50, 50, ZelEventModifierCommand));
  f.window.sendEvent(click(T::LeftMouseDragged, 50, 60, ZelEventModifierCommand));
  f.window.sendEvent(click(T::LeftMouseUp, 50, 60, ZelEventModifierCommand));
  EXPECT_EQ(f.window.openMenu(), nullptr);
  EXPECT_EQ(f.log, (Log{"parent:down", "parent:drag", "parent:up"}));
  f.log.clear();

  // Without a menu anywhere up the tree, the right click is delivered.
  f.window.sendEvent(click(T::RightMouseDown, 210, 10));
  EXPECT_EQ(f.window.openMenu(), nullptr);
  EXPECT_EQ(f.log, (Log{"noMenu:right"}));

  // Command-click as a plain click when the window is told so.
  f.log.clear();
  f.window.setCommandClickOpensMenu(false);
  f.window.sendEvent(click(T::LeftMouseDown, 50, 50, ZelEventModifierCommand));
  EXPECT_EQ(f.window.openMenu(), nullptr);
  EXPECT_EQ(f.log, (Log{"parent:down"}));
}

TEST(WindowKeys, KeyEquivalentsGoOverTheTreeBeforeTheResponderChain) {
  EventsFixture f;
  ProbeView* editor = f.root().addSubview(probe("editor", CGRectMake(0, 0, 300, 300), &f.log));
  editor->acceptsResponder = true;
  editor->handlesKeys = true;
  ProbeView* first = editor->addSubview(probe("first", CGRectMake(0, 0, 50, 50), &f.log));
  ProbeView* hidden = editor->addSubview(probe("hidden", CGRectMake(0, 0, 50, 50), &f.log));
  hidden->setHidden(true);
  ProbeView* control = editor->addSubview(probe("control", CGRectMake(60, 0, 50, 50), &f.log));
  control->acceptsResponder = true;
  control->keyEquivalent = "c";

  // A click makes the view first responder when it accepts.
  f.window.sendEvent(click(T::LeftMouseDown, 70, 10));
  EXPECT_EQ(f.window.firstResponder(), control);
  f.log.clear();

  EXPECT_TRUE(f.window.sendEvent(ZelEvent::key(T::KeyDown, "c", ZelKeyCodeUnknown, ZelEventModifierCommand)));
  EXPECT_EQ(f.log, (Log{"editor:equiv?", "first:equiv?", "control:equiv?", "control:equiv c"}));

  // Not an equivalent: from the first responder up until someone handles it.
  f.log.clear();
  EXPECT_TRUE(f.window.sendEvent(ZelEvent::key(T::KeyDown, "5")));
  EXPECT_EQ(f.log.back(), "editor:key 5");
  f.log.clear();
  EXPECT_TRUE(f.window.sendEvent(ZelEvent::flagsChanged(ZelEventModifierShift)));
  EXPECT_EQ(f.log, (Log{"editor:flags"}));
  EXPECT_EQ(f.window.currentModifierFlags(), ZelEventModifierShift);

  // Nobody up the chain handles it.
  editor->handlesKeys = false;
  EXPECT_FALSE(f.window.sendEvent(ZelEvent::key(T::KeyDown, "x")));

  // Responder changes: refusals, and a responder that leaves the window.
  EXPECT_FALSE(f.window.makeFirstResponder(first));
  EXPECT_EQ(f.window.firstResponder(), control);
  EXPECT_TRUE(f.window.makeFirstResponder(editor));
  std::unique_ptr<ZelView> detached = editor->removeFromSuperview();
  EXPECT_EQ(f.window.firstResponder(), nullptr);
  EXPECT_FALSE(f.window.makeFirstResponder(static_cast<ProbeView*>(detached.get())));
  EXPECT_FALSE(f.window.sendEvent(ZelEvent::key(T::KeyDown, "5")));
}

TEST(WindowKeys, ArrowKeysCarryFunctionKeyCharactersAndTheNumericPadFlag) {
  ZelEvent up = ZelEvent::arrowKey(ZelUpArrowFunctionKey, ZelEventModifierShift);
  EXPECT_EQ(ZelFirstCodePoint(up.charactersIgnoringModifiers), 0xF700u);
  EXPECT_EQ(up.charactersIgnoringModifiers, "\xEF\x9C\x80");
  EXPECT_TRUE(up.has(ZelEventModifierNumericPad));
  EXPECT_TRUE(up.has(ZelEventModifierShift));
  EXPECT_EQ(up.keyCode, ZelKeyCodeUpArrow);
  EXPECT_EQ(ZelFirstCodePoint(ZelUTF8FromCodePoint(0x1F600)), 0x1F600u);
  EXPECT_EQ(ZelFirstCodePoint("\xE2\x82"), 0u);  // truncated
}

struct MenuFixture : EventsFixture {
  std::vector<std::string> chosen;
  ProbeView* owner = nullptr;
  bool menuOpenDuringAction = true;

  MenuFixture() {
    owner = root().addSubview(probe("owner", CGRectMake(0, 0, 400, 300), &log));
    owner->menu = [this] {
      auto m = std::make_unique<ZelMenu>("Gain");
      m->addItem("Reset Default Value", action("reset"), false);
      m->addSeparator();
      m->addItem("Read about Gain", action("read"));
      m->addItem("Copy", action("copy"));
      return m;
    };
  }
  std::function<void()> action(std::string name) {
    return [this, name] {
      chosen.push_back(name);
      menuOpenDuringAction = window.openMenu() != nullptr;
    };
  }
  ZelPopupMenuView& menuView() { return *window.openMenuView(); }
  CGPoint itemCentre(int index) {
    CGRect r = menuView().convertRectToView(menuView().itemRect(index), nullptr);
    return {CGRectGetMidX(r), CGRectGetMidY(r)};
  }
  void open(double x = 100, double y = 200) {
    window.sendEvent(click(T::RightMouseDown, x, y));
    window.sendEvent(click(T::RightMouseUp, x, y));
  }
};

TEST(PopupMenu, EscapeAndClicksOutsideCloseItWithoutReachingTheViews) {
  MenuFixture f;
  f.open();
  ASSERT_NE(f.window.openMenu(), nullptr);
  CGRect frame = f.menuView().frame();
  EXPECT_GT(frame.origin.x, 100);                  // right of the pointer
  EXPECT_LT(CGRectGetMaxY(frame), 200);            // below it
  EXPECT_TRUE(f.window.sendEvent(ZelEvent::key(T::KeyDown, "c", ZelKeyCodeUnknown, ZelEventModifierCommand)));
  EXPECT_TRUE(f.window.sendEvent(ZelEvent::key(T::KeyDown, "\x1b", ZelKeyCodeEscape)));
  EXPECT_EQ(f.window.openMenu(), nullptr);
  EXPECT_TRUE(f.log.empty());  // the menu swallowed the keys

  f.open();
  f.window.sendEvent(click(T::LeftMouseDown, 10, 10));  // outside the menu
  EXPECT_EQ(f.window.openMenu(), nullptr);
  f.window.sendEvent(click(T::LeftMouseDragged, 12, 12));
  f.window.sendEvent(click(T::LeftMouseUp, 12, 12));
  EXPECT_TRUE(f.log.empty());  // the closing click went nowhere
  EXPECT_TRUE(f.chosen.empty());

  // A menu near the window's corner opens on the other side of the pointer.
  f.open(390, 10);
  CGRect corner = f.menuView().frame();
  EXPECT_LE(CGRectGetMaxX(corner), 390);
  EXPECT_GE(corner.origin.y, 10);
  EXPECT_TRUE(CGRectContainsRect(CGRectMake(0, 0, 400, 300), corner));

  // Losing the key state closes it; so does its owner leaving the window.
  f.window.setKeyWindow(false);
  EXPECT_EQ(f.window.openMenu(), nullptr);
  f.window.setKeyWindow(true);
  f.open();
  std::unique_ptr<ZelView> gone = f.owner->removeFromSuperview();
  EXPECT_EQ(f.window.openMenu(), nullptr);
}

TEST(PopupMenu, ChoosingRunsTheActionAfterClosingAndNeverForDisabledItems) {
  MenuFixture f;
  f.open();
  EXPECT_FALSE(f.window.chooseMenuItem("Reset Default Value"));  // disabled
  EXPECT_FALSE(f.window.chooseMenuItem("No such item"));
  EXPECT_NE(f.window.openMenu(), nullptr);
  EXPECT_TRUE(f.window.chooseMenuItem("Read about Gain"));
  EXPECT_EQ(f.chosen, (std::vector<std::string>{"read"}));
  EXPECT_FALSE(f.menuOpenDuringAction);
  EXPECT_FALSE(f.window.chooseMenuItem("Copy"));  // closed now

  // Mouse: releasing over a disabled item or a separator does nothing;
  // dragging onto an enabled item and releasing chooses it.
  f.open();
  f.window.sendEvent(click(T::LeftMouseDown, f.itemCentre(0).x, f.itemCentre(0).y));
  EXPECT_EQ(f.menuView().highlightedIndex(), -1);
  f.window.sendEvent(click(T::LeftMouseUp, f.itemCentre(0).x, f.itemCentre(0).y));
  f.window.sendEvent(click(T::LeftMouseUp, f.itemCentre(1).x, f.itemCentre(1).y));
  EXPECT_NE(f.window.openMenu(), nullptr);
  f.window.sendEvent(click(T::LeftMouseDragged, f.itemCentre(3).x, f.itemCentre(3).y));
  EXPECT_EQ(f.menuView().highlightedIndex(), 3);
  f.window.sendEvent(click(T::LeftMouseUp, f.itemCentre(3).x, f.itemCentre(3).y));
  EXPECT_EQ(f.chosen, (std::vector<std::string>{"read", "copy"}));
  EXPECT_EQ(f.window.openMenu(), nullptr);

  // Keyboard: the arrows skip disabled items and separators; return chooses.
  f.open();
  f.window.sendEvent(ZelEvent::arrowKey(ZelDownArrowFunctionKey));
  EXPECT_EQ(f.menuView().highlightedIndex(), 2);
  f.window.sendEvent(ZelEvent::arrowKey(ZelUpArrowFunctionKey));  // nothing above is selectable
  EXPECT_EQ(f.menuView().highlightedIndex(), 2);
  f.window.sendEvent(ZelEvent::arrowKey(ZelDownArrowFunctionKey));
  f.window.sendEvent(ZelEvent::key(T::KeyDown, "\r", ZelKeyCodeReturn));
  EXPECT_EQ(f.chosen.back(), "copy");
  EXPECT_EQ(f.chosen.size(), 3u);
  EXPECT_TRUE(f.log.empty());
}

TEST(PopupMenu, DrawsAboveTheContentWithDisabledItemsGreyedAndTheHighlightMarked) {
  MenuFixture f;
  f.open();
  f.menuView().setHighlightedIndex(2);
  ZelRecordingGraphicsContext ctx;
  f.window.displayIfNeeded(ctx);
  EXPECT_EQ(ctx.texts(), (std::vector<std::string>{"Reset Default Value", "Read about Gain", "Copy"}));
  std::vector<ZelColor> textColours;
  for (const ZelRecordedCall& c : ctx.calls()) {
    if (c.kind == ZelRecordedCall::Kind::DrawText) textColours.push_back(c.fillColor);
  }
  EXPECT_NE(textColours[0], textColours[2]);  // disabled differs from enabled
  EXPECT_NE(textColours[1], textColours[2]);  // highlighted differs from plain
  // The owner fills the whole window first; the menu's calls come after it.
  auto calls = ctx.drawingCalls();
  ASSERT_FALSE(calls.empty());
  EXPECT_EQ(calls.front().fillColor, f.owner->color);
  CGRect frame = f.menuView().frame();
  for (std::size_t i = 1; i < calls.size(); ++i) {
    EXPECT_TRUE(CGRectContainsRect(CGRectInset(frame, -1, -1), calls[i].rootRect)) << i;
  }
  EXPECT_TRUE(CGRectContainsRect(CGRectInset(frame, -1, -1), ctx.calls().back().rootRect));
  // Moving the highlight redraws the two rows only.
  f.window.sendEvent(ZelEvent::arrowKey(ZelDownArrowFunctionKey));
  CGRect rows = CGRectUnion(f.menuView().convertRectToView(f.menuView().itemRect(2), nullptr),
                            f.menuView().convertRectToView(f.menuView().itemRect(3), nullptr));
  EXPECT_EQ(f.window.dirtyRegion().bounds(), rows);
}

TEST(Control, TargetActionAndEnabledState) {
  struct Counter {
    int hits = 0;
    void hit(ZelControl&) { ++hits; }
  } counter;
  WindowFixture f;
  ZelControl* control = f.root().addSubview(std::make_unique<ZelControl>(CGRectMake(10, 10, 20, 20)));
  EXPECT_FALSE(control->sendAction());
  control->setTargetAction(&counter, &Counter::hit);
  EXPECT_TRUE(control->sendAction());
  EXPECT_EQ(counter.hits, 1);
  control->setTarget(nullptr);  // the owner cleared the target: nothing reaches it
  control->sendAction();
  EXPECT_EQ(counter.hits, 1);

  ZelRecordingGraphicsContext ctx;
  f.window.displayIfNeeded(ctx);
  control->setEnabled(false);
  EXPECT_EQ(f.window.dirtyRegion().bounds(), CGRectMake(10, 10, 20, 20));
}

}  // namespace
}  // namespace zel::testing
