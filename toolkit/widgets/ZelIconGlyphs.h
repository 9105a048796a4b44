// The glyphs of the bundle's icon font ("Zel-Icons-Regular.otf"), as UTF-8
// strings of their private-use code points. Text made of these is drawn in
// the icon font (ZelUITheme::appropriateFontForValue chooses it for any
// non-ASCII text). resources/icons/README.md lists the same table; the font
// is built by resources/tools/make_icon_font.py.
#pragma once

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

namespace ZelIconGlyph {

inline constexpr char kPower[] = "\xEE\x80\x80";         // U+E000 power switch
inline constexpr char kGear[] = "\xEE\x80\x81";          // U+E001 gear (advanced controls)
inline constexpr char kBook[] = "\xEE\x80\x82";          // U+E002 open book (manual)
inline constexpr char kUndo[] = "\xEE\x80\x83";          // U+E003 undo
inline constexpr char kRedo[] = "\xEE\x80\x84";          // U+E004 redo
inline constexpr char kSave[] = "\xEE\x80\x85";          // U+E005 save (floppy disc)
inline constexpr char kMore[] = "\xEE\x80\x86";          // U+E006 more / list
inline constexpr char kTheme[] = "\xEE\x80\x87";         // U+E007 theme (half-filled circle)
inline constexpr char kClose[] = "\xEE\x80\x88";         // U+E008 close (×)
inline constexpr char kChevronLeft[] = "\xEE\x80\x89";   // U+E009
inline constexpr char kChevronRight[] = "\xEE\x80\x8A";  // U+E00A
inline constexpr char kChevronUp[] = "\xEE\x80\x8B";     // U+E00B
inline constexpr char kChevronDown[] = "\xEE\x80\x8C";   // U+E00C
inline constexpr char kCheck[] = "\xEE\x80\x8D";         // U+E00D check mark
inline constexpr char kDot[] = "\xEE\x80\x8E";           // U+E00E dot
inline constexpr char kPlus[] = "\xEE\x80\x8F";          // U+E00F plus
inline constexpr char kMinus[] = "\xEE\x80\x90";         // U+E010 minus

// The font's design metrics, in ems: every glyph advances 1 em; the text box
// of a line is 0.8 em above and 0.2 em below the baseline.
inline constexpr double kAdvanceEm = 1.0;
inline constexpr double kAscentEm = 0.8;
inline constexpr double kDescentEm = 0.2;

// The first and last code points in use.
inline constexpr char32_t kFirstCodePoint = 0xE000;
inline constexpr char32_t kLastCodePoint = 0xE010;

}  // namespace ZelIconGlyph

ZEL_NAMESPACE_END
