// The text machinery of the cairo backend: the two text faces through pango
// (a font map and a pango context of our own, so nothing the host set up is
// touched), the icon face from its font file, and caches of font
// descriptions and laid-out lines.
//
// Text is laid out once, independently of the device: hinting of metrics is
// off and glyph positions are not rounded, so a line measures and breaks the
// same at every backing scale, and cairo renders the outlines at the real
// device resolution.
//
// Ownership: one instance per window (shared by the contexts drawing that
// window and the bitmap contexts made from them, through std::shared_ptr).
// Threading: one thread at a time, the UI thread.
#pragma once

#include <cairo.h>

#include <list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "toolkit/cairo/ZelCairoIconFont.h"
#include "toolkit/core/ZelFont.h"
#include "toolkit/foundation/Geometry.h"

typedef struct _PangoFontMap PangoFontMap;
typedef struct _PangoContext PangoContext;
typedef struct _PangoLayout PangoLayout;
typedef struct _PangoFontDescription PangoFontDescription;

ZEL_NAMESPACE_BEGIN

class ZelCairoText {
 public:
  // `iconFontPath`: the icon face's font file; a missing file means no icon
  // face (icon text draws nothing).
  explicit ZelCairoText(const std::string& iconFontPath = defaultIconFontPath());
  ~ZelCairoText();
  ZelCairoText(const ZelCairoText&) = delete;
  ZelCairoText& operator=(const ZelCairoText&) = delete;

  // The bundle's icon font in the resources folder of this build.
  static std::string defaultIconFontPath();

  // The installed family the text faces resolve to: "Helvetica Neue" when
  // present, else "Nimbus Sans", else the system's sans-serif.
  static const std::string& textFamily();

  ZelTextMetrics measure(std::string_view utf8, const ZelFont& font);

  // Draws one line in cr's current source with the left end of its baseline
  // at cr's user-space origin; cr's user space must be y down.
  void show(cairo_t* cr, std::string_view utf8, const ZelFont& font);

  // The ink bounds of the line in that same y-down space (for shadows).
  CGRect inkBounds(std::string_view utf8, const ZelFont& font);

  bool hasIconFont() const { return icons_.valid(); }

 private:
  // A laid-out line is found by face, size and text without building a key.
  struct LayoutKeyView {
    ZelFontFace face;
    double size;
    std::string_view text;
  };
  struct LayoutKey {
    ZelFontFace face;
    double size;
    std::string text;
    operator LayoutKeyView() const { return {face, size, text}; }
  };
  struct LayoutKeyHash {
    using is_transparent = void;
    std::size_t operator()(const LayoutKeyView& k) const;
    std::size_t operator()(const LayoutKey& k) const { return (*this)(LayoutKeyView(k)); }
  };
  struct LayoutKeyEqual {
    using is_transparent = void;
    bool operator()(const LayoutKeyView& a, const LayoutKeyView& b) const {
      return a.face == b.face && a.size == b.size && a.text == b.text;
    }
  };
  struct CachedLayout {
    PangoLayout* layout;
    std::list<LayoutKey>::iterator age;
  };
  PangoLayout* layoutFor(std::string_view utf8, const ZelFont& font);
  PangoFontDescription* descriptionFor(const ZelFont& font);
  void trimLayouts();

  PangoFontMap* fontMap_ = nullptr;
  PangoContext* context_ = nullptr;
  std::map<std::pair<ZelFontFace, double>, PangoFontDescription*> descriptions_;
  std::unordered_map<LayoutKey, CachedLayout, LayoutKeyHash, LayoutKeyEqual> layouts_;
  std::list<LayoutKey> layoutAges_;  // most recently used first
  ZelCairoIconFont icons_;
};

ZEL_NAMESPACE_END
