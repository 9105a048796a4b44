#include "app/drive/DriveRunner.h"

#include "app/common/ZelNumberWords.h"
#include "app/drive/DriveDump.h"
#include "app/drive/DriveEvents.h"
#include "app/drive/DriveScript.h"
#include "model/ZelConfig.h"
#include "toolkit/core/ZelMenu.h"

ZEL_NAMESPACE_BEGIN

const ZelDriveRunner::Command ZelDriveRunner::kCommands[] = {
    {"wait", &ZelDriveRunner::wait},         {"down", &ZelDriveRunner::mouse},
    {"drag", &ZelDriveRunner::mouse},        {"up", &ZelDriveRunner::mouse},
    {"rightclick", &ZelDriveRunner::rightClick}, {"menu", &ZelDriveRunner::menu},
    {"scroll", &ZelDriveRunner::scroll},     {"key", &ZelDriveRunner::key},
    {"type", &ZelDriveRunner::type},         {"host", &ZelDriveRunner::host},
    {"channels", &ZelDriveRunner::channels}, {"focus", &ZelDriveRunner::focus},
    {"preset", &ZelDriveRunner::preset},     {"saved", &ZelDriveRunner::saved},
    {"clipboard", &ZelDriveRunner::clipboard}, {"print", &ZelDriveRunner::print},
    {"render", &ZelDriveRunner::render},     {"dump", &ZelDriveRunner::dump},
};

ZelDriveRunner::ZelDriveRunner(std::unique_ptr<ZelConfig> config, double scale, bool echoes, std::FILE* out,
                               std::FILE* notes)
    : out_(out),
      notes_(notes),
      loop_(clock_),
      window_(loop_, ZelEditorSession::editorSizeFor(*config)),
      host_(window_, scale),
      opener_([this](const std::string& url) { line("open " + url); }),
      platform_(window_, host_, opener_) {
  ZelRunLoop::setCurrent(&loop_);
  // Ctrl+click is a Command-drag here; "rightclick" opens menus.
  window_.setCommandClickOpensMenu(false);
  session_ = std::make_unique<ZelEditorSession>(window_, std::move(config));
  session_->unit().setObserver(this);
  session_->unit().setEchoes(echoes);
}

ZelDriveRunner::~ZelDriveRunner() {
  session_->unit().setObserver(nullptr);
  session_.reset();
  if (ZelRunLoop::current() == &loop_) ZelRunLoop::setCurrent(nullptr);
}

void ZelDriveRunner::start() {
  session_->open();
  window_.setKeyWindow(true);
  ZelRunVirtualTime(loop_, clock_, clock_.now() + kStartUpSeconds);
}

bool ZelDriveRunner::runLine(std::string_view text, std::string& error) {
  const Words words = ZelDriveWords(text);
  if (words.empty()) return true;
  for (const Command& command : kCommands) {
    if (command.name != words[0]) continue;
    if (!(this->*command.handler)(words, error)) return false;
    runDueCalls();
    return true;
  }
  error = "unknown command \"" + words[0] + "\"";
  return false;
}

void ZelDriveRunner::runDueCalls() { ZelRunVirtualTime(loop_, clock_, clock_.now()); }

void ZelDriveRunner::line(const std::string& text) {
  std::fputs(text.c_str(), out_);
  std::fputc('\n', out_);
  std::fflush(out_);
}

// ---- Arguments.

bool ZelDriveRunner::point(const Words& w, std::size_t at, CGPoint& p, std::string& error) const {
  const auto x = w.size() > at ? ZelParseNumberWord(w[at]) : std::nullopt;
  const auto y = w.size() > at + 1 ? ZelParseNumberWord(w[at + 1]) : std::nullopt;
  if (!x || !y) {
    error = w[0] + " needs X and Y";
    return false;
  }
  // Editor points (y up from its bottom-left corner) to window points.
  const CGPoint origin = editor() ? editor()->frame().origin : CGPoint{};
  p = CGPointMake(origin.x + *x, origin.y + *y);
  return true;
}

bool ZelDriveRunner::modifiers(const Words& w, std::size_t at, ZelEventModifierFlags& flags,
                               std::string& error) const {
  flags = 0;
  if (w.size() <= at) return true;
  const auto parsed = ZelDriveParseModifiers(w[at]);
  if (!parsed || w.size() > at + 1) {
    error = "bad modifiers \"" + ZelDriveRestOfLine(w, at) + "\" (use shift, ctrl, alt separated by commas)";
    return false;
  }
  flags = *parsed;
  return true;
}

