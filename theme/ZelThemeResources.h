// The theme's bundle resources: the background textures, decoded once per
// process, and the presence of the icon font file.
//
// Threading: any thread (the caches are guarded by a mutex). Cached images
// are immutable and shared.
#pragma once

#include <memory>
#include <string_view>

#include "toolkit/core/ZelGraphicsContext.h"
#include "toolkit/core/ZelImage.h"
#include "toolkit/foundation/Geometry.h"

ZEL_NAMESPACE_BEGIN

inline constexpr std::string_view kZelLightTextureName = "noised-ottoman";
inline constexpr std::string_view kZelLightTextureExtension = "jpg";
inline constexpr std::string_view kZelDarkTextureName = "noise_dark";
inline constexpr std::string_view kZelDarkTextureExtension = "png";
inline constexpr std::string_view kZelIconFontName = "Zel-Icons-Regular";
inline constexpr std::string_view kZelIconFontExtension = "otf";

// A texture tiled behind the editor. The textures are double-resolution
// bitmaps, so one cell is half the image's pixel size in points.
struct ZelBackgroundPattern {
  std::shared_ptr<const ZelImage> image;  // nullptr when the resource is missing
  CGSize cellSize;

  // An image of p × q pixels tiles in cells of p/2 × q/2 points.
  static ZelBackgroundPattern withImage(std::shared_ptr<const ZelImage> image);
  // Makes the pattern the context's fill (a missing image fills nothing).
  void setAsFill(ZelGraphicsContext& ctx) const { ctx.setFillPattern(image, cellSize); }
};

// The bundle image `name`.`extension`, decoded on first use and shared;
// nullptr when the file is missing or does not decode (asked again later,
// in case the bundle's folder changed).
std::shared_ptr<const ZelImage> ZelBundleImage(std::string_view name, std::string_view extension);

// Whether the bundle holds a font file for the icon face (a file named
// "Zel-Icons-Regular.otf" with a font signature). Checked once per resources
// folder.
bool ZelIconFontFileIsUsable();

ZEL_NAMESPACE_END
