// The manual's pages. What the editor does with the keyboard and the mouse
// is written here from the code that does it (editor/ZelKeyboardHandler.cpp,
// controls/ZelFloatControl.cpp and the concrete controls, toolkit/x11 for
// the modifiers: Ctrl is the editor's Command, Alt its Option); what each
// parameter does to the sound comes from resources/manual.plist; numbers
// come from the description.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "app/manual/ManualDocument.h"
#include "model/ZelConfig.h"

ZEL_NAMESPACE_BEGIN

namespace {

using Block = ZelManualBlock;
using Kind = ZelManualBlock::Kind;

Block text(Kind kind, std::string s) {
  Block b;
  b.kind = kind;
  b.text = std::move(s);
  return b;
}

Block heading(std::string s, std::string anchor) {
  Block b = text(Kind::Heading, std::move(s));
  b.anchor = std::move(anchor);
  return b;
}

Block subheading(std::string s, std::string anchor, std::string detail = {}) {
  Block b = text(Kind::Subheading, std::move(s));
  b.anchor = std::move(anchor);
  b.detail = std::move(detail);
  return b;
}

Block table(std::vector<double> columns, std::vector<std::vector<std::string>> rows, bool header) {
  Block b;
  b.kind = Kind::Table;
  b.columns = std::move(columns);
  b.rows = std::move(rows);
  b.header = header;
  return b;
}

// Paragraphs of a text, one per line.
void paragraphs(std::vector<Block>& out, std::string_view s) {
  while (!s.empty()) {
    const std::size_t end = s.find('\n');
    std::string_view line = s.substr(0, end);
    if (!line.empty()) out.push_back(text(Kind::Paragraph, std::string(line)));
    if (end == std::string_view::npos) break;
    s.remove_prefix(end + 1);
  }
}

// The value as the editor shows it, with its unit ("20 Hz", "-inf dB").
std::string shown(const ZelParameter& p, float value) {
  std::string s, suffix;
  p.valueString(&s, &suffix, value);
  if (suffix.empty()) return s;
  return s + (suffix == "%" ? "" : " ") + suffix;
}

std::string number(double v) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%g", v);
  return buffer;
}

std::string unitSuffix(const ZelParameter& p) {
  if (!p.unitSymbol.empty()) return p.unitSymbol;
  return std::string(p.unitSuffixFromUnit(p.unit));
}

std::string withUnit(const ZelParameter& p, double v) {
  const std::string u = unitSuffix(p);
  if (u.empty()) return number(v);
  return number(v) + (u == "%" ? "" : " ") + u;
}

bool isChoice(const ZelParameter& p) { return !p.stringValues.empty(); }

std::string rangeText(const ZelParameter& p) {
  if (isChoice(p)) {
    std::string s;
    for (std::size_t i = 0; i < p.stringValues.size(); ++i) s += (i ? ", " : "") + p.stringValues[i];
    return s;
  }
  std::string s = shown(p, p.minValue) + " to " + shown(p, p.maxValue);
  if (p.logarithmic) s += ", on a logarithmic scale";
  if (p.showsNegativeInfinity) s += "; the minimum (shown as \xE2\x88\x92\xE2\x88\x9E) adds nothing";
  return s;
}

std::string stepsText(const ZelParameter& p) {
  if (isChoice(p)) return "one choice at a time";
  std::string s = withUnit(p, p.granularity) + " (`Ctrl` " + withUnit(p, p.fineGranularity) + ", `Shift` " +
                  withUnit(p, p.coarseGranularity) + ")";
  if (p.unit == ZelUnit::Hertz && p.logarithmic) s += "; at least 10 Hz from 1 kHz, 100 Hz from 10 kHz";
  return s;
}

bool inTabOrder(const ZelConfig& config, const ZelParameter& p) {
  for (const std::string& name : config.metadata().tabOrderNames)
    if (name == p.codesafeName) return true;
  return false;
}

