// The presets drawer's sectioned list: rows of section titles and preset
// names in the text face, laid out in columns of at least kMinColumnWidth
// (a section never splits across columns), scrolled vertically by the wheel
// when the columns are still taller than the view. A click on a row tells
// the drawer (ZelPresetsDrawer::chooseRow); the selected preset's rows are
// highlighted.
//
// Ownership: the rows are owned by the drawer, which outlives this view (it
// is the view's superview's superview); `drawer` is a non-owning back
// pointer. Threading: main thread only.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "toolkit/core/ZelView.h"

ZEL_NAMESPACE_BEGIN

class ZelPresetsDrawer;
struct ZelPresetRow;

class ZelPresetListView : public ZelView {
 public:
  static constexpr double kRowHeight = 20;
  static constexpr double kSectionGap = 8;
  static constexpr double kMinColumnWidth = 180;
  static constexpr double kScrollLine = 10;  // points per wheel line

  ZelPresetListView(CGRect frame, ZelPresetsDrawer* drawer, const std::vector<ZelPresetRow>* rows);

  // Row frames laid out for the current width, one per row: x from the
  // list's left, y measured down from the top of the content (unscrolled).
  const std::vector<CGRect>& rowFrames() const { return rowFrames_; }
  // The row frame as shown now (bounds coordinates, scrolled).
  CGRect visibleFrameOfRow(std::size_t index) const;
  // The row under a point (bounds coordinates), if any.
  std::optional<std::size_t> rowAtPoint(CGPoint point) const;

  double contentHeight() const { return contentHeight_; }
  // How far the content is scrolled down (0 shows the first rows).
  double scrollOffset() const { return scrollOffset_; }
  // Clamped to 0 ... maxScrollOffset().
  void setScrollOffset(double offset);
  double maxScrollOffset() const;

  void setSelectedPresetID(std::optional<std::int64_t> id);

  void setFrame(CGRect frame) override;
  void drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) override;
  void mouseDown(const ZelEvent& event) override;
  bool scrollWheel(const ZelEvent& event) override;

 private:
  void layoutRows();
  void drawRow(ZelGraphicsContext& ctx, std::size_t index, CGRect frame) const;

  ZelPresetsDrawer* drawer_;
  const std::vector<ZelPresetRow>* rows_;
  std::vector<CGRect> rowFrames_;
  double contentHeight_ = 0;
  double scrollOffset_ = 0;
  std::optional<std::int64_t> selected_;
};

ZEL_NAMESPACE_END
