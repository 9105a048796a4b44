// The icon face: one font file (the bundle's "Zel-Icons-Regular.otf") opened
// with FreeType and handed to cairo as a font face. It is never registered
// with fontconfig: the editor lives inside a host's process and leaves the
// host's font configuration alone.
//
// Ownership: each icon font owns its own FreeType library. The FT_Face and
// that library stay alive as long as cairo holds the font face (cairo keeps
// faces in its caches after we release ours), through a destroy callback on
// the cairo font face. Threading: one thread at a time (FreeType faces and
// libraries are not thread-safe); a window's text machinery is used on the
// UI thread only.
#pragma once

#include <cairo.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/core/ZelFont.h"

ZEL_NAMESPACE_BEGIN

class ZelCairoIconFont {
 public:
  // Opens `path`; a missing or unreadable file gives an icon font that is
  // not valid(): it draws nothing and measures zero.
  explicit ZelCairoIconFont(const std::string& path);
  ~ZelCairoIconFont();
  ZelCairoIconFont(const ZelCairoIconFont&) = delete;
  ZelCairoIconFont& operator=(const ZelCairoIconFont&) = delete;

  bool valid() const { return face_ != nullptr; }

  // Glyphs of the UTF-8 text laid out from the origin along +x, in a y-down
  // space at `size` points. Characters without a glyph are skipped.
  std::vector<cairo_glyph_t> layoutGlyphs(std::string_view utf8, double size);
  ZelTextMetrics measure(std::string_view utf8, double size);

  // Sets the face, size and font options on `cr` (y-down user space) and
  // shows the glyphs in the current source.
  void showGlyphs(cairo_t* cr, const std::vector<cairo_glyph_t>& glyphs, double size);

 private:
  cairo_scaled_font_t* scaledFont(double size);
  unsigned glyphIndex(char32_t codePoint) const;

  cairo_font_face_t* face_ = nullptr;  // owned reference
  void* ftFace_ = nullptr;             // the FT_Face, owned through face_'s user data
  cairo_font_options_t* options_ = nullptr;
  std::map<double, cairo_scaled_font_t*> scaledFonts_;  // owned references
};

// The code points of UTF-8 text; malformed bytes are skipped.
std::u32string ZelDecodeUTF8(std::string_view utf8);

ZEL_NAMESPACE_END