// How the control is played, in short (the Mouse and Keyboard pages say
// it in full).
std::string gesturesText(const ZelConfig& config, const ZelParameter& p) {
  const std::string tab = inTabOrder(config, p) ? "`Tab` reaches it; " : "";
  const std::string common = "`Alt`+click: default; right-click: menu. ";
  switch (p.controlType) {
    case ZelControlType::Slider:
      return "Drag (`Ctrl` finer, `Shift` coarse) or turn the wheel; " + common + tab +
             "arrow keys step it, or type a value and `Return`" +
             (p.unit == ZelUnit::Hertz ? std::string(" (`2.5k` is 2500 Hz).") : std::string("."));
    case ZelControlType::Number:
      return "Drag up or down (a step every 3 points) or turn the wheel; " + common + tab +
             "arrow keys step it, or type a value and `Return`.";
    case ZelControlType::Cycle:
      return "Click: next choice, `Shift`+click: previous; " + common + tab +
             "arrow keys step it, or type its number (0 for the first) and `Return`.";
    case ZelControlType::Toggle:
      return "Click, or drag towards an end; " + common + tab + "`Return` flips it.";
    case ZelControlType::Boolean:
      return "Click; " + common + "`Ctrl+O` switches it from anywhere in the editor.";
    default:
      return common;
  }
}

std::string clumpWhere(const ZelClump& c) {
  switch (c.clumpType) {
    case ZelClumpType::Advanced: return "advanced drawer";
    case ZelClumpType::PowerBox: return "power strip";
    default: return "main view";
  }
}

// The preset's settings that differ from the parameters' defaults.
std::string presetSettings(const ZelConfig& config, unsigned index) {
  std::string s;
  for (const ZelPresetAssignment& a : ZelPresetAssignments(config, index)) {
    if (a.value == a.parameter->initialValue || a.parameter->presetWildcard) continue;
    if (!s.empty()) s += ", ";
    s += a.parameter->name + " " + shown(*a.parameter, a.value);
  }
  return s.empty() ? "every parameter at its default" : s;
}

ZelManualPage coverPage(const ZelConfig& config) {
  const ZelMetadata& m = config.metadata();
  ZelManualPage page{"Cover", "cover", {}};
  Block title = text(Kind::Title, m.pluginLongName.empty() ? m.tagline : m.pluginLongName);
  title.detail = "User manual for version " + m.version + " \xC2\xB7 LV2 plug-in (stereo and mono) and standalone app";
  page.blocks.push_back(title);
  Block picture;
  picture.kind = Kind::Picture;
  picture.shot = 0;
  picture.width = 400;
  page.blocks.push_back(picture);
  Block contents;
  contents.kind = Kind::Contents;
  page.blocks.push_back(contents);
  return page;
}

ZelManualPage overviewPage(const ZelConfig& config, const ZelManualTexts& texts) {
  ZelManualPage page{"What " + config.metadata().pluginName + " does", "overview", {}};
  page.blocks.push_back(heading(page.title, page.anchor));
  paragraphs(page.blocks, texts.overview);
  if (!texts.flow.steps.empty()) {
    Block flow;
    flow.kind = Kind::Flow;
    flow.flow = texts.flow;
    page.blocks.push_back(flow);
  }
  page.blocks.push_back(subheading("The editor at a glance", "editor"));
  std::vector<std::vector<std::string>> rows;
  std::string main, advanced;
  config.enumerateClumps([&](const ZelClump& c) {
    std::string& list = c.clumpType == ZelClumpType::Advanced ? advanced : main;
    if (c.clumpType == ZelClumpType::PowerBox) return;
    list += (list.empty() ? "" : ", ") + c.name;
  });
  rows.push_back({"**Main view**", "The clumps " + main + ", each a titled group of controls."});
  rows.push_back({"**Advanced drawer**", "Slides over the main view with " + advanced +
                                             ": the gear button or `Ctrl+A` opens and closes it."});
  rows.push_back({"**Power strip**", "On the right: Power, a picture of the current settings, the buttons for the "
                                     "on-line manual (book), the advanced drawer (gear) and the light or dark theme, "
                                     "and the logo, whose menu leads to the web site and the manual."});
  rows.push_back({"**Preset bar**", "Along the bottom: the preset's name between two arrows, undo and redo, save "
                                    "(copies the settings as text) and more (the presets drawer)."});
  rows.push_back({"**Presets drawer**", "Every factory preset by section: click one to load it. `Ctrl+P`, the more "
                                        "button or a click on the preset's name opens and closes it."});
  page.blocks.push_back(table({0.24, 0.76}, std::move(rows), false));
  return page;
}

