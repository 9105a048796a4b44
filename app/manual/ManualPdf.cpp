// The manual as an A4 PDF, drawn with cairo's PDF surface and pango.
#include <cairo-pdf.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "app/manual/ManualDocument.h"
#include "toolkit/cairo/ZelCairoText.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr double kPageWidth = 595.276, kPageHeight = 841.89;  // A4 in points
constexpr double kLeft = 64, kRight = 64, kTop = 62, kBottom = 68;
constexpr double kWidth = kPageWidth - kLeft - kRight;
constexpr double kMaxPictureHeight = 140;
constexpr const char* kCodeFamily = "Nimbus Mono PS,DejaVu Sans Mono,monospace";

struct RGB {
  double r, g, b;
};
constexpr RGB kInk{0.13, 0.13, 0.14}, kGrey{0.42, 0.42, 0.44}, kRule{0.80, 0.79, 0.77}, kShade{0.96, 0.94, 0.91};
constexpr RGB kAccent{0.851, 0.510, 0.169};  // the product's colour, #D9822B

void setColor(cairo_t* cr, RGB c) { cairo_set_source_rgb(cr, c.r, c.g, c.b); }

class Typesetter {
 public:
  Typesetter(cairo_surface_t* surface, const ZelManualDocument& doc)
      : surface_(surface), cr_(cairo_create(surface)), doc_(doc), family_(ZelCairoText::textFamily()) {}
  ~Typesetter() { cairo_destroy(cr_); }

  bool write(std::string& error) {
    for (std::size_t i = 0; i < doc_.pages.size(); ++i) {
      page_ = int(i) + 1;
      const ZelManualPage& page = doc_.pages[i];
      y_ = kTop;
      outline(page);
      for (const ZelManualBlock& b : page.blocks) block(b);
      if (y_ > kPageHeight - kBottom + 0.5 && !std::getenv("ZEL_MANUAL_DRAFT")) {
        error = "page " + std::to_string(page_) + " (" + page.title + ") runs " +
                std::to_string(int(std::ceil(y_ - (kPageHeight - kBottom)))) + " points into the bottom margin";
        return false;
      }
      if (i > 0) footer(page);
      cairo_show_page(cr_);
    }
    return cairo_status(cr_) == CAIRO_STATUS_SUCCESS;
  }

 private:
  // ---- Text.