void ZelDriveRunner::send(ZelEvent event) {
  event.timestamp = clock_.now();
  window_.sendEvent(event);
}

// As a real key goes: key-equivalent pass and key-down, then the key-up.
void ZelDriveRunner::pressKey(const ZelEvent& down) {
  send(down);
  send(ZelDriveKeyUp(down));
}

// ---- Commands.

bool ZelDriveRunner::wait(const Words& w, std::string& error) {
  const auto seconds = w.size() == 2 ? ZelParseNumberWord(w[1]) : std::nullopt;
  if (!seconds || *seconds < 0) {
    error = "wait needs SECONDS (not negative)";
    return false;
  }
  ZelRunVirtualTime(loop_, clock_, clock_.now() + *seconds);
  return true;
}

bool ZelDriveRunner::mouse(const Words& w, std::string& error) {
  CGPoint p;
  ZelEventModifierFlags flags = 0;
  if (!point(w, 1, p, error) || !modifiers(w, 3, flags, error)) return false;
  const ZelEventType type = w[0] == "down"   ? ZelEventType::LeftMouseDown
                            : w[0] == "drag" ? ZelEventType::LeftMouseDragged
                                             : ZelEventType::LeftMouseUp;
  send(ZelEvent::mouse(type, p, flags));
  return true;
}

bool ZelDriveRunner::rightClick(const Words& w, std::string& error) {
  CGPoint p;
  ZelEventModifierFlags flags = 0;
  if (!point(w, 1, p, error) || !modifiers(w, 3, flags, error)) return false;
  send(ZelEvent::mouse(ZelEventType::RightMouseDown, p, flags));
  send(ZelEvent::mouse(ZelEventType::RightMouseUp, p, flags));
  return true;
}

namespace {

std::string_view withoutEllipsis(std::string_view title) {
  for (std::string_view ellipsis : {std::string_view("\u2026"), std::string_view("...")})
    if (title.size() >= ellipsis.size() && title.substr(title.size() - ellipsis.size()) == ellipsis)
      return title.substr(0, title.size() - ellipsis.size());
  return title;
}

// The title of the item that `title` names when a trailing ellipsis ("…"
// or "...") is not counted on either side; `title` itself when none does.
std::string menuTitleLike(const ZelMenu& menu, const std::string& title) {
  for (const ZelMenuItem& item : menu.items())
    if (withoutEllipsis(item.title) == withoutEllipsis(title)) return item.title;
  return title;
}

}  // namespace

bool ZelDriveRunner::menu(const Words& w, std::string& error) {
  if (w.size() < 2) {
    error = "menu needs an item's title";
    return false;
  }
  const std::string title = ZelDriveRestOfLine(w, 1);
  const ZelMenu* open = window_.openMenu();
  if (!open) {
    std::fprintf(notes_, "zel-drive: no menu is open for \"%s\"\n", title.c_str());
  } else if (!window_.chooseMenuItem(title) && !window_.chooseMenuItem(menuTitleLike(*open, title))) {
    std::string items;
    for (int i = 0; i < static_cast<int>(open->size()); ++i)
      if (open->isSelectable(i)) items += " \"" + open->items()[static_cast<std::size_t>(i)].title + "\"";
    std::fprintf(notes_, "zel-drive: the menu has no enabled item \"%s\" (it has%s)\n", title.c_str(),
                 items.empty() ? " none" : items.c_str());
  }
  return true;
}

bool ZelDriveRunner::scroll(const Words& w, std::string& error) {
  CGPoint p;
  const auto dy = w.size() > 3 ? ZelParseNumberWord(w[3]) : std::nullopt;
  if (!point(w, 1, p, error)) return false;
  if (!dy) {
    error = "scroll needs X Y DY [DX] [MODS]";
    return false;
  }
  const auto dx = w.size() > 4 ? ZelParseNumberWord(w[4]) : std::nullopt;
  ZelEventModifierFlags flags = 0;
  if (!modifiers(w, dx ? 5 : 4, flags, error)) return false;
  send(ZelEvent::scroll(p, dx.value_or(0), *dy, flags));
  return true;
}

bool ZelDriveRunner::key(const Words& w, std::string& error) {
  ZelEventModifierFlags flags = 0;
  if (w.size() < 2) {
    error = "key needs NAME [MODS]";
    return false;
  }
  if (!modifiers(w, 2, flags, error)) return false;
  const std::optional<ZelEvent> down = ZelDriveKeyEvent(w[1], flags);
  if (!down) {
    error = "unknown key \"" + w[1] + "\"";
    return false;
  }
  pressKey(*down);
  return true;
}