ZelManualPage clumpPage(const ZelConfig& config, const ZelManualTexts& texts, const ZelClump& clump,
                        const std::vector<ZelManualShot>& shots) {
  ZelManualPage page{clump.name, "clump-" + clump.codesafeName, {}};
  page.blocks.push_back(heading(clump.name, page.anchor));
  // The clump's picture with its text beside it.
  Block lead;
  lead.kind = Kind::Picture;
  lead.shot = -1;
  for (std::size_t i = 0; i < shots.size(); ++i) {
    const auto frame = shots[i].clumpFrames.find(clump.codesafeName);
    if (frame == shots[i].clumpFrames.end()) continue;
    lead.shot = int(i);
    lead.crop = frame->second;
    lead.text = clump.name + " in the " + clumpWhere(clump);
    break;
  }
  const auto text = texts.clumps.find(clump.codesafeName);
  if (text != texts.clumps.end()) lead.detail = text->second;
  page.blocks.push_back(lead);
  for (const auto& p : clump.parameters) {
    page.blocks.push_back(subheading(p->name, p->codesafeName, p->codesafeName));
    const auto sound = texts.parameters.find(p->codesafeName);
    if (sound != texts.parameters.end()) paragraphs(page.blocks, sound->second);
    const std::string copy =
        p->pid == 0 ? "never" : "`" + (p->minimalName.empty() ? p->codesafeName : p->minimalName) + "`";
    std::vector<std::vector<std::string>> facts;
    facts.push_back({isChoice(*p) ? "**Choices**" : "**Range**", rangeText(*p), "**Default**", shown(*p, p->initialValue)});
    if (!isChoice(*p)) facts.push_back({"**Steps**", stepsText(*p), "**Copied as**", copy});
    else facts.push_back({"**Copied as**", copy});
    facts.push_back({"**Gestures**", gesturesText(config, *p)});
    page.blocks.push_back(table({0.13, 0.47, 0.14, 0.26}, std::move(facts), false));
  }
  return page;
}

ZelManualPage presetsPage(const ZelConfig& config) {
  ZelManualPage page{"Presets", "presets", {}};
  page.blocks.push_back(heading(page.title, page.anchor));
  page.blocks.push_back(text(
      Kind::Paragraph,
      "The preset bar's arrows step through the factory presets; a click on the name, the more button or `Ctrl+P` "
      "opens the presets drawer, where they are listed by section (a preset may appear in more than one). Loading "
      "a preset sets every parameter but Power: what it does not name goes back to its default. The name is marked "
      "as soon as the settings differ from the preset. `Ctrl+R` goes back to Default. In a host the same presets "
      "appear in the host's own preset list, in banks named after these sections."));
  for (const ZelPresetSection& section : ZelPresetSections(config.categorizedPresets())) {
    page.blocks.push_back(subheading(section.title, ""));
    std::vector<std::vector<std::string>> rows;
    for (const ZelPresetEntry& entry : section.presets) {
      if (!entry.presetID) continue;
      rows.push_back({"**" + entry.name + "**", presetSettings(config, unsigned(*entry.presetID))});
    }
    page.blocks.push_back(table({0.26, 0.74}, std::move(rows), false));
  }
  return page;
}

