#include "editor/ZelPresetListView.h"

#include <algorithm>
#include <cmath>

#include "editor/ZelPresetsDrawer.h"
#include "layout/engine/ZelPluginLayout.h"
#include "theme/ZelUITheme.h"
#include "model/ZelConfig.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr double kColumnGap = 16;
constexpr double kSectionFontSize = 11;
constexpr double kPresetFontSize = 13;
constexpr double kSectionTextAlpha = 0.55;
constexpr double kSectionIndent = 4;
constexpr double kPresetIndent = 12;
constexpr double kHighlightAlpha = 0.3;
constexpr double kHighlightRounding = 4;

// The rows of one section: [first, last).
struct Block {
  std::size_t first, last;
};

std::vector<Block> sectionBlocks(const std::vector<ZelPresetRow>& rows) {
  std::vector<Block> blocks;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].kind == ZelPresetRow::Kind::Section || blocks.empty()) blocks.push_back({i, i});
    blocks.back().last = i + 1;
  }
  return blocks;
}

double baselineIn(CGRect frame, const ZelTextMetrics& m) {
  return std::round(frame.origin.y + (frame.size.height - m.ascent + m.descent) / 2);
}

}  // namespace

ZelPresetListView::ZelPresetListView(CGRect frame, ZelPresetsDrawer* drawer, const std::vector<ZelPresetRow>* rows)
    : ZelView(frame), drawer_(drawer), rows_(rows) {
  setIdentifier("presetList");
  layoutRows();
}

void ZelPresetListView::setFrame(CGRect frame) {
  ZelView::setFrame(frame);
  layoutRows();
  setScrollOffset(scrollOffset_);
}

void ZelPresetListView::layoutRows() {
  rowFrames_.assign(rows_->size(), CGRectZero);
  const std::vector<Block> blocks = sectionBlocks(*rows_);
  const double width = bounds().size.width;
  const int columns = std::max(1, static_cast<int>((width + kColumnGap) / (kMinColumnWidth + kColumnGap)));
  const double columnWidth = std::floor((width - (columns - 1) * kColumnGap) / columns);
  double total = 0;
  for (const Block& b : blocks) total += (b.last - b.first) * kRowHeight + kSectionGap;
  // Fill the columns in order, each up to an even share of the whole; a
  // section never splits.
  const double share = total / columns + kRowHeight / 2;
  int column = 0;
  double top = 0;
  contentHeight_ = 0;
  for (const Block& b : blocks) {
    const double height = (b.last - b.first) * kRowHeight;
    if (top > 0 && top + height > share && column < columns - 1) {
      ++column;
      top = 0;
    }
    const double x = column * (columnWidth + kColumnGap);
    for (std::size_t i = b.first; i < b.last; ++i, top += kRowHeight)
      rowFrames_[i] = CGRectMake(x, top, columnWidth, kRowHeight);
    contentHeight_ = std::max(contentHeight_, top);
    top += kSectionGap;
  }
}

CGRect ZelPresetListView::visibleFrameOfRow(std::size_t index) const {
  const CGRect r = rowFrames_.at(index);
  return CGRectMake(r.origin.x, bounds().size.height - r.origin.y - r.size.height + scrollOffset_, r.size.width,
                    r.size.height);
}

std::optional<std::size_t> ZelPresetListView::rowAtPoint(CGPoint point) const {
  if (!CGRectContainsPoint(bounds(), point)) return std::nullopt;
  for (std::size_t i = 0; i < rowFrames_.size(); ++i)
    if (CGRectContainsPoint(visibleFrameOfRow(i), point)) return i;
  return std::nullopt;
}

double ZelPresetListView::maxScrollOffset() const { return std::max(0.0, contentHeight_ - bounds().size.height); }

void ZelPresetListView::setScrollOffset(double offset) {
  offset = std::clamp(offset, 0.0, maxScrollOffset());
  if (offset == scrollOffset_) return;
  scrollOffset_ = offset;
  setNeedsDisplay();
}

void ZelPresetListView::setSelectedPresetID(std::optional<std::int64_t> id) {
  selected_ = id;
  setNeedsDisplay();
}

void ZelPresetListView::mouseDown(const ZelEvent& event) {
  if (auto row = rowAtPoint(convertPointFromView(event.locationInWindow, nullptr))) drawer_->chooseRow(*row);
}

bool ZelPresetListView::scrollWheel(const ZelEvent& event) {
  if (maxScrollOffset() <= 0) return ZelView::scrollWheel(event);
  setScrollOffset(scrollOffset_ - event.scrollingDeltaY * kScrollLine);
  return true;
}

void ZelPresetListView::drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) {
  ctx.save();
  ctx.clipToRect(bounds());
  for (std::size_t i = 0; i < rowFrames_.size(); ++i) {
    const CGRect frame = visibleFrameOfRow(i);
    if (CGRectIntersectsRect(frame, dirtyRect)) drawRow(ctx, i, frame);
  }
  ctx.restore();
}

void ZelPresetListView::drawRow(ZelGraphicsContext& ctx, std::size_t index, CGRect frame) const {
  const ZelUITheme* theme = ZelUITheme::theme();
  const ZelPresetRow& row = (*rows_)[index];
  if (row.kind == ZelPresetRow::Kind::Section) {
    const ZelFont font{ZelFontFace::Medium, kSectionFontSize};
    ctx.setFillColor(theme->textColor().withAlpha(kSectionTextAlpha));
    ctx.drawText(row.title, font, {frame.origin.x + kSectionIndent, baselineIn(frame, ctx.measureText(row.title, font))});
    // Underlined like a clump's label.
    ctx.setFillColor(theme->interiorBorderColor());
    ctx.fillRect(CGRectMake(frame.origin.x, frame.origin.y, frame.size.width, 0.5));
    return;
  }
  if (selected_ && row.presetID == selected_) {
    const ZelColor accent = drawer_->config() ? drawer_->config()->metadata().color : theme->textColor();
    ctx.setFillColor(theme->foregroundGivenSpecified(accent).withAlpha(kHighlightAlpha));
    ctx.save();
    ctx.translate(frame.origin.x, frame.origin.y + 1);
    ctx.fillPath(ZelPluginLayout::newCGPathForRect(CGRectMake(0, 0, frame.size.width, frame.size.height - 2),
                                                   kHighlightRounding));
    ctx.restore();
  }
  const ZelFont font{ZelFontFace::Medium, kPresetFontSize};
  ctx.setFillColor(row.presetID ? theme->textColor() : theme->textColor().withAlpha(kSectionTextAlpha));
  ctx.drawText(row.title, font, {frame.origin.x + kPresetIndent, baselineIn(frame, ctx.measureText(row.title, font))});
}

ZEL_NAMESPACE_END
