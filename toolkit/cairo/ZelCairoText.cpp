#include "toolkit/cairo/ZelCairoText.h"

#include <pango/pangocairo.h>

#include <strings.h>

#ifndef ZEL_RESOURCES_DIR
#define ZEL_RESOURCES_DIR "resources"
#endif

ZEL_NAMESPACE_BEGIN

namespace {

constexpr std::size_t kMaxCachedLayouts = 512;

bool familyInstalled(PangoFontMap* map, const char* wanted) {
  PangoFontFamily** families = nullptr;
  int count = 0;
  pango_font_map_list_families(map, &families, &count);
  bool found = false;
  for (int i = 0; i < count && !found; ++i) {
    found = strcasecmp(pango_font_family_get_name(families[i]), wanted) == 0;
  }
  g_free(families);
  return found;
}

std::string resolveTextFamily() {
  PangoFontMap* map = pango_cairo_font_map_new();
  std::string family = familyInstalled(map, "Helvetica Neue") ? "Helvetica Neue"
                       : familyInstalled(map, "Nimbus Sans")  ? "Nimbus Sans"
                                                              : "Sans";
  g_object_unref(map);
  return family;
}

// Helvetica Neue has a true medium; the substitute's regular is its closest
// weight that still reads as the editor's (its bold is far heavier).
PangoWeight weightFor(ZelFontFace face) {
  if (face != ZelFontFace::Medium) return PANGO_WEIGHT_NORMAL;
  return ZelCairoText::textFamily() == "Helvetica Neue" ? PANGO_WEIGHT_MEDIUM : PANGO_WEIGHT_NORMAL;
}

cairo_font_options_t* makeFontOptions() {
  cairo_font_options_t* options = cairo_font_options_create();
  cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
  cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_SLIGHT);
  cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
  return options;
}

}  // namespace

std::string ZelCairoText::defaultIconFontPath() { return ZEL_RESOURCES_DIR "/Zel-Icons-Regular.otf"; }

const std::string& ZelCairoText::textFamily() {
  static const std::string family = resolveTextFamily();  // the installed fonts, looked up once
  return family;
}

ZelCairoText::ZelCairoText(const std::string& iconFontPath) : icons_(iconFontPath) {
  fontMap_ = pango_cairo_font_map_new();
  context_ = pango_font_map_create_context(fontMap_);
  cairo_font_options_t* options = makeFontOptions();
  pango_cairo_context_set_font_options(context_, options);
  cairo_font_options_destroy(options);
  pango_context_set_round_glyph_positions(context_, FALSE);
  pango_context_set_language(context_, pango_language_from_string("en"));
  pango_context_set_base_dir(context_, PANGO_DIRECTION_LTR);
}

ZelCairoText::~ZelCairoText() {
  for (auto& [key, entry] : layouts_) g_object_unref(entry.layout);
  for (auto& [key, desc] : descriptions_) pango_font_description_free(desc);
  g_object_unref(context_);
  g_object_unref(fontMap_);
}

std::size_t ZelCairoText::LayoutKeyHash::operator()(const LayoutKeyView& k) const {
  std::size_t h = std::hash<std::string_view>()(k.text);
  h ^= std::hash<double>()(k.size) + 0x9e3779b97f4a7c15ull + (h << 6) + (h >> 2);
  return h ^ static_cast<std::size_t>(k.face);
}

PangoFontDescription* ZelCairoText::descriptionFor(const ZelFont& font) {
  std::pair key{font.face, font.pointSize};
  auto it = descriptions_.find(key);
  if (it != descriptions_.end()) return it->second;
  PangoFontDescription* desc = pango_font_description_new();
  pango_font_description_set_family(desc, textFamily().c_str());
  pango_font_description_set_weight(desc, weightFor(font.face));
  pango_font_description_set_style(desc, font.face == ZelFontFace::Italic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
  pango_font_description_set_absolute_size(desc, std::max(font.pointSize, 0.0) * PANGO_SCALE);
  descriptions_.emplace(key, desc);
  return desc;
}

PangoLayout* ZelCairoText::layoutFor(std::string_view utf8, const ZelFont& font) {
  auto it = layouts_.find(LayoutKeyView{font.face, font.pointSize, utf8});
  if (it != layouts_.end()) {
    layoutAges_.splice(layoutAges_.begin(), layoutAges_, it->second.age);
    return it->second.layout;
  }
  PangoLayout* layout = pango_layout_new(context_);
  pango_layout_set_single_paragraph_mode(layout, TRUE);
  pango_layout_set_font_description(layout, descriptionFor(font));
  pango_layout_set_text(layout, utf8.data(), static_cast<int>(utf8.size()));
  LayoutKey key{font.face, font.pointSize, std::string(utf8)};
  layoutAges_.push_front(key);
  layouts_.emplace(std::move(key), CachedLayout{layout, layoutAges_.begin()});
  trimLayouts();
  return layout;
}

void ZelCairoText::trimLayouts() {
  while (layouts_.size() > kMaxCachedLayouts) {
    auto it = layouts_.find(layoutAges_.back());
    g_object_unref(it->second.layout);
    layouts_.erase(it);
    layoutAges_.pop_back();
  }
}

ZelTextMetrics ZelCairoText::measure(std::string_view utf8, const ZelFont& font) {
  if (!(font.pointSize > 0)) return {};
  if (font.face == ZelFontFace::Icons) return icons_.measure(utf8, font.pointSize);
  PangoLayoutLine* line = pango_layout_get_line_readonly(layoutFor(utf8, font), 0);
  PangoRectangle logical;
  pango_layout_line_get_extents(line, nullptr, &logical);
  ZelTextMetrics m;
  m.width = static_cast<double>(logical.width) / PANGO_SCALE;
  m.ascent = -static_cast<double>(logical.y) / PANGO_SCALE;
  m.descent = static_cast<double>(logical.y + logical.height) / PANGO_SCALE;
  return m;
}

CGRect ZelCairoText::inkBounds(std::string_view utf8, const ZelFont& font) {
  if (!(font.pointSize > 0)) return CGRectZero;
  if (font.face == ZelFontFace::Icons) {
    ZelTextMetrics m = icons_.measure(utf8, font.pointSize);
    return CGRectMake(0, -m.ascent, m.width, m.ascent + m.descent);
  }
  PangoLayoutLine* line = pango_layout_get_line_readonly(layoutFor(utf8, font), 0);
  PangoRectangle ink;
  pango_layout_line_get_extents(line, &ink, nullptr);
  return CGRectMake(static_cast<double>(ink.x) / PANGO_SCALE, static_cast<double>(ink.y) / PANGO_SCALE,
                    static_cast<double>(ink.width) / PANGO_SCALE, static_cast<double>(ink.height) / PANGO_SCALE);
}

void ZelCairoText::show(cairo_t* cr, std::string_view utf8, const ZelFont& font) {
  if (utf8.empty() || !(font.pointSize > 0)) return;
  if (font.face == ZelFontFace::Icons) {
    icons_.showGlyphs(cr, icons_.layoutGlyphs(utf8, font.pointSize), font.pointSize);
    return;
  }
  PangoLayoutLine* line = pango_layout_get_line_readonly(layoutFor(utf8, font), 0);
  cairo_move_to(cr, 0, 0);
  pango_cairo_show_layout_line(cr, line);
  cairo_new_path(cr);
}

ZEL_NAMESPACE_END