ZelManualPage keyboardPage(const ZelConfig& config) {
  ZelManualPage page{"Keyboard", "keyboard", {}};
  page.blocks.push_back(heading("Keyboard shortcuts", page.anchor));
  page.blocks.push_back(text(Kind::Paragraph,
                             "The editor takes the keyboard once it has been clicked (inside a host too). `Ctrl` "
                             "is the control key and `Alt` the alt key; the letters work with either case unless "
                             "`Shift` is named."));
  std::string order;
  for (const std::string& name : config.metadata().tabOrderNames)
    if (const ZelParameter* p = config.parameterForCodename(name)) order += (order.empty() ? "" : ", ") + p->name;
  page.blocks.push_back(subheading("With Ctrl", ""));
  page.blocks.push_back(table(
      {0.24, 0.76},
      {{"Keys", "What they do"},
       {"`Ctrl+Z`", "Undo the last change: changes without a pause of half a second between them are one step; up to 100 steps."},
       {"`Ctrl+Y`, `Ctrl+Shift+Z`", "Redo."},
       {"`Ctrl+C`", "Copy the settings as text (see Copy and paste)."},
       {"`Ctrl+V`", "Paste settings copied as text; text that is not such an address changes nothing."},
       {"`Ctrl+R`", "Load the first preset, Default."},
       {"`Ctrl+P`", "Open or close the presets drawer."},
       {"`Ctrl+A`", "Open or close the advanced drawer."},
       {"`Ctrl+O`", "Switch Power on or off."},
       {"`Ctrl+T`", "Switch between the light and the dark theme."},
       {"`Ctrl+M`", "Open this manual (the PDF beside the plug-in or the app) with the desktop's viewer "
                    "(`xdg-open`)."},
       {"`Ctrl+N`", "Taken by the editor; does nothing in this version."}},
      true));
  page.blocks.push_back(subheading("On the focused control", ""));
  page.blocks.push_back(table(
      {0.24, 0.76},
      {{"Keys", "What they do"},
       {"`Tab`, `Shift+Tab`", "Focus the next or the previous control, in the order " + order +
                                  " (only those of the view on top: the main view or the advanced drawer). Tab "
                                  "first enters a value being typed."},
       {"`` ` `` (grave)", "Focus the previous control."},
       {"Arrow keys", "Up and Right raise the value by one step, Down and Left lower it; with `Shift` a coarse "
                      "step, with `Ctrl` a fine one. A value between steps first moves onto one."},
       {"`0`-`9`, `.`, `-`, `k`", "Type a value: it shows on the control until entered. `-` only first; `k` "
                                  "ends the number and multiplies it by 1000."},
       {"`Backspace`", "Remove the last typed character."},
       {"`Return`, `Enter`", "Enter the typed value (clamped to the range). On a control of two states (HQ) it "
                             "flips the value instead."},
       {"`Escape`", "Forget the typed value and leave the control; pressed again, close the open drawer."}},
      true));
  return page;
}

ZelManualPage mousePage() {
  ZelManualPage page{"Mouse", "mouse", {}};
  page.blocks.push_back(heading("Mouse gestures", page.anchor));
  page.blocks.push_back(text(Kind::Paragraph,
                             "A click on a control's label acts on the control. A host records each drag as one "
                             "touch for its automation."));
  page.blocks.push_back(table(
      {0.26, 0.74},
      {{"Gesture", "What it does"},
       {"**Drag** a slider", "Moves the value with the pointer from where it was grabbed: a click alone never "
                             "changes it. Past either end the value holds the end, so turning back acts at once."},
       {"`Ctrl`+drag", "Ten times finer, on the fine steps. Pressing or releasing a modifier during a drag "
                       "carries on from where the value is."},
       {"`Shift`+drag", "Coarse steps."},
       {"**Drag** Slope", "Up raises, down lowers: one step of 6 dB/oct for every 3 points."},
       {"**Wheel**", "One notch moves a slider by 10 points of its travel (at least one step), Slope by one "
                     "step; with `Ctrl` finer, with `Shift` in coarse steps."},
       {"**Click** Mode, Power", "The next choice; `Shift`+click the previous one."},
       {"**Click** HQ", "Flips it; dragging its thumb towards either end sets that end."},
       {"`Alt`+click", "Puts the control back to its default value."},
       {"**Right-click**", "The control's menu: Reset Default Value (offered when the value is not the default) "
                           "and Read about, which opens the on-line manual at that parameter. `Ctrl`+click without "
                           "moving opens the same menu."},
       {"**Click** the preset arrows", "The previous or the next factory preset; a click on the name opens the "
                                       "presets drawer."},
       {"**Click** the logo", "About, Visit Website\xE2\x80\xA6 and Manual\xE2\x80\xA6 (the on-line manual)."},
       {"**Wheel** in the presets drawer", "Scrolls it when the presets do not fit."}},
      true));
  return page;
}

// Two of the product's sliders for the copy-and-paste examples: the first,
// and the first of another clump; each with a value worth showing (the
// first at the middle of its travel, whole; the second at its maximum;
// either at the other end when that is its default).
struct CopyExample {
  const ZelParameter* a = nullptr;
  const ZelParameter* b = nullptr;
  float aValue = 0, bValue = 0;
};

