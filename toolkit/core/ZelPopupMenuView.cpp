#include "toolkit/core/ZelPopupMenuView.h"

#include <algorithm>
#include <cmath>

ZEL_NAMESPACE_BEGIN

namespace {

constexpr ZelFont kMenuFont{ZelFontFace::Medium, ZelPopupMenuView::kFontSize};
// A generous estimate of the text face's average advance, so that titles fit
// without a drawing context at hand when the menu opens.
constexpr double kAdvancePerCharacter = 0.62;

std::size_t characterCount(const std::string& utf8) {
  return static_cast<std::size_t>(
      std::count_if(utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

// Places a span of `length` next to `at` (after it, else before it), inside
// 0 ... limit when possible.
double place(double at, double length, double limit, bool after) {
  double first = after ? at + 1 : at - 1 - length;
  double second = after ? at - 1 - length : at + 1;
  if (first >= 0 && first + length <= limit) return first;
  if (second >= 0 && second + length <= limit) return second;
  return std::max(0.0, std::min(first, limit - length));
}

}  // namespace

ZelPopupMenuView::ZelPopupMenuView(std::unique_ptr<ZelMenu> menu, CGPoint location, CGSize windowSize)
    : menu_(std::move(menu)) {
  CGSize size = measure(*menu_);
  double x = place(location.x, size.width, windowSize.width, true);
  double y = place(location.y, size.height, windowSize.height, false);  // below the pointer
  setFrame({{x, y}, size});
}

CGSize ZelPopupMenuView::measure(const ZelMenu& menu) {
  double width = kMinimumWidth, height = 2 * kVerticalPadding;
  for (const ZelMenuItem& item : menu.items()) {
    height += item.separator ? kSeparatorHeight : kItemHeight;
    double text = kAdvancePerCharacter * kFontSize * static_cast<double>(characterCount(item.title));
    width = std::max(width, std::ceil(text) + 2 * kHorizontalPadding);
  }
  return {width, height};
}

double ZelPopupMenuView::rowHeight(int index) const {
  return menu_->items()[static_cast<std::size_t>(index)].separator ? kSeparatorHeight : kItemHeight;
}

CGRect ZelPopupMenuView::itemRect(int index) const {
  if (index < 0 || static_cast<std::size_t>(index) >= menu_->size()) return CGRectNull;
  double top = bounds().size.height - kVerticalPadding;
  for (int i = 0; i < index; ++i) top -= rowHeight(i);
  double h = rowHeight(index);
  return CGRectMake(0, top - h, bounds().size.width, h);
}

int ZelPopupMenuView::itemAtWindowPoint(CGPoint point) const {
  CGPoint local = convertPointFromView(point, nullptr);
  if (!CGRectContainsPoint(bounds(), local)) return -1;
  for (int i = 0; static_cast<std::size_t>(i) < menu_->size(); ++i) {
    if (CGRectContainsPoint(itemRect(i), local)) return i;
  }
  return -1;
}

void ZelPopupMenuView::setHighlightedIndex(int index) {
  if (!menu_->isSelectable(index)) index = -1;
  if (index == highlighted_) return;
  if (highlighted_ >= 0) setNeedsDisplayInRect(itemRect(highlighted_));
  highlighted_ = index;
  if (highlighted_ >= 0) setNeedsDisplayInRect(itemRect(highlighted_));
}

void ZelPopupMenuView::moveHighlight(int direction) {
  int n = static_cast<int>(menu_->size());
  int i = highlighted_ >= 0 ? highlighted_ + direction : (direction > 0 ? 0 : n - 1);
  for (; i >= 0 && i < n; i += direction) {
    if (menu_->isSelectable(i)) {
      setHighlightedIndex(i);
      return;
    }
  }
}

void ZelPopupMenuView::drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) {
  (void)dirtyRect;
  ZelPath panel = ZelPath::roundedRect(CGRectInset(bounds(), 0.5, 0.5), kCornerRadius);
  ctx.setShadow({0, -2}, 6, ZelColor::grey(0, 0.3));
  ctx.setFillColor(ZelColor::grey(0.97));
  ctx.fillPath(panel);
  ctx.clearShadow();
  ctx.setStrokeColor(ZelColor::grey(0.62));
  ctx.setLineWidth(0.5);
  ctx.strokePath(panel);
  for (int i = 0; static_cast<std::size_t>(i) < menu_->size(); ++i) drawItem(ctx, i);
}

void ZelPopupMenuView::drawItem(ZelGraphicsContext& ctx, int index) {
  const ZelMenuItem& item = menu_->items()[static_cast<std::size_t>(index)];
  CGRect row = itemRect(index);
  if (item.separator) {
    ctx.setFillColor(ZelColor::grey(0.8));
    ctx.fillRect(CGRectMake(8, CGRectGetMidY(row) - 0.25, row.size.width - 16, 0.5));
    return;
  }
  bool highlighted = index == highlighted_;
  if (highlighted) {
    ctx.setFillColor(ZelColor::rgb(0.22, 0.46, 0.88));
    ctx.fillPath(ZelPath::roundedRect(CGRectInset(row, 4, 0), 3));
  }
  ZelColor text = highlighted ? ZelColor::grey(1) : item.enabled ? ZelColor::grey(0.1) : ZelColor::grey(0.62);
  ZelTextMetrics m = ctx.measureText(item.title, kMenuFont);
  double baseline = row.origin.y + (row.size.height - (m.ascent + m.descent)) / 2 + m.descent;
  ctx.setFillColor(text);
  ctx.drawText(item.title, kMenuFont, {kHorizontalPadding, baseline});
}

ZEL_NAMESPACE_END