  PangoLayout* layout(std::string_view text, const char* weight, double size, double width, bool code = false) {
    PangoLayout* l = pango_cairo_create_layout(cr_);
    PangoFontDescription* font = pango_font_description_new();
    pango_font_description_set_family(font, code ? kCodeFamily : family_.c_str());
    pango_font_description_set_weight(font, std::string_view(weight) == "bold" ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    pango_font_description_set_absolute_size(font, size * PANGO_SCALE);
    pango_layout_set_font_description(l, font);
    pango_font_description_free(font);
    pango_layout_set_width(l, int(width * PANGO_SCALE));
    pango_layout_set_wrap(l, PANGO_WRAP_WORD_CHAR);
    const std::string markup = ZelManualPangoMarkup(text, kCodeFamily);
    pango_layout_set_markup(l, markup.c_str(), -1);
    return l;
  }

  // Draws at (x, y) and gives the height.
  double draw(PangoLayout* l, double x, double y, RGB color) {
    int w = 0, h = 0;
    pango_layout_get_size(l, &w, &h);
    setColor(cr_, color);
    cairo_move_to(cr_, x, y);
    pango_cairo_show_layout(cr_, l);
    g_object_unref(l);
    return double(h) / PANGO_SCALE;
  }

  double measure(PangoLayout* l) {
    int w = 0, h = 0;
    pango_layout_get_size(l, &w, &h);
    g_object_unref(l);
    return double(h) / PANGO_SCALE;
  }

  double textWidth(PangoLayout* l) {
    int w = 0, h = 0;
    pango_layout_get_size(l, &w, &h);
    g_object_unref(l);
    return double(w) / PANGO_SCALE;
  }

  PangoLayout* body(std::string_view text, double width, double size = 10) {
    PangoLayout* l = layout(text, "normal", size, width);
    pango_layout_set_line_spacing(l, 1.28f);
    return l;
  }

  // ---- Blocks.

  void block(const ZelManualBlock& b) {
    using Kind = ZelManualBlock::Kind;
    switch (b.kind) {
      case Kind::Title: title(b); break;
      case Kind::Heading: heading(b); break;
      case Kind::Subheading: subheading(b); break;
      case Kind::Paragraph: y_ += draw(body(b.text, kWidth), kLeft, y_, kInk) + 7; break;
      case Kind::Note: note(b); break;
      case Kind::Table: table(b); break;
      case Kind::Picture: picture(b); break;
      case Kind::Flow: flow(b.flow); break;
      case Kind::Contents: contents(); break;
    }
  }

  void title(const ZelManualBlock& b) {
    y_ = 92;
    setColor(cr_, kAccent);
    cairo_rectangle(cr_, kLeft, y_ - 22, 56, 5);
    cairo_fill(cr_);
    y_ += draw(layout(doc_.productName, "bold", 46, kWidth), kLeft, y_, kInk) + 4;
    y_ += draw(layout(b.text, "normal", 17, kWidth), kLeft, y_, kInk) + 8;
    y_ += draw(layout(b.detail, "normal", 10, kWidth), kLeft, y_, kGrey) + 30;
  }

  void heading(const ZelManualBlock& b) {
    if (y_ > kTop + 1) y_ += 14;
    y_ += draw(layout(b.text, "bold", 22, kWidth), kLeft, y_, kInk) + 6;
    setColor(cr_, kAccent);
    cairo_rectangle(cr_, kLeft, y_, 36, 3);
    cairo_fill(cr_);
    y_ += 15;
  }

  void subheading(const ZelManualBlock& b) {
    y_ += 9;
    const double h = draw(layout(b.text, "bold", 13, kWidth), kLeft, y_, kInk);
    if (!b.detail.empty()) {
      const double w = textWidth(layout(b.text, "bold", 13, kWidth));
      draw(layout(b.detail, "normal", 9, kWidth - w - 10, true), kLeft + w + 10, y_ + 3.6, kGrey);
    }
    y_ += h + 5;
  }

  void note(const ZelManualBlock& b) {
    PangoLayout* l = layout(b.text, "normal", 10, kWidth - 24);
    const double h = measure(layout(b.text, "normal", 10, kWidth - 24));
    setColor(cr_, kShade);
    cairo_rectangle(cr_, kLeft, y_, kWidth, h + 14);
    cairo_fill(cr_);
    setColor(cr_, kAccent);
    cairo_rectangle(cr_, kLeft, y_, 2.5, h + 14);
    cairo_fill(cr_);
    draw(l, kLeft + 12, y_ + 7, kInk);
    y_ += h + 14 + 9;
  }

  // A row shorter than the table: its last cell spans the columns left.
  static double cellWidth(const ZelManualBlock& b, const std::vector<std::string>& row, std::size_t c, double total) {
    double share = b.columns[c];
    if (c + 1 == row.size())
      for (std::size_t k = c + 1; k < b.columns.size(); ++k) share += b.columns[k];
    return kWidth * share / total;
  }

  void table(const ZelManualBlock& b) {
    double total = 0;
    for (double c : b.columns) total += c;
    constexpr double pad = 4, size = 9.2;
    y_ += 2;
    for (std::size_t r = 0; r < b.rows.size(); ++r) {
      const bool head = b.header && r == 0;
      const auto& row = b.rows[r];
      double h = 0;
      for (std::size_t c = 0; c < row.size() && c < b.columns.size(); ++c) {
        const double w = cellWidth(b, row, c, total) - 2 * pad;
        PangoLayout* l = head ? layout(row[c], "bold", size, w) : body(row[c], w, size);
        h = std::max(h, measure(l));
      }
      h += 2 * pad;
      if (head) {
        setColor(cr_, kShade);
        cairo_rectangle(cr_, kLeft, y_, kWidth, h);
        cairo_fill(cr_);
      }
      double x = kLeft;
      for (std::size_t c = 0; c < row.size() && c < b.columns.size(); ++c) {
        const double w = cellWidth(b, row, c, total);
        PangoLayout* l = head ? layout(row[c], "bold", size, w - 2 * pad) : body(row[c], w - 2 * pad, size);
        draw(l, x + pad, y_ + pad, head || (c == 0 && !b.header) ? kInk : kInk);
        x += w;
      }
      y_ += h;
      setColor(cr_, kRule);
      cairo_set_line_width(cr_, 0.5);
      cairo_move_to(cr_, kLeft, y_ + 0.25);
      cairo_line_to(cr_, kLeft + kWidth, y_ + 0.25);
      cairo_stroke(cr_);
    }
    y_ += 8;
  }

  void picture(const ZelManualBlock& b) {
    const ZelManualShot* shot =
        b.shot >= 0 && std::size_t(b.shot) < doc_.shots.size() && doc_.shots[std::size_t(b.shot)].image
            ? &doc_.shots[std::size_t(b.shot)]
            : nullptr;
    if (!shot) {
      if (!b.detail.empty()) y_ += draw(body(b.detail, kWidth), kLeft, y_, kInk) + 7;
      return;
    }
    CGRect crop = b.crop;
    if (crop.size.width <= 0 || crop.size.height <= 0) crop = CGRectMake(0, 0, shot->size.width, shot->size.height);
    // Beside a text the picture keeps to the right; alone it is centred.
    const bool beside = !b.detail.empty();
    const double maxHeight = b.width > 0 ? 1e9 : kMaxPictureHeight;
    const double maxWidth = b.width > 0 ? b.width : beside ? kWidth * 0.42 : kWidth;
    const double zoom = std::min({maxWidth / crop.size.width, maxHeight / crop.size.height, 1.25});
    const double w = crop.size.width * zoom, h = crop.size.height * zoom;
    const double x = beside ? kLeft + kWidth - w : kLeft + (kWidth - w) / 2;
    const double top = y_ + 2;
    if (beside) draw(body(b.detail, kWidth - w - 22), kLeft, top, kInk);
    cairo_save(cr_);
    cairo_rectangle(cr_, x, top, w, h);
    cairo_clip(cr_);
    cairo_translate(cr_, x, top);
    cairo_scale(cr_, zoom / shot->scale, zoom / shot->scale);
    cairo_set_source_surface(cr_, shot->image.get(), -crop.origin.x * shot->scale, -crop.origin.y * shot->scale);
    cairo_pattern_set_filter(cairo_get_source(cr_), CAIRO_FILTER_GOOD);
    cairo_paint(cr_);
    cairo_restore(cr_);
    setColor(cr_, kRule);
    cairo_set_line_width(cr_, 0.6);
    cairo_rectangle(cr_, x - 0.3, top - 0.3, w + 0.6, h + 0.6);
    cairo_stroke(cr_);
    double bottom = top + h + 4;
    if (!b.text.empty()) {
      PangoLayout* l = layout(b.text, "normal", 8.5, beside ? w + 40 : kWidth);
      pango_layout_set_alignment(l, PANGO_ALIGN_CENTER);
      bottom += draw(l, beside ? x - 20 : kLeft, bottom, kGrey);
    }
    if (beside) bottom = std::max(bottom, top + measure(body(b.detail, kWidth - w - 22)));
    y_ = bottom + 6;
  }

  // The signal chain: boxes in rows of six, left to right, each row led on
  // to the next; the per-channel part framed with a dashed line, row by row.
  void flow(const ZelManualFlow& f) {
    constexpr int perRow = 6;
    constexpr double gap = 16, bh = 34, rowGap = 34;
    const int count = static_cast<int>(f.steps.size());
    const int rows = (count + perRow - 1) / perRow;
    const double bw = (kWidth - (perRow - 1) * gap) / perRow;
    const bool framed = f.chainFirst >= 0;
    y_ += framed && !f.chainLabel.empty() ? 30 : 10;
    const double top = y_;
    auto rowTop = [&](int r) { return top + r * (bh + rowGap); };
    auto boxLeft = [&](int i) { return kLeft + (i % perRow) * (bw + gap); };
    if (framed) {
      cairo_set_line_width(cr_, 0.8);
      setColor(cr_, kAccent);
      const double dash[] = {3, 2};
      cairo_set_dash(cr_, dash, 2, 0);
      for (int r = 0; r < rows; ++r) {
        const int first = std::max(f.chainFirst, r * perRow), last = std::min(f.chainLast, r * perRow + perRow - 1);
        if (first > last) continue;
        const double x0 = boxLeft(first) - 6, x1 = boxLeft(last) + bw + 6;
        cairo_rectangle(cr_, x0, rowTop(r) - 7, x1 - x0, bh + 14);
      }
      cairo_stroke(cr_);
      cairo_set_dash(cr_, nullptr, 0, 0);
      if (!f.chainLabel.empty())
        draw(layout(f.chainLabel.c_str(), "normal", 8, kWidth), boxLeft(f.chainFirst) - 4,
             rowTop(f.chainFirst / perRow) - 20, kAccent);
    }
    for (int i = 0; i < count; ++i) {
      const bool chain = framed && i >= f.chainFirst && i <= f.chainLast;
      const double bx = boxLeft(i), by = rowTop(i / perRow);
      setColor(cr_, chain ? RGB{0.99, 0.95, 0.90} : kShade);
      cairo_rectangle(cr_, bx, by, bw, bh);
      cairo_fill(cr_);
      setColor(cr_, chain ? kAccent : kRule);
      cairo_rectangle(cr_, bx + 0.4, by + 0.4, bw - 0.8, bh - 0.8);
      cairo_stroke(cr_);
      PangoLayout* l = layout(f.steps[std::size_t(i)].c_str(), "normal", 8.6, bw - 6);
      pango_layout_set_alignment(l, PANGO_ALIGN_CENTER);
      int lw = 0, lh = 0;
      pango_layout_get_size(l, &lw, &lh);
      draw(l, bx + 3, by + (bh - double(lh) / PANGO_SCALE) / 2, kInk);
      if (i + 1 >= count) continue;
      if ((i + 1) % perRow != 0) {
        arrow(bx + bw + 2, by + bh / 2, bx + bw + gap - 2, by + bh / 2);
      } else {
        // From the end of a row to the start of the next.
        const double endX = bx + bw / 2, turn = by + bh + 17, startX = kLeft + bw / 2;
        setColor(cr_, kInk);
        cairo_move_to(cr_, endX, by + bh + 1);
        cairo_line_to(cr_, endX, turn);
        cairo_line_to(cr_, startX, turn);
        cairo_stroke(cr_);
        arrow(startX, turn, startX, rowTop(i / perRow + 1) - 2);
      }
    }
    y_ = rowTop(rows - 1) + bh + 16;
    if (!f.note.empty()) {
      draw(layout(f.note.c_str(), "normal", 8.5, kWidth), kLeft, y_, kGrey);
      y_ += 30;
    }
  }

  void arrow(double x0, double y0, double x1, double y1) {
    setColor(cr_, kInk);
    cairo_set_line_width(cr_, 0.8);
    cairo_move_to(cr_, x0, y0);
    cairo_line_to(cr_, x1, y1);
    cairo_stroke(cr_);
    const double a = std::atan2(y1 - y0, x1 - x0);
    cairo_move_to(cr_, x1, y1);
    cairo_line_to(cr_, x1 - 5 * std::cos(a - 0.45), y1 - 5 * std::sin(a - 0.45));
    cairo_line_to(cr_, x1 - 5 * std::cos(a + 0.45), y1 - 5 * std::sin(a + 0.45));
    cairo_close_path(cr_);
    cairo_fill(cr_);
  }

  void contents() {
    y_ += 6;
    y_ += draw(layout("Contents", "bold", 12, kWidth), kLeft, y_, kInk) + 6;
    const double columnWidth = (kWidth - 24) / 2;
    const std::size_t perColumn = (doc_.pages.size() - 1 + 1) / 2;
    double top = y_, bottom = y_;
    for (std::size_t i = 1; i < doc_.pages.size(); ++i) {
      const std::size_t k = i - 1;
      const double x = kLeft + (k < perColumn ? 0 : columnWidth + 24);
      const double y = top + double(k % perColumn) * 17;
      const std::string link = "page=" + std::to_string(i + 1);
      cairo_tag_begin(cr_, CAIRO_TAG_LINK, link.c_str());
      draw(layout(doc_.pages[i].title, "normal", 10, columnWidth - 30), x, y, kInk);
      PangoLayout* n = layout(std::to_string(i + 1), "normal", 10, 30);
      pango_layout_set_alignment(n, PANGO_ALIGN_RIGHT);
      draw(n, x + columnWidth - 30, y, kGrey);
      cairo_tag_end(cr_, CAIRO_TAG_LINK);
      setColor(cr_, kRule);
      cairo_set_line_width(cr_, 0.4);
      cairo_move_to(cr_, x, y + 15);
      cairo_line_to(cr_, x + columnWidth, y + 15);
      cairo_stroke(cr_);
      bottom = std::max(bottom, y + 17);
    }
    y_ = bottom + 6;
  }

  void outline(const ZelManualPage& page) {
    const std::string link = "page=" + std::to_string(page_);
    cairo_pdf_surface_add_outline(surface_, CAIRO_PDF_OUTLINE_ROOT, page.title.c_str(), link.c_str(),
                                  CAIRO_PDF_OUTLINE_FLAG_OPEN);
  }

  void footer(const ZelManualPage& page) {
    const double y = kPageHeight - kBottom + 30;
    setColor(cr_, kRule);
    cairo_set_line_width(cr_, 0.5);
    cairo_move_to(cr_, kLeft, y - 6);
    cairo_line_to(cr_, kLeft + kWidth, y - 6);
    cairo_stroke(cr_);
    draw(layout(doc_.productName + " " + doc_.version + " \xC2\xB7 " + page.title, "normal", 8.5, kWidth - 60), kLeft,
         y, kGrey);
    PangoLayout* n = layout(std::to_string(page_), "bold", 8.5, 60);
    pango_layout_set_alignment(n, PANGO_ALIGN_RIGHT);
    draw(n, kLeft + kWidth - 60, y, kInk);
  }

  cairo_surface_t* surface_;
  cairo_t* cr_;
  const ZelManualDocument& doc_;
  std::string family_;
  double y_ = kTop;
  int page_ = 0;
};

}  // namespace

bool ZelWriteManualPDF(const ZelManualDocument& document, const std::string& path, std::string& error) {
  cairo_surface_t* surface = cairo_pdf_surface_create(path.c_str(), kPageWidth, kPageHeight);
  if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
    error = "cannot write " + path;
    cairo_surface_destroy(surface);
    return false;
  }
  const std::string title = document.productName + " " + document.version + " user manual";
  cairo_pdf_surface_set_metadata(surface, CAIRO_PDF_METADATA_TITLE, title.c_str());
  cairo_pdf_surface_set_metadata(surface, CAIRO_PDF_METADATA_SUBJECT, document.longName.c_str());
  cairo_pdf_surface_set_metadata(surface, CAIRO_PDF_METADATA_CREATOR, "zel-make-manual");
  bool ok;
  {
    Typesetter typesetter(surface, document);
    ok = typesetter.write(error);
  }
  cairo_surface_finish(surface);
  if (ok && cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
    error = "cannot write " + path + ": " + cairo_status_to_string(cairo_surface_status(surface));
    ok = false;
  }
  cairo_surface_destroy(surface);
  return ok;
}

ZEL_NAMESPACE_END