CopyExample copyExample(const std::vector<const ZelParameter*>& listed) {
  CopyExample e;
  for (const ZelParameter* p : listed) {
    if (p->controlType != ZelControlType::Slider) continue;
    if (!e.a) e.a = p;
    else if (p->clump != e.a->clump) {
      e.b = p;
      break;
    }
  }
  if (!e.a) return {};
  if (!e.b) e.b = e.a;
  // Copied text names only values away from their defaults.
  e.aValue = std::round(e.a->normalizedFloatValueFromPercent(0.5f, 0));
  if (e.aValue == e.a->initialValue) e.aValue = e.a->maxValue;
  e.bValue = e.b->maxValue == e.b->initialValue ? e.b->minValue : e.b->maxValue;
  return e;
}

std::string exampleNumber(float v) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", double(v));
  return text;
}

std::string exampleDisplay(const ZelParameter& p, float v) {
  std::string value, suffix;
  p.valueString(&value, &suffix, v);
  return suffix.empty() ? value : value + " " + suffix;
}

ZelManualPage copyAndStatePage(const ZelConfig& config) {
  const ZelMetadata& m = config.metadata();
  const std::string base = "https://www.zel-audio.example/" + m.pluginURLSlug + "/" + m.version + "/";
  ZelManualPage page{"Copy and paste, state", "copy", {}};
  page.blocks.push_back(heading("Copy and paste", page.anchor));
  page.blocks.push_back(text(Kind::Paragraph,
                             "`Ctrl+C` (or the save button of the preset bar) puts the settings on the clipboard "
                             "as one line of text shaped like a web address, to paste into a message, a note or "
                             "another instance of " + m.pluginName + ":"));
  std::vector<const ZelParameter*> listed;
  config.enumerateParameters([&](const ZelParameter& p, const ZelClump&) {
    if (p.pid != 0) listed.push_back(&p);
  });
  const CopyExample ex = copyExample(listed);
  const auto key = [](const ZelParameter& p) { return p.minimalName.empty() ? p.codesafeName : p.minimalName; };
  const std::string pair = ex.a ? key(*ex.a) + ":" + exampleNumber(ex.aValue) + "/" + key(*ex.b) + ":" +
                                      exampleNumber(ex.bValue)
                                : std::string();
  page.blocks.push_back(text(Kind::Note, "`" + base + "?" + pair + "`"));
  page.blocks.push_back(text(
      Kind::Paragraph,
      "The address names the product and its version; after the `?` come the parameters that differ from their "
      "defaults, as `key:value` separated by `/`. Values are in the parameters' own units and written in full, "
      "never in the local language's number format; a choice is written by its index. Power is never written." +
          (ex.a ? " The example sets " + ex.a->name + " to " + exampleDisplay(*ex.a, ex.aValue) + " and " +
                      ex.b->name + " to " + exampleDisplay(*ex.b, ex.bValue) + "."
                : std::string())));
  std::vector<std::vector<std::string>> keys{{"Key", "Parameter", "Key", "Parameter"}};
  for (std::size_t i = 0; i < listed.size(); i += 2) {
    std::vector<std::string> row;
    for (std::size_t j = i; j < i + 2; ++j) {
      if (j < listed.size()) {
        const ZelParameter& p = *listed[j];
        row.push_back("`" + (p.minimalName.empty() ? p.codesafeName : p.minimalName) + "`");
        row.push_back(p.name);
      } else {
        row.insert(row.end(), {"", ""});
      }
    }
    keys.push_back(std::move(row));
  }
  page.blocks.push_back(table({0.14, 0.36, 0.14, 0.36}, std::move(keys), true));
  page.blocks.push_back(text(
      Kind::Paragraph,
      "`Ctrl+V` reads such text back: every parameter it names takes that value, every other one (Power too) goes "
      "back to its default, and `x` as a value keeps the current one" +
          (ex.a ? " (`" + key(*ex.a) + ":" + exampleNumber(ex.aValue) + "/" + key(*ex.b) + ":x`)" : std::string()) +
          ". The code names work as keys too, and so does the form of a web link" +
          (ex.a ? ", `?" + ex.a->codesafeName + "=" + exampleNumber(ex.aValue) + "&" + ex.b->codesafeName + "=" +
                      exampleNumber(ex.bValue) + "`"
                : std::string()) +
          ". Unknown names are ignored; text that is not an address changes nothing."));
  page.blocks.push_back(heading("Where the settings are kept", "state"));
  page.blocks.push_back(table(
      {0.24, 0.76},
      {{"**LV2 plug-in**",
        "The host saves the parameters with the session (or the project), as the plug-in's control ports, and "
        "restores them when it opens it. The plug-in's own state adds two values: `presetName` (the name of the "
        "preset last chosen, shown in the preset bar) and `theme` (1 when the editor was switched to the dark "
        "theme). Host presets saved from the plug-in carry the same. Closing the editor changes nothing: the "
        "plug-in keeps everything while it runs."},
       {"**Standalone app**",
        "Keeps the values, the preset name and the theme in memory while it runs; nothing is written to disk, "
        "and it starts at the defaults (the theme from `--theme`). With `--watch` the values, the preset and the "
        "theme survive every reload of the description. Copy the settings with `Ctrl+C` to keep them."},
       {"**Undo history**", "Belongs to the open editor: it starts afresh each time the editor opens."},
       {"**This manual**", "`" + m.classPrefix + "_Manual.pdf` (and `" + m.classPrefix +
                               "_Manual.html`) in the plug-in's `resources` folder and in the app's."}},
      false));
  return page;
}

}  // namespace

