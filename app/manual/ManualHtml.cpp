// The manual as one HTML page: the same pages as the PDF, one section each,
// every parameter under an anchor named after its code name (id="Gain"),
// every clump under "clump-<code name>". The pictures are embedded.
#include <cairo.h>

#include <algorithm>

#include <fstream>

#include "app/manual/ManualDocument.h"

ZEL_NAMESPACE_BEGIN

namespace {

std::string base64(const std::string& bytes) {
  static constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  std::size_t i = 0;
  for (; i + 2 < bytes.size(); i += 3) {
    const unsigned n = (unsigned char)bytes[i] << 16 | (unsigned char)bytes[i + 1] << 8 | (unsigned char)bytes[i + 2];
    out += {kDigits[n >> 18], kDigits[(n >> 12) & 63], kDigits[(n >> 6) & 63], kDigits[n & 63]};
  }
  if (i + 1 == bytes.size()) {
    const unsigned n = (unsigned char)bytes[i] << 16;
    out += {kDigits[n >> 18], kDigits[(n >> 12) & 63], '=', '='};
  } else if (i + 2 == bytes.size()) {
    const unsigned n = (unsigned char)bytes[i] << 16 | (unsigned char)bytes[i + 1] << 8;
    out += {kDigits[n >> 18], kDigits[(n >> 12) & 63], kDigits[(n >> 6) & 63], '='};
  }
  return out;
}

// The part of the shot as a PNG data address, at the shot's scale.
std::string pictureData(const ZelManualShot& shot, CGRect crop) {
  if (crop.size.width <= 0 || crop.size.height <= 0) crop = CGRectMake(0, 0, shot.size.width, shot.size.height);
  const int w = int(crop.size.width * shot.scale + 0.5), h = int(crop.size.height * shot.scale + 0.5);
  cairo_surface_t* part = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, w, h);
  cairo_t* cr = cairo_create(part);
  cairo_set_source_surface(cr, shot.image.get(), -crop.origin.x * shot.scale, -crop.origin.y * shot.scale);
  cairo_paint(cr);
  cairo_destroy(cr);
  std::string png;
  cairo_surface_write_to_png_stream(
      part,
      [](void* closure, const unsigned char* data, unsigned int length) {
        static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
        return CAIRO_STATUS_SUCCESS;
      },
      &png);
  cairo_surface_destroy(part);
  return "data:image/png;base64," + base64(png);
}

std::string id(const std::string& anchor) { return anchor.empty() ? "" : " id=\"" + ZelManualHTMLText(anchor) + "\""; }

constexpr const char* kStyle = R"(
body { font-family: "Nimbus Sans", "Helvetica Neue", Arial, sans-serif; color: #222; max-width: 46em;
       margin: 2em auto; padding: 0 1.2em; line-height: 1.45; }
