// The look the primary controls share: colours taken from the current theme
// and the parameter's accent colour at draw time, and the small drawing
// helpers that keep every control of one family (text placed by its capital
// height, rounded shapes, rules on whole device pixels, the value readout
// with its smaller suffix).
//
// Everything here is stateless and reads the current theme when called.
// Threading: main thread only (the theme is main-thread state).
#pragma once

#include <string_view>

#include "controls/ZelFloatControl.h"
#include "toolkit/core/ZelGraphicsContext.h"
#include "toolkit/core/ZelTextLayer.h"
#include "toolkit/foundation/ZelColor.h"
#include "toolkit/foundation/ZelPath.h"

ZEL_NAMESPACE_BEGIN

class ZelUITheme;

// The colours one control draws with now.
struct ZelControlLook {
  bool dark = false;
  ZelColor accent;         // the parameter's colour, kept legible on the backdrop; grey when dimmed or disabled
  ZelColor text;           // values
  ZelColor secondaryText;  // suffixes, cue texts, inactive captions
  ZelColor track;          // the unlit part of tracks, outlines
  ZelColor majorTick, minorTick;
  ZelColor knobFace, knobEdge;
  ZelColor onAccent;       // marks drawn on top of the accent

  // The look of a control of `parameter` (may be null: text colour accent)
  // in the current theme.
  static ZelControlLook current(const ZelParameter* parameter, bool dimmed, bool disabled);
};

// Relative luminance of a colour (0 black ... 1 white), alpha ignored.
double ZelLuminance(ZelColor color);
// The accent colour of a parameter in `theme`: its specified colour through
// foregroundGivenSpecified, or the theme's text colour when the specified
// one would nearly vanish on the theme's backdrop (black on the dark theme).
ZelColor ZelLegibleAccent(ZelColor specified, const ZelUITheme& theme);
// `color` mixed towards the grey of its own luminance by `amount` (0 ... 1).
ZelColor ZelDesaturated(ZelColor color, double amount);

// A closed rectangle with corners rounded by `radius` (clamped to half the
// shorter side), at the rectangle's own position.
ZelPath ZelRoundedRectPath(CGRect rect, double radius);
// `value` rounded to the nearest device pixel of `ctx`.
double ZelSnapToPixel(const ZelGraphicsContext& ctx, double value);

// ---- Text.
// The font for a value's text at `size`: the icon font (at `iconSize`, or
// `size` when 0) for text holding icon glyphs (private-use characters), the
// text face otherwise, also for other non-ASCII text such as "-∞".
ZelFont ZelValueFont(std::string_view text, double size, double iconSize = 0);
// The height of capitals and figures above the baseline (for icon glyphs:
// half their box, which is centred 0.3 em above the baseline).
double ZelCapHeight(const ZelFont& font);
// The baseline y that centres capitals (or an icon glyph) on `centreY`.
double ZelBaselineCentring(const ZelFont& font, double centreY);
// Draws one line with its capitals centred on `centre.y`, placed at
// `centre.x` by `alignment` (Left: starts there, Right: ends there).
// Returns the text's width.
double ZelDrawTextAt(ZelGraphicsContext& ctx, std::string_view text, const ZelFont& font, CGPoint centre,
                     ZelTextAlignment alignment = ZelTextAlignment::Center);

// A value readout: the value text and, 1.5 points after it, the suffix in a
// smaller size, centred together in `box` (capitals on its middle) and
// shrunk as a whole until it fits the box's width.
struct ZelReadoutStyle {
  double valueSize = 14;
  double suffixSize = 10;
  ZelColor valueColor, suffixColor;
};
void ZelDrawReadout(ZelGraphicsContext& ctx, std::string_view value, std::string_view suffix, CGRect box,
                    const ZelReadoutStyle& style);
// The width such a readout takes at full size.
double ZelMeasureReadout(ZelGraphicsContext& ctx, std::string_view value, std::string_view suffix,
                         const ZelReadoutStyle& style);
// A typed number in place of a readout: the styled text centred in `box`
// (shrunk to fit) in its own colour or `color`, with a caret after it.
void ZelDrawTypedReadout(ZelGraphicsContext& ctx, const ZelStyledString& typed, CGRect box, ZelColor color);

// A text layer that centres its line vertically by the capitals (or the icon
// glyph) instead of hanging it from the top, and can glow: the text drawn
// with a soft halo of `glowColor` `glowRadius` points wide. The cycle
// controls show their value in one; its transform animates about the
// layer's centre, which is the text's centre.
class ZelControlTextLayer : public ZelTextLayer {
 public:
  void setGlow(ZelColor color, double radius);
  void clearGlow() { setGlow(ZelColor{0, 0, 0, 0}, 0); }
  double glowRadius() const { return glowRadius_; }

 protected:
  void drawContent(ZelGraphicsContext& ctx) override;
  CGRect contentExtent() const override;

 private:
  ZelColor glowColor_{0, 0, 0, 0};
  double glowRadius_ = 0;
};

ZEL_NAMESPACE_END
