// The gallery's static sections, drawn straight into a context: text in both
// faces, the icon glyphs with their code points, the textures, border specs
// and label images. Each function draws inside `area` (points, y up) with
// the current theme's colours.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "toolkit/core/ZelGraphicsContext.h"
#include "toolkit/core/ZelImage.h"

namespace gallery {

using namespace zel;

// A section title above `area`.
void drawTitle(ZelGraphicsContext& ctx, std::string_view title, CGRect area);
// A caption centred under (or in) `area`'s bottom edge.
void drawCaption(ZelGraphicsContext& ctx, std::string_view caption, CGRect area);

void drawTextSamples(ZelGraphicsContext& ctx, CGRect area);
void drawIconGlyphs(ZelGraphicsContext& ctx, CGRect area);
void drawTextures(ZelGraphicsContext& ctx, CGRect area);
void drawBorderSpecs(ZelGraphicsContext& ctx, CGRect area);

// The description's label images, decoded once.
struct LabelImages {
  std::vector<std::shared_ptr<const ZelImage>> labels;  // clumps and parameters, file order
  std::shared_ptr<const ZelImage> logo;
};
LabelImages loadLabelImages(const std::string& descriptionPath);
// The labels as the current theme draws them, then the other rendering
// (inverted in the light theme, plain in the dark one) on the other
// theme's texture.
void drawLabelImages(ZelGraphicsContext& ctx, const LabelImages& images, CGRect area);

}  // namespace gallery