h1 { font-size: 2.6em; margin: 0.2em 0 0; }
h2 { font-size: 1.6em; margin-top: 2.2em; border-bottom: 3px solid #D9822B; display: inline-block; }
h3 { font-size: 1.15em; margin: 1.6em 0 0.3em; }
h3 small, code { font-family: "Nimbus Mono PS", "DejaVu Sans Mono", monospace; }
h3 small { color: #6b6b70; font-weight: normal; margin-left: 0.6em; font-size: 0.75em; }
.subtitle { font-size: 1.3em; margin: 0; } .detail { color: #6b6b70; }
table { border-collapse: collapse; width: 100%; margin: 0.5em 0 1em; font-size: 0.92em; }
td, th { border-bottom: 1px solid #ccc; padding: 0.35em 0.5em; text-align: left; vertical-align: top; }
th { background: #F5F0E8; }
figure { text-align: center; margin: 1em 0; } figcaption { color: #6b6b70; font-size: 0.85em; }
img { border: 1px solid #ccc; max-width: 100%; }
.note { background: #F5F0E8; border-left: 3px solid #D9822B; padding: 0.5em 0.8em; }
.flow { font-size: 0.95em; }
)";

}  // namespace

bool ZelWriteManualHTML(const ZelManualDocument& doc, const std::string& path, std::string& error) {
  using Kind = ZelManualBlock::Kind;
  std::string out = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>" +
                    ZelManualHTMLText(doc.productName + " " + doc.version + " user manual") + "</title>\n<style>" +
                    kStyle + "</style>\n</head>\n<body>\n";
  for (const ZelManualPage& page : doc.pages) {
    out += "<section>\n";  // the page's heading carries its anchor

    for (const ZelManualBlock& b : page.blocks) {
      switch (b.kind) {
        case Kind::Title:
          out += "<h1>" + ZelManualHTMLText(doc.productName) + "</h1>\n<p class=\"subtitle\">" +
                 ZelManualHTMLText(b.text) + "</p>\n<p class=\"detail\">" + ZelManualHTMLText(b.detail) + "</p>\n";
          break;
        case Kind::Heading:
          out += "<h2" + id(b.anchor) + ">" + ZelManualHTMLText(b.text) + "</h2>\n";
          break;
        case Kind::Subheading:
          out += "<h3" + id(b.anchor) + ">" + ZelManualHTMLText(b.text);
          if (!b.detail.empty()) out += "<small>" + ZelManualHTMLText(b.detail) + "</small>";
          out += "</h3>\n";
          break;
        case Kind::Paragraph:
          out += "<p>" + ZelManualHTMLText(b.text) + "</p>\n";
          break;
        case Kind::Note:
          out += "<p class=\"note\">" + ZelManualHTMLText(b.text) + "</p>\n";
          break;
        case Kind::Table: {
          out += "<table>\n";
          for (std::size_t r = 0; r < b.rows.size(); ++r) {
            const char* cell = b.header && r == 0 ? "th" : "td";
            out += "<tr>";
            const auto& row = b.rows[r];
            for (std::size_t c = 0; c < row.size(); ++c) {
              // A row shorter than the table: its last cell spans the columns left.
              const std::size_t span = c + 1 == row.size() && row.size() < b.columns.size() ? b.columns.size() - c : 1;
              out += std::string("<") + cell + (span > 1 ? " colspan=\"" + std::to_string(span) + "\"" : "") + ">" +
                     ZelManualHTMLText(row[c]) + "</" + cell + ">";
            }
            out += "</tr>\n";
          }
          out += "</table>\n";
          break;
        }
        case Kind::Picture: {
          if (!b.detail.empty()) out += "<p>" + ZelManualHTMLText(b.detail) + "</p>\n";
          if (b.shot < 0 || std::size_t(b.shot) >= doc.shots.size() || !doc.shots[std::size_t(b.shot)].image) break;
          const ZelManualShot& shot = doc.shots[std::size_t(b.shot)];
          const CGRect crop = b.crop.size.width > 0 ? b.crop : CGRectMake(0, 0, shot.size.width, shot.size.height);
          out += "<figure><img width=\"" + std::to_string(int(crop.size.width)) + "\" alt=\"" +
                 ZelManualHTMLText(b.text.empty() ? doc.productName + "'s editor" : b.text) + "\" src=\"" +
                 pictureData(shot, crop) + "\">";
          if (!b.text.empty()) out += "<figcaption>" + ZelManualHTMLText(b.text) + "</figcaption>";
          out += "</figure>\n";
          break;
        }
        case Kind::Flow: {
          // The steps on one line, the per-channel part in brackets.
          const ZelManualFlow& f = b.flow;
          std::string line;
          for (std::size_t i = 0; i < f.steps.size(); ++i) {
            std::string step = f.steps[i];
            std::replace(step.begin(), step.end(), '\n', ' ');
            if (i > 0) line += " \xE2\x86\x92 ";
            if (int(i) == f.chainFirst) line += "<b>[</b> ";
            line += ZelManualHTMLText(step);
            if (int(i) == f.chainLast) line += " <b>]</b>";
          }
          line += ".";
          if (f.chainFirst >= 0 && !f.chainLabel.empty())
            line += " The part in brackets: " + ZelManualHTMLText(f.chainLabel) + ".";
          if (!f.note.empty()) line += " " + ZelManualHTMLText(f.note);
          out += "<p class=\"flow\">" + line + "</p>\n";
          break;
        }
        case Kind::Contents:
          out += "<nav><h3>Contents</h3><ol>\n";
          for (std::size_t i = 1; i < doc.pages.size(); ++i)
            out += "<li><a href=\"#" + ZelManualHTMLText(doc.pages[i].anchor) + "\">" +
                   ZelManualHTMLText(doc.pages[i].title) + "</a></li>\n";
          out += "</ol></nav>\n";
          break;
      }
    }
    out += "</section>\n";
  }
  out += "</body>\n</html>\n";
  const std::string temporary = path + ".part";
  {
    std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
    file << out;
    if (!file.flush()) {
      error = "cannot write " + path;
      return false;
    }
  }
  if (std::rename(temporary.c_str(), path.c_str()) != 0) {
    error = "cannot write " + path;
    return false;
  }
  return true;
}

ZEL_NAMESPACE_END
