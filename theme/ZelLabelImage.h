// Label images: a label or logo text of the form "base64,<Base64 of a PNG or
// JPEG file>" is a double-resolution image, drawn at half its pixel size.
//
// Decoded images and their inverted copies are cached for the life of the
// process (they are immutable); the caches are bounded and guarded by a
// mutex. Drawing is main-thread only, like every drawing.
#pragma once

#include <memory>
#include <string_view>

#include "toolkit/core/ZelGraphicsContext.h"
#include "toolkit/core/ZelImage.h"

ZEL_NAMESPACE_BEGIN

inline constexpr double kZelLabelImageOpacity = 0.7;

// The image of a "base64," text; nullptr without the prefix or when the
// rest does not decode to an image. The same text gives the same image.
std::shared_ptr<const ZelImage> ZelImageFromBase64String(std::string_view string);

// The rectangle an image is drawn in, centred in `rect` at half its pixel
// size, floored to whole points (in single precision).
CGRect SituatedRectInsideRectForImage(const ZelImage& image, CGRect rect);

// Draws the image centred in `rect` (as SituatedRectInsideRectForImage
// places it) at opacity 0.7, source over; inverted when the current theme
// asks for inverted labels. A null image draws nothing.
void DrawLabelImage(ZelGraphicsContext& ctx, const std::shared_ptr<const ZelImage>& image, CGRect rect);

// The colour-inverted copy of a label image (alpha kept), computed once per
// image and kept while the image lives.
std::shared_ptr<const ZelImage> ZelInvertedLabelImage(const std::shared_ptr<const ZelImage>& image);

ZEL_NAMESPACE_END