bool ZelDriveRunner::type(const Words& w, std::string& error) {
  if (w.size() < 2) {
    error = "type needs TEXT";
    return false;
  }
  const std::string text = ZelDriveRestOfLine(w, 1);
  for (std::size_t i = 0; i < text.size();) {
    const char32_t c = ZelFirstCodePoint(text.substr(i));
    const std::size_t length = c ? ZelUTF8FromCodePoint(c).size() : 1;
    if (c) pressKey(ZelDriveCharacterEvent(c));
    i += length;
  }
  return true;
}

bool ZelDriveRunner::host(const Words& w, std::string& error) {
  const auto pid = w.size() == 3 ? ZelParseIntegerWord(w[1]) : std::nullopt;
  const auto value = w.size() == 3 ? ZelParseAnyNumberWord(w[2]) : std::nullopt;
  if (!pid || !value) {
    error = "host needs PID VALUE";
    return false;
  }
  session_->unit().setValueFromHost(*pid, static_cast<float>(*value));
  return true;
}

bool ZelDriveRunner::channels(const Words& w, std::string& error) {
  const auto in = w.size() == 3 ? ZelParseCountWord(w[1]) : std::nullopt;
  const auto out = w.size() == 3 ? ZelParseCountWord(w[2]) : std::nullopt;
  if (!in || !out) {
    error = "channels needs IN OUT";
    return false;
  }
  session_->unit().setChannels(*in, *out);
  return true;
}

bool ZelDriveRunner::focus(const Words& w, std::string& error) {
  if (w.size() != 2 || (w[1] != "on" && w[1] != "off")) {
    error = "focus needs on or off";
    return false;
  }
  window_.setKeyWindow(w[1] == "on");
  return true;
}

bool ZelDriveRunner::preset(const Words& w, std::string& error) {
  if (w.size() < 2) {
    error = "preset needs NAME";
    return false;
  }
  if (editor()) editor()->requestPresetNamed(ZelDriveRestOfLine(w, 1));
  return true;
}

bool ZelDriveRunner::saved(const Words& w, std::string& error) {
  if (w.size() < 2) {
    error = "saved needs NAME";
    return false;
  }
  if (editor()) editor()->lastSavedPresetWasNamed(ZelDriveRestOfLine(w, 1));
  return true;
}

bool ZelDriveRunner::clipboard(const Words& w, std::string& error) {
  (void)error;
  host_.memoryPasteboard().setString(ZelDriveRestOfLine(w, 1));
  return true;
}

bool ZelDriveRunner::print(const Words& w, std::string& error) {
  if (w.size() != 2 || w[1] != "clipboard") {
    error = "print needs clipboard";
    return false;
  }
  const std::optional<std::string>& text = host_.memoryPasteboard().content();
  line(text && !text->empty() ? "clipboard " + *text : std::string("clipboard"));
  return true;
}

bool ZelDriveRunner::render(const Words& w, std::string& error) {
  if (w.size() < 2) {
    error = "render needs FILE.png";
    return false;
  }
  const std::string path = ZelDriveRestOfLine(w, 1);
  if (host_.renderToPNG(path)) return true;
  error = "cannot write " + path;
  return false;
}

bool ZelDriveRunner::dump(const Words& w, std::string& error) {
  if (w.size() != 1) {
    error = "dump takes no arguments";
    return false;
  }
  if (editor()) {
    std::fputs(ZelDriveDump(*editor()).c_str(), out_);
    std::fflush(out_);
  }
  return true;
}

// ---- Output.

void ZelDriveRunner::unitReceivedValue(std::int64_t pid, float value) {
  line("update " + std::to_string(pid) + " " + ZelDriveNumber(value));
}

void ZelDriveRunner::unitBeganGesture(std::int64_t pid) { line("begin " + std::to_string(pid)); }

void ZelDriveRunner::unitEndedGesture(std::int64_t pid) { line("end " + std::to_string(pid)); }

void ZelDriveRunner::unitReceivedPresetName(const std::string& name) { line("preset " + name); }

void ZelDriveRunner::unitReceivedInterfacePreference(std::string_view key, double value) {
  line("pref " + std::string(key) + " " + ZelDriveNumber(value));
}

ZEL_NAMESPACE_END
