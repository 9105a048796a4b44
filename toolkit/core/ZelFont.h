// A font as a value: which face and what size. The drawing backend resolves
// it (text faces through the system's font matching, the icon face from the
// bundle's font file) and caches what it needs.
#pragma once

#include <string>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

enum class ZelFontFace {
  Medium,  // the editor's text face ("HelveticaNeue-Medium" on the platform it was designed on)
  Italic,  // its italic ("HelveticaNeue-Italic")
  Icons,   // the bundle's icon font ("Zel-Icons-Regular.otf")
};

struct ZelFont {
  ZelFontFace face = ZelFontFace::Medium;
  double pointSize = 12;
  friend bool operator==(const ZelFont&, const ZelFont&) = default;
};

// One line of text measured in a font, in points: the advance width and the
// distances of the highest and lowest ink-bearing line from the baseline.
struct ZelTextMetrics {
  double width = 0, ascent = 0, descent = 0;
};

ZEL_NAMESPACE_END
