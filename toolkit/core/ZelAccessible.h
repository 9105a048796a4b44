// What assistive technology (a screen reader) is told about a window: a
// tree of accessible elements, each with a role, a name, a description,
// states, optionally a value with its range, and named actions; and a
// watcher that turns changes of that tree into events (focus moved, value
// or state changed). No bus or platform here: a backend publishes the tree
// (toolkit/atspi) and asks the watcher what changed.
//
// Ownership: whoever builds a tree owns its elements; parent and children
// are non-owning pointers within the same tree. The elements read their
// live state from the views they describe when asked, so a tree stays
// valid as long as those views do.
//
// Threading: main thread only.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "toolkit/foundation/Geometry.h"

ZEL_NAMESPACE_BEGIN

class ZelView;

enum class ZelAccessibleRole : std::uint8_t {
  Window,
  Panel,
  Slider,
  ToggleButton,
  ComboBox,
  SpinButton,
  PushButton,
  Label,
};

// Flags of ZelAccessibleStates.
enum ZelAccessibleState : std::uint32_t {
  ZelAccessibleEnabled = 1u << 0,    // can be used (not disabled by a rule)
  ZelAccessibleFocusable = 1u << 1,  // can take the keyboard focus
  ZelAccessibleFocused = 1u << 2,    // has it
  ZelAccessibleVisible = 1u << 3,    // not hidden itself
  ZelAccessibleShowing = 1u << 4,    // on screen now (no hidden ancestor, drawer open)
  ZelAccessibleCheckable = 1u << 5,  // a two-state control
  ZelAccessibleChecked = 1u << 6,    // ... that is on
  ZelAccessibleActive = 1u << 7,     // the window is the active one
};
using ZelAccessibleStates = std::uint32_t;

struct ZelAccessibleValue {
  double minimum = 0, maximum = 0, current = 0;
  double increment = 0;  // the smallest step; 0 when any value goes
};

// The names of the standard actions.
inline constexpr char kZelAccessibleIncrement[] = "increment";
inline constexpr char kZelAccessibleDecrement[] = "decrement";
inline constexpr char kZelAccessibleReset[] = "reset";
inline constexpr char kZelAccessibleToggle[] = "toggle";
inline constexpr char kZelAccessiblePress[] = "press";

class ZelAccessible {
 public:
  ZelAccessible() = default;
  virtual ~ZelAccessible() = default;
  ZelAccessible(const ZelAccessible&) = delete;
  ZelAccessible& operator=(const ZelAccessible&) = delete;

  // A number unique within its tree and stable while the tree lives
  // (backends name objects by it); the builder sets it.
  int identifier() const { return identifier_; }
  void setIdentifier(int identifier) { identifier_ = identifier; }

  ZelAccessible* parent() const { return parent_; }
  const std::vector<ZelAccessible*>& children() const { return children_; }
  // Appends `child` (not owned) and makes this its parent.
  void addChild(ZelAccessible* child);
  // The position among the parent's children, -1 for the root.
  int indexInParent() const;
  // The element of that identifier in this subtree, or nullptr.
  ZelAccessible* find(int identifier);

  virtual ZelAccessibleRole role() const = 0;
  virtual std::string name() const = 0;
  virtual std::string description() const { return {}; }
  virtual ZelAccessibleStates states() const = 0;
  // Where it is, in the window's coordinates (y up); zero when unknown.
  virtual CGRect frameInWindow() const { return CGRectZero; }

  // The value, for elements that have one, in the element's own units.
  virtual std::optional<ZelAccessibleValue> value() const { return std::nullopt; }
  // Sets it as a user would; false when it cannot be set now (disabled).
  virtual bool setCurrentValue(double value) {
    (void)value;
    return false;
  }

  // The actions that make sense for the element, by name.
  virtual std::vector<std::string> actionNames() const { return {}; }
  // Runs one of them; false for an unknown or impossible action.
  virtual bool performAction(std::string_view action) {
    (void)action;
    return false;
  }
  // Gives the element the keyboard focus; false when it cannot have it.
  virtual bool grabFocus() { return false; }

 private:
  int identifier_ = 0;
  ZelAccessible* parent_ = nullptr;
  std::vector<ZelAccessible*> children_;
};

// Visible and Showing for a view: not hidden itself; no hidden or fully
// transparent ancestor and in a window.
ZelAccessibleStates ZelViewVisibility(const ZelView* view);
// The view's bounds in its window's coordinates (zero outside a window).
CGRect ZelViewFrameInWindow(const ZelView* view);

// An element that describes a view: its frame, and visible and showing
// from the view's place in the tree (hidden itself, a hidden or fully
// transparent ancestor, not in a window).
class ZelViewAccessible : public ZelAccessible {
 public:
  explicit ZelViewAccessible(const ZelView* view) : view_(view) {}
  const ZelView* view() const { return view_; }
  CGRect frameInWindow() const override { return ZelViewFrameInWindow(view_); }
  ZelAccessibleStates visibility() const { return ZelViewVisibility(view_); }
  ZelAccessibleStates states() const override { return visibility(); }

 protected:
  const ZelView* view_;
};

// What changed in a tree since the last look.
struct ZelAccessibleEvent {
  enum class Kind : std::uint8_t { Focus, State, Value, Name, Description };
  Kind kind;
  int identifier;
  ZelAccessibleState state = ZelAccessibleEnabled;  // Kind::State: which
  bool on = false;                                  // Kind::State: now set
  double value = 0;                                 // Kind::Value: the new value
};

// Compares a tree with what it was at the last look. Looked at on a timer
// (the backend's), it also limits how often a value that keeps moving
// (automation) is reported: once per look at most.
class ZelAccessibleWatcher {
 public:
  // The changes since the last call (none on the first call, or when the
  // root is another tree than last time: everything is new then). A
  // focus gained gives a Focus event after its State event.
  std::vector<ZelAccessibleEvent> look(ZelAccessible* root);
  void forget();

 private:
  struct Seen {
    ZelAccessibleStates states = 0;
    std::optional<double> value;
    std::string name, description;
  };
  void collect(ZelAccessible& element, std::vector<ZelAccessibleEvent>& events, bool report);

  const ZelAccessible* root_ = nullptr;
  std::unordered_map<int, Seen> seen_;
};

ZEL_NAMESPACE_END
