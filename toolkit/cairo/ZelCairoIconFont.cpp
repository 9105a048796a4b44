#include "toolkit/cairo/ZelCairoIconFont.h"

#include <cairo-ft.h>
#include <ft2build.h>
#include FT_FREETYPE_H

#include <memory>

ZEL_NAMESPACE_BEGIN

namespace {

// A FreeType library shared by the faces opened from it; the last face to
// go closes it.
struct FreeTypeLibrary {
  FT_Library library = nullptr;
  ~FreeTypeLibrary() {
    if (library) FT_Done_FreeType(library);
  }
};

// What cairo's font face keeps alive: the face, then its library.
struct FreeTypeFaceHolder {
  std::shared_ptr<FreeTypeLibrary> library;
  FT_Face face = nullptr;
  ~FreeTypeFaceHolder() {
    if (face) FT_Done_Face(face);
  }
};

const cairo_user_data_key_t kFaceHolderKey{};

void destroyFaceHolder(void* holder) { delete static_cast<FreeTypeFaceHolder*>(holder); }

constexpr std::size_t kMaxScaledFonts = 16;

}  // namespace

std::u32string ZelDecodeUTF8(std::string_view s) {
  std::u32string out;
  out.reserve(s.size());
  for (std::size_t i = 0; i < s.size();) {
    auto b = static_cast<unsigned char>(s[i]);
    int extra = b < 0x80 ? 0 : (b >> 5) == 6 ? 1 : (b >> 4) == 14 ? 2 : (b >> 3) == 30 ? 3 : -1;
    if (extra < 0 || i + extra >= s.size()) {
      ++i;
      continue;
    }
    char32_t cp = extra == 0 ? b : (b & (0x3F >> extra));
    bool ok = true;
    for (int k = 1; k <= extra; ++k) {
      auto c = static_cast<unsigned char>(s[i + k]);
      ok = ok && (c >> 6) == 2;
      cp = (cp << 6) | (c & 0x3F);
    }
    if (ok) out.push_back(cp);
    i += ok ? extra + 1 : 1;
  }
  return out;
}

ZelCairoIconFont::ZelCairoIconFont(const std::string& path) {
  auto library = std::make_shared<FreeTypeLibrary>();
  if (FT_Init_FreeType(&library->library) != 0) {
    library->library = nullptr;
    return;
  }
  auto holder = std::make_unique<FreeTypeFaceHolder>();
  holder->library = library;
  if (FT_New_Face(library->library, path.c_str(), 0, &holder->face) != 0) {
    holder->face = nullptr;
    return;
  }
  cairo_font_face_t* face = cairo_ft_font_face_create_for_ft_face(holder->face, 0);
  FT_Face ftFace = holder->face;
  if (cairo_font_face_set_user_data(face, &kFaceHolderKey, holder.get(), destroyFaceHolder) !=
      CAIRO_STATUS_SUCCESS) {
    cairo_font_face_destroy(face);
    return;  // holder still owned here: closes the face and the library
  }
  holder.release();  // now owned by the cairo font face
  face_ = face;
  ftFace_ = ftFace;
  options_ = cairo_font_options_create();
  cairo_font_options_set_antialias(options_, CAIRO_ANTIALIAS_GRAY);
  cairo_font_options_set_hint_style(options_, CAIRO_HINT_STYLE_SLIGHT);
  cairo_font_options_set_hint_metrics(options_, CAIRO_HINT_METRICS_OFF);
}

ZelCairoIconFont::~ZelCairoIconFont() {
  for (auto& [size, font] : scaledFonts_) cairo_scaled_font_destroy(font);
  if (options_) cairo_font_options_destroy(options_);
  if (face_) cairo_font_face_destroy(face_);
}

unsigned ZelCairoIconFont::glyphIndex(char32_t codePoint) const {
  return FT_Get_Char_Index(static_cast<FT_Face>(ftFace_), codePoint);
}

cairo_scaled_font_t* ZelCairoIconFont::scaledFont(double size) {
  auto it = scaledFonts_.find(size);
  if (it != scaledFonts_.end()) return it->second;
  if (scaledFonts_.size() >= kMaxScaledFonts) {
    for (auto& [s, font] : scaledFonts_) cairo_scaled_font_destroy(font);
    scaledFonts_.clear();
  }
  cairo_matrix_t fontMatrix, identity;
  cairo_matrix_init_scale(&fontMatrix, size, size);
  cairo_matrix_init_identity(&identity);
  cairo_scaled_font_t* font = cairo_scaled_font_create(face_, &fontMatrix, &identity, options_);
  scaledFonts_.emplace(size, font);
  return font;
}

std::vector<cairo_glyph_t> ZelCairoIconFont::layoutGlyphs(std::string_view utf8, double size) {
  std::vector<cairo_glyph_t> glyphs;
  if (!valid() || !(size > 0)) return glyphs;
  cairo_scaled_font_t* font = scaledFont(size);
  double x = 0;
  for (char32_t cp : ZelDecodeUTF8(utf8)) {
    unsigned index = glyphIndex(cp);
    if (index == 0) continue;
    cairo_glyph_t g{index, x, 0};
    cairo_text_extents_t ext;
    cairo_scaled_font_glyph_extents(font, &g, 1, &ext);
    glyphs.push_back(g);
    x += ext.x_advance;
  }
  return glyphs;
}

ZelTextMetrics ZelCairoIconFont::measure(std::string_view utf8, double size) {
  ZelTextMetrics m;
  if (!valid() || !(size > 0)) return m;
  std::vector<cairo_glyph_t> glyphs = layoutGlyphs(utf8, size);
  cairo_scaled_font_t* font = scaledFont(size);
  if (!glyphs.empty()) {
    cairo_text_extents_t ext;
    cairo_scaled_font_glyph_extents(font, &glyphs.back(), 1, &ext);
    m.width = glyphs.back().x + ext.x_advance;
  }
  cairo_font_extents_t fe;
  cairo_scaled_font_extents(font, &fe);
  m.ascent = fe.ascent;
  m.descent = fe.descent;
  return m;
}

void ZelCairoIconFont::showGlyphs(cairo_t* cr, const std::vector<cairo_glyph_t>& glyphs, double size) {
  if (!valid() || glyphs.empty()) return;
  cairo_set_font_face(cr, face_);
  cairo_set_font_size(cr, size);
  cairo_set_font_options(cr, options_);
  cairo_show_glyphs(cr, glyphs.data(), static_cast<int>(glyphs.size()));
}

ZEL_NAMESPACE_END
