// The manual as a list of pages of blocks, built once from the description
// and the manual's texts, then written as PDF (ManualPdf.cpp) and as HTML
// (ManualHtml.cpp) so that both say the same.
//
// Inline text may hold two marks: **bold** and `code` (a code name, a key,
// a command); everything else is plain text.
//
// Threading: pure data; any thread.
#pragma once

#include <string>
#include <vector>

#include "app/manual/ManualShots.h"
#include "app/manual/ManualTexts.h"

ZEL_NAMESPACE_BEGIN

struct ZelManualBlock {
  enum class Kind { Title, Heading, Subheading, Paragraph, Note, Table, Picture, Flow, Contents };
  Kind kind = Kind::Paragraph;
  std::string text;     // headings, paragraphs, notes; the subtitle of Title
  std::string anchor;   // headings and subheadings: the id a link reaches it by
  std::string detail;   // Subheading: the code name beside the name; Title: the version line
  // Table: rows of cells; the first row is the header when `header` is set.
  std::vector<std::vector<std::string>> rows;
  std::vector<double> columns;  // Table: relative column widths
  bool header = false;
  // Picture: which shot (0 = the editor, 1 = with the advanced drawer) and
  // the part of it, in points (the whole picture when empty).
  int shot = 0;
  CGRect crop{};
  double width = 0;  // Picture: points wide on the page
  ZelManualFlow flow;  // Flow: the signal chain
};

struct ZelManualPage {
  std::string title;   // for the outline, the contents and the running head
  std::string anchor;  // the page's id in the HTML version
  std::vector<ZelManualBlock> blocks;
};

struct ZelManualDocument {
  std::string productName, version, longName;
  std::vector<ZelManualPage> pages;
  std::vector<ZelManualShot> shots;  // indexed by ZelManualBlock::shot
};

// Builds the whole manual. `config` is the description the texts were
// checked against; `shots` are the editor's pictures (see ManualShots.h).
ZelManualDocument ZelBuildManual(const ZelConfig& config, const ZelManualTexts& texts,
                                 std::vector<ZelManualShot> shots);

// Writers: false (with `error` set) when the file cannot be written or the
// pages do not fit. The PDF is A4.
bool ZelWriteManualPDF(const ZelManualDocument& document, const std::string& path, std::string& error);
bool ZelWriteManualHTML(const ZelManualDocument& document, const std::string& path, std::string& error);

// The text with its marks for pango (markup, escaped) and for HTML.
std::string ZelManualPangoMarkup(std::string_view text, const std::string& codeFamily);
std::string ZelManualHTMLText(std::string_view text);

ZEL_NAMESPACE_END
