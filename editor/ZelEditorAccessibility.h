// The editor as assistive technology sees it: the window, one panel per
// clump (named by its title) with a slider, toggle button, combo box or
// spin button per parameter, the power box with its buttons, the preset
// bar and the two drawers. Values set through it act as typed numbers do:
// a gesture begins and ends around the change, which goes through the
// editor's value flow (host, rules, undo, the preset's dirty mark).
//
// Ownership: the editor owns this (ZelGenericUI::accessibilityElement
// makes it on first use); the elements hold non-owning pointers into the
// editor's view tree and read it live.
//
// Threading: main thread only.
#pragma once

#include <memory>
#include <vector>

#include "toolkit/core/ZelAccessible.h"

ZEL_NAMESPACE_BEGIN

class ZelGenericUI;
class ZelParameterControl;

class ZelEditorAccessibility {
 public:
  explicit ZelEditorAccessibility(ZelGenericUI& ui);
  ~ZelEditorAccessibility();
  ZelEditorAccessibility(const ZelEditorAccessibility&) = delete;
  ZelEditorAccessibility& operator=(const ZelEditorAccessibility&) = delete;

  // The window element; the tree is built on the first call.
  ZelAccessible* root();
  // The element of a parameter control, or nullptr.
  ZelAccessible* elementForControl(const ZelParameterControl* control);

 private:
  void build();
  template <class T, class... Args>
  T* make(ZelAccessible* parent, Args&&... args);

  ZelGenericUI& ui_;
  std::vector<std::unique_ptr<ZelAccessible>> elements_;
};

ZEL_NAMESPACE_END
