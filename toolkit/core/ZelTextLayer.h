// A layer that shows one line of text: the string in a font and colour,
// aligned left, centred or right within the bounds, with the first line's
// ascent touching the top of the bounds (as the platform's text layers lay
// out). Nothing is drawn for an empty string.
//
// Ownership and threading as ZelLayer.
#pragma once

#include <string>

#include "toolkit/core/ZelFont.h"
#include "toolkit/core/ZelLayer.h"

ZEL_NAMESPACE_BEGIN

enum class ZelTextAlignment { Left, Center, Right };

class ZelTextLayer : public ZelLayer {
 public:
  ZelTextLayer() = default;

  const std::string& string() const { return string_; }  // UTF-8
  void setString(std::string utf8);
  const ZelFont& font() const { return font_; }  // default: the text face at 36 points
  void setFont(const ZelFont& font);
  const ZelColor& foregroundColor() const { return foreground_; }  // default opaque white
  void setForegroundColor(const ZelColor& c);
  ZelTextAlignment alignment() const { return alignment_; }  // default Left
  void setAlignment(ZelTextAlignment a);

 protected:
  void drawContent(ZelGraphicsContext& ctx) override;
  CGRect contentExtent() const override;
  int contentDrawCount() const override;

 private:
  std::string string_;
  ZelFont font_{ZelFontFace::Medium, 36};
  ZelColor foreground_{1, 1, 1, 1};
  ZelTextAlignment alignment_ = ZelTextAlignment::Left;
};

ZEL_NAMESPACE_END