ZelManualDocument ZelBuildManual(const ZelConfig& config, const ZelManualTexts& texts,
                                 std::vector<ZelManualShot> shots) {
  ZelManualDocument doc;
  const ZelMetadata& m = config.metadata();
  doc.productName = m.pluginName;
  doc.version = m.version;
  doc.longName = m.pluginLongName;
  doc.pages.push_back(coverPage(config));
  doc.pages.push_back(overviewPage(config, texts));
  config.enumerateClumps([&](const ZelClump& c) { doc.pages.push_back(clumpPage(config, texts, c, shots)); });
  doc.pages.push_back(presetsPage(config));
  doc.pages.push_back(keyboardPage(config));
  doc.pages.push_back(mousePage());
  doc.pages.push_back(copyAndStatePage(config));
  doc.shots = std::move(shots);
  return doc;
}

// ---- Marks.

namespace {

template <class Escape, class Open, class Close>
std::string convertMarks(std::string_view text, Escape escape, Open open, Close close) {
  std::string out;
  bool bold = false, code = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    // `` ` `` is a code span holding one grave accent.
    if (!code && text.substr(i, 7) == "`` ` ``") {
      open(out, '`');
      escape(out, '`');
      close(out, '`');
      i += 6;
    } else if (text[i] == '`') {
      code ? close(out, '`') : open(out, '`');
      code = !code;
    } else if (!code && text.substr(i, 2) == "**") {
      bold ? close(out, '*') : open(out, '*');
      bold = !bold;
      ++i;
    } else {
      escape(out, text[i]);
    }
  }
  if (code) close(out, '`');
  if (bold) close(out, '*');
  return out;
}

void escapeXML(std::string& out, char c) {
  switch (c) {
    case '&': out += "&amp;"; break;
    case '<': out += "&lt;"; break;
    case '>': out += "&gt;"; break;
    case '"': out += "&quot;"; break;
    default: out += c;
  }
}

}  // namespace

std::string ZelManualPangoMarkup(std::string_view text, const std::string& codeFamily) {
  return convertMarks(
      text, escapeXML,
      [&](std::string& out, char mark) {
        out += mark == '`' ? "<span font_family=\"" + codeFamily + "\" size=\"92%\">" : std::string("<b>");
      },
      [](std::string& out, char mark) { out += mark == '`' ? "</span>" : "</b>"; });
}

std::string ZelManualHTMLText(std::string_view text) {
  return convertMarks(
      text, [](std::string& out, char c) { c == '\n' ? void(out += "<br>") : escapeXML(out, c); },
      [](std::string& out, char mark) { out += mark == '`' ? "<code>" : "<b>"; },
      [](std::string& out, char mark) { out += mark == '`' ? "</code>" : "</b>"; });
}

ZEL_NAMESPACE_END
