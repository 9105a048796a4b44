#include "toolkit/atspi/ZelAtspiBridge.h"

#include <dbus/dbus.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

#include "toolkit/core/ZelAccessible.h"
#include "toolkit/core/ZelView.h"
#include "toolkit/core/ZelWindow.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr char kPathPrefix[] = "/org/a11y/atspi/accessible";
constexpr char kRootPath[] = "/org/a11y/atspi/accessible/root";
constexpr char kNullPath[] = "/org/a11y/atspi/null";
constexpr char kCachePath[] = "/org/a11y/atspi/cache";
constexpr char kAccessible[] = "org.a11y.atspi.Accessible";
constexpr char kComponent[] = "org.a11y.atspi.Component";
constexpr char kValue[] = "org.a11y.atspi.Value";
constexpr char kAction[] = "org.a11y.atspi.Action";
constexpr char kApplication[] = "org.a11y.atspi.Application";
constexpr char kProperties[] = "org.freedesktop.DBus.Properties";
constexpr char kIntrospectable[] = "org.freedesktop.DBus.Introspectable";

// AtspiRole numbers.
constexpr std::uint32_t kRoleApplication = 75, kRoleFrame = 23, kRolePanel = 39, kRoleSlider = 51,
                        kRoleToggleButton = 62, kRoleComboBox = 11, kRoleSpinButton = 52, kRolePushButton = 43,
                        kRoleLabel = 29;

std::uint32_t atspiRole(ZelAccessibleRole role) {
  switch (role) {
    case ZelAccessibleRole::Window: return kRoleFrame;
    case ZelAccessibleRole::Panel: return kRolePanel;
    case ZelAccessibleRole::Slider: return kRoleSlider;
    case ZelAccessibleRole::ToggleButton: return kRoleToggleButton;
    case ZelAccessibleRole::ComboBox: return kRoleComboBox;
    case ZelAccessibleRole::SpinButton: return kRoleSpinButton;
    case ZelAccessibleRole::PushButton: return kRolePushButton;
    case ZelAccessibleRole::Label: return kRoleLabel;
  }
  return kRolePanel;
}

const char* roleName(std::uint32_t role) {
  switch (role) {
    case kRoleApplication: return "application";
    case kRoleFrame: return "frame";
    case kRolePanel: return "panel";
    case kRoleSlider: return "slider";
    case kRoleToggleButton: return "toggle button";
    case kRoleComboBox: return "combo box";
    case kRoleSpinButton: return "spin button";
    case kRolePushButton: return "push button";
    case kRoleLabel: return "label";
  }
  return "unknown";
}

// Our state flags as AtspiStateType numbers, with the names that events use.
struct StateName {
  ZelAccessibleState flag;
  std::uint32_t atspi;
  const char* name;
};
constexpr StateName kStates[] = {
    {ZelAccessibleActive, 1, "active"},        {ZelAccessibleChecked, 4, "checked"},
    {ZelAccessibleEnabled, 8, "enabled"},      {ZelAccessibleFocusable, 11, "focusable"},
    {ZelAccessibleFocused, 12, "focused"},     {ZelAccessibleEnabled, 24, "sensitive"},
    {ZelAccessibleShowing, 25, "showing"},     {ZelAccessibleVisible, 30, "visible"},
    {ZelAccessibleCheckable, 41, "checkable"},
};

std::string elementPath(const ZelAccessible& element) {
  return std::string(kPathPrefix) + "/" + std::to_string(element.identifier());
}

// ---- Writing messages.

void appendString(DBusMessageIter* it, const std::string& s) {
  const char* c = s.c_str();
  dbus_message_iter_append_basic(it, DBUS_TYPE_STRING, &c);
}

void appendRef(DBusMessageIter* it, const std::string& name, const std::string& path) {
  DBusMessageIter st;
  dbus_message_iter_open_container(it, DBUS_TYPE_STRUCT, nullptr, &st);
  appendString(&st, name);
  const char* p = path.c_str();
  dbus_message_iter_append_basic(&st, DBUS_TYPE_OBJECT_PATH, &p);
  dbus_message_iter_close_container(it, &st);
}

template <class T>
void appendBasic(DBusMessageIter* it, int type, T value) {
  dbus_message_iter_append_basic(it, type, &value);
}

// A variant of one basic value.
template <class T>
void appendVariant(DBusMessageIter* it, int type, const char* signature, T value) {
  DBusMessageIter v;
  dbus_message_iter_open_container(it, DBUS_TYPE_VARIANT, signature, &v);
  dbus_message_iter_append_basic(&v, type, &value);
  dbus_message_iter_close_container(it, &v);
}

void appendStringVariant(DBusMessageIter* it, const std::string& s) {
  appendVariant(it, DBUS_TYPE_STRING, "s", s.c_str());
}

}  // namespace

ZelAccessible* ZelWindowAccessibilityRoot(ZelWindow& window) {
  std::vector<ZelView*> stack;
  if (ZelView* content = window.contentView()) stack.push_back(content);
  while (!stack.empty()) {
    ZelView* view = stack.back();
    stack.pop_back();
    if (ZelAccessible* element = view->accessibilityElement()) return element;
    const auto& subviews = view->subviews();
    for (auto it = subviews.rbegin(); it != subviews.rend(); ++it) stack.push_back(it->get());
  }
  return nullptr;
}

struct ZelAtspiBridge::Impl {
  ZelWindow& window;
  ZelAtspiOptions options;
  DBusConnection* bus = nullptr;
  std::string busName;                       // our unique name
  std::string desktopName, desktopPath;      // the registry's desktop: our parent
  ZelAccessibleWatcher watcher;
  const ZelAccessible* lastRoot = nullptr;  // compared only, never used
  ZelRunLoop::Handle timer = 0;

  Impl(ZelWindow& w, ZelAtspiOptions o) : window(w), options(std::move(o)) {}

  ZelAccessible* tree() { return ZelWindowAccessibilityRoot(window); }

  // The object a path names: the application (root) or an element.
  struct Target {
    bool application = false;
    ZelAccessible* element = nullptr;
    bool found() const { return application || element; }
  };
  Target target(const char* path) {
    Target t;
    if (!path) return t;
    std::string_view p(path);
    if (p == kRootPath) {
      t.application = true;
      return t;
    }
    const std::string prefix = std::string(kPathPrefix) + "/";
    if (p.substr(0, prefix.size()) != prefix) return t;
    p.remove_prefix(prefix.size());
    if (p.empty() || p.size() > 9) return t;
    int id = 0;
    for (char c : p) {
      if (c < '0' || c > '9') return t;
      id = id * 10 + (c - '0');
    }
    if (ZelAccessible* root = tree()) t.element = root->find(id);
    return t;
  }

  std::string pathOf(const Target& t) const { return t.application ? kRootPath : elementPath(*t.element); }

  std::vector<std::string> interfaces(const Target& t) {
    if (t.application) return {kAccessible, kApplication};
    std::vector<std::string> list{kAccessible, kComponent};
    if (t.element->value()) list.emplace_back(kValue);
    if (!t.element->actionNames().empty()) list.emplace_back(kAction);
    return list;
  }
  bool implements(const Target& t, std::string_view iface) {
    for (const std::string& i : interfaces(t))
      if (i == iface) return true;
    return false;
  }

  std::uint32_t role(const Target& t) { return t.application ? kRoleApplication : atspiRole(t.element->role()); }
  std::string displayName(const Target& t) {
    if (!t.application) return t.element->name();
    if (!options.applicationName.empty()) return options.applicationName;
    ZelAccessible* root = tree();
    return root ? root->name() : std::string();
  }

  void appendParent(DBusMessageIter* it, const Target& t) {
    if (t.application) {
      if (desktopPath.empty()) appendRef(it, busName, kNullPath);
      else appendRef(it, desktopName, desktopPath);
    } else if (t.element->parent()) {
      appendRef(it, busName, elementPath(*t.element->parent()));
    } else {
      appendRef(it, busName, kRootPath);
    }
  }

  std::vector<std::string> childPaths(const Target& t) {
    std::vector<std::string> paths;
    if (t.application) {
      if (ZelAccessible* root = tree()) paths.push_back(elementPath(*root));
    } else {
      for (ZelAccessible* child : t.element->children()) paths.push_back(elementPath(*child));
    }
    return paths;
  }

  // Screen (0) or window (1) coordinates, y down; parent-relative (2) is
  // given as window coordinates.
  CGRect extents(const Target& t, std::uint32_t coordType) {
    if (t.application) return CGRectZero;
    CGRect r = t.element->frameInWindow();
    const double height = window.contentSize().height;
    r.origin.y = height - (r.origin.y + r.size.height);
    const double scale = options.pixelScale ? options.pixelScale() : 1.0;
    r = CGRectMake(r.origin.x * scale, r.origin.y * scale, r.size.width * scale, r.size.height * scale);
    if (coordType == 0 && options.screenOrigin) {
      const CGPoint o = options.screenOrigin();
      r.origin.x += o.x;
      r.origin.y += o.y;
    }
    return r;
  }

  // ---- Properties.

  // Appends the property as a variant; false when there is none such.
  bool appendProperty(DBusMessageIter* it, const Target& t, std::string_view iface, std::string_view prop) {
    if (iface == kAccessible) {
      if (prop == "Name") return appendStringVariant(it, displayName(t)), true;
      if (prop == "Description")
        return appendStringVariant(it, t.application ? std::string() : t.element->description()), true;
      if (prop == "Parent") {
        DBusMessageIter v;
        dbus_message_iter_open_container(it, DBUS_TYPE_VARIANT, "(so)", &v);
        appendParent(&v, t);
        dbus_message_iter_close_container(it, &v);
        return true;
      }
      if (prop == "ChildCount")
        return appendVariant(it, DBUS_TYPE_INT32, "i", static_cast<dbus_int32_t>(childPaths(t).size())), true;
      if (prop == "Locale") return appendStringVariant(it, "en_US"), true;
      if (prop == "AccessibleId")
        return appendStringVariant(it, t.application ? std::string() : std::to_string(t.element->identifier())), true;
      if (prop == "HelpText") return appendStringVariant(it, std::string()), true;
      return false;
    }
    if (iface == kApplication && t.application) {
      if (prop == "ToolkitName") return appendStringVariant(it, options.toolkitName), true;
      if (prop == "Version") return appendStringVariant(it, options.version), true;
      if (prop == "AtspiVersion") return appendStringVariant(it, "2.1"), true;
      if (prop == "Id") return appendVariant(it, DBUS_TYPE_INT32, "i", static_cast<dbus_int32_t>(applicationId)), true;
      return false;
    }
    if (iface == kValue && t.element) {
      auto v = t.element->value();
      if (!v) return false;
      if (prop == "MinimumValue") return appendVariant(it, DBUS_TYPE_DOUBLE, "d", v->minimum), true;
      if (prop == "MaximumValue") return appendVariant(it, DBUS_TYPE_DOUBLE, "d", v->maximum), true;
      if (prop == "MinimumIncrement") return appendVariant(it, DBUS_TYPE_DOUBLE, "d", v->increment), true;
      if (prop == "CurrentValue") return appendVariant(it, DBUS_TYPE_DOUBLE, "d", v->current), true;
      if (prop == "Text") return appendStringVariant(it, t.element->description()), true;
      return false;
    }
    if (iface == kAction && t.element) {
      if (prop == "NActions")
        return appendVariant(it, DBUS_TYPE_INT32, "i", static_cast<dbus_int32_t>(t.element->actionNames().size())), true;
      return false;
    }
    return false;
  }

  std::vector<const char*> propertyNames(std::string_view iface) {
    if (iface == kAccessible) return {"Name", "Description", "Parent", "ChildCount", "Locale", "AccessibleId", "HelpText"};
    if (iface == kApplication) return {"ToolkitName", "Version", "AtspiVersion", "Id"};
    if (iface == kValue) return {"MinimumValue", "MaximumValue", "MinimumIncrement", "CurrentValue", "Text"};
    if (iface == kAction) return {"NActions"};
    return {};
  }

  dbus_int32_t applicationId = 0;

  // ---- Requests.

  DBusHandlerResult reply(DBusMessage* call, DBusMessage* answer) {
    if (!answer) return DBUS_HANDLER_RESULT_NEED_MEMORY;
    dbus_connection_send(bus, answer, nullptr);
    dbus_message_unref(answer);
    (void)call;
    return DBUS_HANDLER_RESULT_HANDLED;
  }
  DBusHandlerResult error(DBusMessage* call, const char* name, const std::string& text) {
    return reply(call, dbus_message_new_error(call, name, text.c_str()));
  }

  DBusHandlerResult handle(DBusMessage* m) {
    if (dbus_message_get_type(m) != DBUS_MESSAGE_TYPE_METHOD_CALL) return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
    const char* path = dbus_message_get_path(m);
    const char* ifaceC = dbus_message_get_interface(m);
    const char* memberC = dbus_message_get_member(m);
    const std::string_view iface = ifaceC ? ifaceC : "";
    const std::string_view member = memberC ? memberC : "";
    if (path && std::strcmp(path, kCachePath) == 0) {
      if (member == "GetItems") {
        DBusMessage* r = dbus_message_new_method_return(m);
        DBusMessageIter it, array;
        dbus_message_iter_init_append(r, &it);
        dbus_message_iter_open_container(&it, DBUS_TYPE_ARRAY, "((so)(so)(so)iiassusau)", &array);
        dbus_message_iter_close_container(&it, &array);
        return reply(m, r);
      }
      return error(m, DBUS_ERROR_UNKNOWN_METHOD, "no such method");
    }
    const Target t = target(path);
    if (!t.found()) return error(m, DBUS_ERROR_UNKNOWN_OBJECT, std::string("no such object: ") + (path ? path : ""));
    if (iface == kProperties) return handleProperties(m, t, member);
    if (iface == kIntrospectable && member == "Introspect") return introspect(m, t);
    if (!iface.empty() && !implements(t, iface) && iface != "org.a11y.atspi.Socket")
      return error(m, DBUS_ERROR_UNKNOWN_INTERFACE, std::string("no interface ") + std::string(iface));
    DBusMessage* r = dbus_message_new_method_return(m);
    if (!r) return DBUS_HANDLER_RESULT_NEED_MEMORY;
    DBusMessageIter it;
    dbus_message_iter_init_append(r, &it);
    DBusError err;
    dbus_error_init(&err);
    bool handled = true;
    if (iface == kAccessible || iface.empty()) {
      handled = accessibleMethod(m, t, member, &it, &err);
    } else if (iface == kComponent) {
      handled = componentMethod(m, t, member, &it, &err);
    } else if (iface == kAction) {
      handled = actionMethod(m, t, member, &it, &err);
    } else if (iface == kApplication) {
      if (member == "GetLocale") appendString(&it, "en_US");
      else if (member == "GetApplicationBusAddress") appendString(&it, "");
      else handled = false;
    } else {
      handled = false;
    }
    if (dbus_error_is_set(&err)) {
      dbus_message_unref(r);
      DBusHandlerResult res = error(m, DBUS_ERROR_INVALID_ARGS, err.message);
      dbus_error_free(&err);
      return res;
    }
    if (!handled) {
      dbus_message_unref(r);
      return error(m, DBUS_ERROR_UNKNOWN_METHOD, std::string("no method ") + std::string(member));
    }
    return reply(m, r);
  }

  bool accessibleMethod(DBusMessage* m, const Target& t, std::string_view member, DBusMessageIter* it, DBusError* err) {
    if (member == "GetChildAtIndex") {
      dbus_int32_t index = 0;
      if (!dbus_message_get_args(m, err, DBUS_TYPE_INT32, &index, DBUS_TYPE_INVALID)) return true;
      const auto paths = childPaths(t);
      if (index >= 0 && static_cast<std::size_t>(index) < paths.size()) appendRef(it, busName, paths[index]);
      else appendRef(it, busName, kNullPath);
    } else if (member == "GetChildren") {
      DBusMessageIter array;
      dbus_message_iter_open_container(it, DBUS_TYPE_ARRAY, "(so)", &array);
      for (const std::string& p : childPaths(t)) appendRef(&array, busName, p);
      dbus_message_iter_close_container(it, &array);
    } else if (member == "GetIndexInParent") {
      appendBasic<dbus_int32_t>(it, DBUS_TYPE_INT32, t.application ? -1 : std::max(0, t.element->indexInParent()));
    } else if (member == "GetRelationSet") {
      DBusMessageIter array;
      dbus_message_iter_open_container(it, DBUS_TYPE_ARRAY, "(ua(so))", &array);
      dbus_message_iter_close_container(it, &array);
    } else if (member == "GetRole") {
      appendBasic<dbus_uint32_t>(it, DBUS_TYPE_UINT32, role(t));
    } else if (member == "GetRoleName" || member == "GetLocalizedRoleName") {
      appendString(it, roleName(role(t)));
    } else if (member == "GetState") {
      dbus_uint32_t words[2] = {0, 0};
      const ZelAccessibleStates s = t.application ? 0 : t.element->states();
      for (const StateName& st : kStates)
        if (s & st.flag) words[st.atspi / 32] |= 1u << (st.atspi % 32);
      DBusMessageIter array;
      dbus_message_iter_open_container(it, DBUS_TYPE_ARRAY, "u", &array);
      for (dbus_uint32_t w : words) dbus_message_iter_append_basic(&array, DBUS_TYPE_UINT32, &w);
      dbus_message_iter_close_container(it, &array);
    } else if (member == "GetAttributes") {
      DBusMessageIter array, entry;
      dbus_message_iter_open_container(it, DBUS_TYPE_ARRAY, "{ss}", &array);
      auto attribute = [&](const std::string& key, const std::string& value) {
        dbus_message_iter_open_container(&array, DBUS_TYPE_DICT_ENTRY, nullptr, &entry);
        appendString(&entry, key);
        appendString(&entry, value);
        dbus_message_iter_close_container(&array, &entry);
      };
      attribute("toolkit", options.toolkitName);
      // A value's text with its unit ("1.00 kHz"): screen readers say it
      // instead of the bare number.
      if (t.element && t.element->value()) attribute("valuetext", t.element->description());
      dbus_message_iter_close_container(it, &array);
    } else if (member == "GetApplication") {
      appendRef(it, busName, kRootPath);
    } else if (member == "GetInterfaces") {
      DBusMessageIter array;
      dbus_message_iter_open_container(it, DBUS_TYPE_ARRAY, "s", &array);
      for (const std::string& i : interfaces(t)) appendString(&array, i);
      dbus_message_iter_close_container(it, &array);
    } else {
      return false;
    }
    return true;
  }

  bool componentMethod(DBusMessage* m, const Target& t, std::string_view member, DBusMessageIter* it, DBusError* err) {
    auto rectArgs = [&](dbus_uint32_t* coordType) {
      return dbus_message_get_args(m, err, DBUS_TYPE_UINT32, coordType, DBUS_TYPE_INVALID);
    };
    if (member == "GetExtents") {
      dbus_uint32_t coordType = 0;
      if (!rectArgs(&coordType)) return true;
      const CGRect r = extents(t, coordType);
      DBusMessageIter st;
      dbus_message_iter_open_container(it, DBUS_TYPE_STRUCT, nullptr, &st);
      appendBasic<dbus_int32_t>(&st, DBUS_TYPE_INT32, static_cast<dbus_int32_t>(std::lround(r.origin.x)));
      appendBasic<dbus_int32_t>(&st, DBUS_TYPE_INT32, static_cast<dbus_int32_t>(std::lround(r.origin.y)));
      appendBasic<dbus_int32_t>(&st, DBUS_TYPE_INT32, static_cast<dbus_int32_t>(std::lround(r.size.width)));
      appendBasic<dbus_int32_t>(&st, DBUS_TYPE_INT32, static_cast<dbus_int32_t>(std::lround(r.size.height)));
      dbus_message_iter_close_container(it, &st);
    } else if (member == "GetPosition") {
      dbus_uint32_t coordType = 0;
      if (!rectArgs(&coordType)) return true;
      const CGRect r = extents(t, coordType);
      appendBasic<dbus_int32_t>(it, DBUS_TYPE_INT32, static_cast<dbus_int32_t>(std::lround(r.origin.x)));
      appendBasic<dbus_int32_t>(it, DBUS_TYPE_INT32, static_cast<dbus_int32_t>(std::lround(r.origin.y)));
    } else if (member == "GetSize") {
      const CGRect r = extents(t, 1);
      appendBasic<dbus_int32_t>(it, DBUS_TYPE_INT32, static_cast<dbus_int32_t>(std::lround(r.size.width)));
      appendBasic<dbus_int32_t>(it, DBUS_TYPE_INT32, static_cast<dbus_int32_t>(std::lround(r.size.height)));
    } else if (member == "GetLayer") {
      appendBasic<dbus_uint32_t>(it, DBUS_TYPE_UINT32, t.element && !t.element->parent() ? 7 : 3);
    } else if (member == "GetMDIZOrder") {
      appendBasic<dbus_int16_t>(it, DBUS_TYPE_INT16, 0);
    } else if (member == "GetAlpha") {
      appendBasic<double>(it, DBUS_TYPE_DOUBLE, 1.0);
    } else if (member == "GrabFocus") {
      appendBasic<dbus_bool_t>(it, DBUS_TYPE_BOOLEAN, t.element && t.element->grabFocus());
    } else if (member == "Contains") {
      dbus_int32_t x = 0, y = 0;
      dbus_uint32_t coordType = 0;
      if (!dbus_message_get_args(m, err, DBUS_TYPE_INT32, &x, DBUS_TYPE_INT32, &y, DBUS_TYPE_UINT32, &coordType,
                                 DBUS_TYPE_INVALID))
        return true;
      const CGRect r = extents(t, coordType);
      appendBasic<dbus_bool_t>(it, DBUS_TYPE_BOOLEAN, CGRectContainsPoint(r, CGPointMake(x, y)));
    } else if (member == "GetAccessibleAtPoint") {
      dbus_int32_t x = 0, y = 0;
      dbus_uint32_t coordType = 0;
      if (!dbus_message_get_args(m, err, DBUS_TYPE_INT32, &x, DBUS_TYPE_INT32, &y, DBUS_TYPE_UINT32, &coordType,
                                 DBUS_TYPE_INVALID))
        return true;
      std::string found = kNullPath;
      if (t.element) {
        for (ZelAccessible* child : t.element->children()) {
          if (CGRectContainsPoint(extents(Target{false, child}, coordType), CGPointMake(x, y))) found = elementPath(*child);
        }
      }
      appendRef(it, busName, found);
    } else {
      return false;
    }
    return true;
  }

  bool actionMethod(DBusMessage* m, const Target& t, std::string_view member, DBusMessageIter* it, DBusError* err) {
    const std::vector<std::string> names = t.element ? t.element->actionNames() : std::vector<std::string>{};
    if (member == "GetActions") {
      DBusMessageIter array, st;
      dbus_message_iter_open_container(it, DBUS_TYPE_ARRAY, "(sss)", &array);
      for (const std::string& n : names) {
        dbus_message_iter_open_container(&array, DBUS_TYPE_STRUCT, nullptr, &st);
        appendString(&st, n);
        appendString(&st, n);
        appendString(&st, "");
        dbus_message_iter_close_container(&array, &st);
      }
      dbus_message_iter_close_container(it, &array);
      return true;
    }
    dbus_int32_t index = 0;
    if (member != "GetName" && member != "GetLocalizedName" && member != "GetDescription" && member != "GetKeyBinding" &&
        member != "DoAction")
      return false;
    if (!dbus_message_get_args(m, err, DBUS_TYPE_INT32, &index, DBUS_TYPE_INVALID)) return true;
    const bool valid = index >= 0 && static_cast<std::size_t>(index) < names.size();
    if (member == "DoAction") {
      appendBasic<dbus_bool_t>(it, DBUS_TYPE_BOOLEAN, valid && t.element->performAction(names[index]));
    } else if (member == "GetKeyBinding") {
      appendString(it, "");
    } else {
      appendString(it, valid ? names[index] : std::string());
    }
    return true;
  }

  DBusHandlerResult handleProperties(DBusMessage* m, const Target& t, std::string_view member) {
    DBusError err;
    dbus_error_init(&err);
    const char* ifaceC = nullptr;
    const char* propC = nullptr;
    if (member == "Get") {
      if (!dbus_message_get_args(m, &err, DBUS_TYPE_STRING, &ifaceC, DBUS_TYPE_STRING, &propC, DBUS_TYPE_INVALID)) {
        DBusHandlerResult res = error(m, DBUS_ERROR_INVALID_ARGS, err.message);
        dbus_error_free(&err);
        return res;
      }
      DBusMessage* r = dbus_message_new_method_return(m);
      DBusMessageIter it;
      dbus_message_iter_init_append(r, &it);
      if (!implements(t, ifaceC) || !appendProperty(&it, t, ifaceC, propC)) {
        dbus_message_unref(r);
        return error(m, DBUS_ERROR_UNKNOWN_PROPERTY, std::string("no property ") + ifaceC + "." + propC);
      }
      return reply(m, r);
    }
    if (member == "GetAll") {
      if (!dbus_message_get_args(m, &err, DBUS_TYPE_STRING, &ifaceC, DBUS_TYPE_INVALID)) {
        DBusHandlerResult res = error(m, DBUS_ERROR_INVALID_ARGS, err.message);
        dbus_error_free(&err);
        return res;
      }
      DBusMessage* r = dbus_message_new_method_return(m);
      DBusMessageIter it, array, entry;
      dbus_message_iter_init_append(r, &it);
      dbus_message_iter_open_container(&it, DBUS_TYPE_ARRAY, "{sv}", &array);
      if (implements(t, ifaceC)) {
        for (const char* prop : propertyNames(ifaceC)) {
          dbus_message_iter_open_container(&array, DBUS_TYPE_DICT_ENTRY, nullptr, &entry);
          appendString(&entry, prop);
          if (!appendProperty(&entry, t, ifaceC, prop)) appendStringVariant(&entry, "");
          dbus_message_iter_close_container(&array, &entry);
        }
      }
      dbus_message_iter_close_container(&it, &array);
      return reply(m, r);
    }
    if (member == "Set") {
      DBusMessageIter it, v;
      if (!dbus_message_iter_init(m, &it) || dbus_message_iter_get_arg_type(&it) != DBUS_TYPE_STRING)
        return error(m, DBUS_ERROR_INVALID_ARGS, "Set takes (ssv)");
      dbus_message_iter_get_basic(&it, &ifaceC);
      dbus_message_iter_next(&it);
      if (dbus_message_iter_get_arg_type(&it) != DBUS_TYPE_STRING) return error(m, DBUS_ERROR_INVALID_ARGS, "Set takes (ssv)");
      dbus_message_iter_get_basic(&it, &propC);
      dbus_message_iter_next(&it);
      if (dbus_message_iter_get_arg_type(&it) != DBUS_TYPE_VARIANT) return error(m, DBUS_ERROR_INVALID_ARGS, "Set takes (ssv)");
      dbus_message_iter_recurse(&it, &v);
      const std::string_view iface = ifaceC, prop = propC;
      if (iface == kValue && prop == "CurrentValue" && t.element && t.element->value()) {
        double value = NAN;
        const int type = dbus_message_iter_get_arg_type(&v);
        if (type == DBUS_TYPE_DOUBLE) {
          dbus_message_iter_get_basic(&v, &value);
        } else if (type == DBUS_TYPE_INT32) {
          dbus_int32_t i = 0;
          dbus_message_iter_get_basic(&v, &i);
          value = i;
        } else {
          return error(m, DBUS_ERROR_INVALID_ARGS, "CurrentValue is a number");
        }
        if (!std::isfinite(value) || !t.element->setCurrentValue(value))
          return error(m, DBUS_ERROR_FAILED, "the control cannot be set now");
        return reply(m, dbus_message_new_method_return(m));
      }
      if (iface == kApplication && prop == "Id" && t.application && dbus_message_iter_get_arg_type(&v) == DBUS_TYPE_INT32) {
        dbus_message_iter_get_basic(&v, &applicationId);
        return reply(m, dbus_message_new_method_return(m));
      }
      return error(m, DBUS_ERROR_PROPERTY_READ_ONLY, std::string(iface) + "." + std::string(prop) + " cannot be set");
    }
    return error(m, DBUS_ERROR_UNKNOWN_METHOD, "no such method");
  }

  DBusHandlerResult introspect(DBusMessage* m, const Target& t) {
    std::string xml = "<!DOCTYPE node PUBLIC \"-//freedesktop//DTD D-BUS Object Introspection 1.0//EN\" "
                      "\"http://www.freedesktop.org/standards/dbus/1.0/introspect.dtd\">\n<node>\n";
    for (const std::string& i : interfaces(t)) xml += "  <interface name=\"" + i + "\"/>\n";
    xml += "  <interface name=\"org.freedesktop.DBus.Properties\"/>\n</node>\n";
    DBusMessage* r = dbus_message_new_method_return(m);
    DBusMessageIter it;
    dbus_message_iter_init_append(r, &it);
    appendString(&it, xml);
    return reply(m, r);
  }

  // ---- Events.

  void emit(const std::string& path, const char* iface, const char* member, const std::string& detail, int detail1,
            const std::function<void(DBusMessageIter*)>& anyData) {
    DBusMessage* s = dbus_message_new_signal(path.c_str(), iface, member);
    if (!s) return;
    DBusMessageIter it, props;
    dbus_message_iter_init_append(s, &it);
    appendString(&it, detail);
    appendBasic<dbus_int32_t>(&it, DBUS_TYPE_INT32, detail1);
    appendBasic<dbus_int32_t>(&it, DBUS_TYPE_INT32, 0);
    anyData(&it);
    dbus_message_iter_open_container(&it, DBUS_TYPE_ARRAY, "{sv}", &props);
    dbus_message_iter_close_container(&it, &props);
    dbus_connection_send(bus, s, nullptr);
    dbus_message_unref(s);
  }

  void send(ZelAccessible& root, const ZelAccessibleEvent& e) {
    ZelAccessible* element = root.find(e.identifier);
    if (!element) return;
    const std::string path = elementPath(*element);
    auto zero = [](DBusMessageIter* it) { appendVariant(it, DBUS_TYPE_INT32, "i", dbus_int32_t{0}); };
    using Kind = ZelAccessibleEvent::Kind;
    switch (e.kind) {
      case Kind::State:
        for (const StateName& st : kStates)
          if (st.flag == e.state)
            emit(path, "org.a11y.atspi.Event.Object", "StateChanged", st.name, e.on ? 1 : 0, zero);
        // A window that becomes the active one is where screen readers look.
        if (e.state == ZelAccessibleActive && element->role() == ZelAccessibleRole::Window)
          emit(path, "org.a11y.atspi.Event.Window", e.on ? "Activate" : "Deactivate", "", 0,
               [](DBusMessageIter* it) { appendStringVariant(it, ""); });
        break;
      case Kind::Focus:
        emit(path, "org.a11y.atspi.Event.Focus", "Focus", "", 0, zero);
        break;
      case Kind::Value:
        emit(path, "org.a11y.atspi.Event.Object", "PropertyChange", "accessible-value", 0,
             [&](DBusMessageIter* it) { appendVariant(it, DBUS_TYPE_DOUBLE, "d", e.value); });
        break;
      case Kind::Name:
        emit(path, "org.a11y.atspi.Event.Object", "PropertyChange", "accessible-name", 0,
             [&](DBusMessageIter* it) { appendStringVariant(it, element->name()); });
        break;
      case Kind::Description:
        emit(path, "org.a11y.atspi.Event.Object", "PropertyChange", "accessible-description", 0,
             [&](DBusMessageIter* it) { appendStringVariant(it, element->description()); });
        break;
    }
  }

  static DBusHandlerResult onMessage(DBusConnection*, DBusMessage* m, void* data) {
    return static_cast<Impl*>(data)->handle(m);
  }
};

namespace {

bool envSet(const char* name) {
  const char* v = std::getenv(name);
  return v && *v && std::strcmp(v, "0") != 0;
}

// Whether the desktop asks for accessibility: the session bus's
// org.a11y.Status IsEnabled, which screen readers set.
bool accessibilityEnabled(DBusConnection* session) {
  DBusMessage* call =
      dbus_message_new_method_call("org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties", "Get");
  const char* interface = "org.a11y.Status";
  const char* property = "IsEnabled";
  dbus_message_append_args(call, DBUS_TYPE_STRING, &interface, DBUS_TYPE_STRING, &property, DBUS_TYPE_INVALID);
  DBusError err;
  dbus_error_init(&err);
  DBusMessage* reply = dbus_connection_send_with_reply_and_block(session, call, 2000, &err);
  dbus_message_unref(call);
  dbus_error_free(&err);
  dbus_bool_t enabled = false;
  if (reply) {
    DBusMessageIter it, variant;
    if (dbus_message_iter_init(reply, &it) && dbus_message_iter_get_arg_type(&it) == DBUS_TYPE_VARIANT) {
      dbus_message_iter_recurse(&it, &variant);
      if (dbus_message_iter_get_arg_type(&variant) == DBUS_TYPE_BOOLEAN) dbus_message_iter_get_basic(&variant, &enabled);
    }
    dbus_message_unref(reply);
  }
  return enabled;
}

// The accessibility bus's address: AT_SPI_BUS_ADDRESS, or what the session
// bus's "org.a11y.Bus" says when it runs and accessibility is enabled.
// Empty when there is none.
std::string accessibilityBusAddress(std::string& why) {
  if (const char* a = std::getenv("AT_SPI_BUS_ADDRESS"); a && *a) return a;
  if (!std::getenv("DBUS_SESSION_BUS_ADDRESS")) {
    why = "no session bus (DBUS_SESSION_BUS_ADDRESS is not set)";
    return {};
  }
  DBusError err;
  dbus_error_init(&err);
  DBusConnection* session = dbus_bus_get_private(DBUS_BUS_SESSION, &err);
  if (!session) {
    why = std::string("no session bus: ") + (err.message ? err.message : "?");
    dbus_error_free(&err);
    return {};
  }
  dbus_connection_set_exit_on_disconnect(session, false);
  std::string address;
  if (!dbus_bus_name_has_owner(session, "org.a11y.Bus", &err)) {
    why = "no accessibility bus on the session bus";
  } else if (!accessibilityEnabled(session)) {
    // Desktops run the bus always; a screen reader (or the user's setting)
    // turns this on, and only then is the editor worth publishing.
    why = "accessibility is not enabled (org.a11y.Status IsEnabled is false)";
  } else {
    DBusMessage* call = dbus_message_new_method_call("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress");
    DBusMessage* r = dbus_connection_send_with_reply_and_block(session, call, 2000, &err);
    dbus_message_unref(call);
    const char* a = nullptr;
    if (r && dbus_message_get_args(r, &err, DBUS_TYPE_STRING, &a, DBUS_TYPE_INVALID) && a) address = a;
    if (r) dbus_message_unref(r);
    if (address.empty()) why = std::string("the accessibility bus gave no address: ") + (err.message ? err.message : "");
  }
  dbus_error_free(&err);
  dbus_connection_close(session);
  dbus_connection_unref(session);
  return address;
}

}  // namespace

ZelAtspiBridge::ZelAtspiBridge(ZelWindow& window, ZelAtspiOptions options)
    : impl_(std::make_unique<Impl>(window, std::move(options))) {}

std::unique_ptr<ZelAtspiBridge> ZelAtspiBridge::connect(ZelWindow& window, ZelAtspiOptions options, std::string* whyNot) {
  std::string why;
  auto fail = [&](std::string reason) -> std::unique_ptr<ZelAtspiBridge> {
    if (whyNot) *whyNot = std::move(reason);
    return nullptr;
  };
  if (envSet("NO_AT_BRIDGE") || envSet("ZEL_NO_ACCESSIBILITY")) return fail("accessibility switched off by the environment");
  const std::string address = accessibilityBusAddress(why);
  if (address.empty()) return fail(why);

  DBusError err;
  dbus_error_init(&err);
  DBusConnection* bus = dbus_connection_open_private(address.c_str(), &err);
  if (!bus || !dbus_bus_register(bus, &err)) {
    std::string reason = std::string("cannot join the accessibility bus: ") + (err.message ? err.message : "?");
    dbus_error_free(&err);
    if (bus) {
      dbus_connection_close(bus);
      dbus_connection_unref(bus);
    }
    return fail(reason);
  }
  dbus_connection_set_exit_on_disconnect(bus, false);
  std::unique_ptr<ZelAtspiBridge> bridge(new ZelAtspiBridge(window, std::move(options)));
  Impl& impl = *bridge->impl_;
  impl.bus = bus;
  impl.busName = dbus_bus_get_unique_name(bus);
  bridge->uniqueName_ = impl.busName;
  static const DBusObjectPathVTable vtable = {nullptr, &Impl::onMessage, nullptr, nullptr, nullptr, nullptr};
  dbus_connection_register_fallback(bus, kPathPrefix, &vtable, &impl);
  dbus_connection_register_object_path(bus, kCachePath, &vtable, &impl);

  // Join the desktop: the registry embeds our root and answers its own.
  DBusMessage* call = dbus_message_new_method_call("org.a11y.atspi.Registry", kRootPath, "org.a11y.atspi.Socket", "Embed");
  DBusMessageIter it;
  dbus_message_iter_init_append(call, &it);
  appendRef(&it, impl.busName, kRootPath);
  DBusMessage* r = dbus_connection_send_with_reply_and_block(bus, call, 3000, &err);
  dbus_message_unref(call);
  if (!r) {
    std::string reason = std::string("the accessibility registry did not answer: ") + (err.message ? err.message : "?");
    dbus_error_free(&err);
    return fail(reason);  // the bridge's destructor closes the connection
  }
  DBusMessageIter ri, st;
  if (dbus_message_iter_init(r, &ri) && dbus_message_iter_get_arg_type(&ri) == DBUS_TYPE_STRUCT) {
    dbus_message_iter_recurse(&ri, &st);
    const char* s = nullptr;
    if (dbus_message_iter_get_arg_type(&st) == DBUS_TYPE_STRING) {
      dbus_message_iter_get_basic(&st, &s);
      impl.desktopName = s ? s : "";
      dbus_message_iter_next(&st);
      if (dbus_message_iter_get_arg_type(&st) == DBUS_TYPE_OBJECT_PATH) {
        dbus_message_iter_get_basic(&st, &s);
        impl.desktopPath = s ? s : "";
      }
    }
  }
  dbus_message_unref(r);
  bridge->look();
  bridge->impl_->timer = window.runLoop().schedule(kLookInterval, [b = bridge.get()] { b->tick(); });
  return bridge;
}

ZelAtspiBridge::~ZelAtspiBridge() {
  if (!impl_) return;
  if (impl_->timer) impl_->window.runLoop().cancel(impl_->timer);
  if (impl_->bus) {
    dbus_connection_unregister_object_path(impl_->bus, kPathPrefix);
    dbus_connection_unregister_object_path(impl_->bus, kCachePath);
    dbus_connection_flush(impl_->bus);
    dbus_connection_close(impl_->bus);
    dbus_connection_unref(impl_->bus);
  }
}

int ZelAtspiBridge::fileDescriptor() const {
  int fd = -1;
  if (impl_->bus && !dbus_connection_get_unix_fd(impl_->bus, &fd)) fd = -1;
  return fd;
}

bool ZelAtspiBridge::isConnected() const { return impl_->bus && dbus_connection_get_is_connected(impl_->bus); }

void ZelAtspiBridge::dispatch() {
  if (!isConnected()) return;
  dbus_connection_read_write(impl_->bus, 0);
  while (dbus_connection_dispatch(impl_->bus) == DBUS_DISPATCH_DATA_REMAINS) {
  }
  dbus_connection_read_write(impl_->bus, 0);
}

void ZelAtspiBridge::look() {
  if (!isConnected()) return;
  ZelAccessible* root = impl_->tree();
  // A new editor (a reloaded description) is a new tree under the same
  // application: say so, so that readers drop what they kept of the old.
  if (root != impl_->lastRoot && impl_->lastRoot) {
    const std::string path = root ? elementPath(*root) : std::string(kNullPath);
    impl_->emit(kRootPath, "org.a11y.atspi.Event.Object", "ChildrenChanged", root ? "add" : "remove", 0,
                [&](DBusMessageIter* it) {
                  DBusMessageIter v;
                  dbus_message_iter_open_container(it, DBUS_TYPE_VARIANT, "(so)", &v);
                  appendRef(&v, impl_->busName, path);
                  dbus_message_iter_close_container(it, &v);
                });
  }
  impl_->lastRoot = root;
  for (const ZelAccessibleEvent& e : impl_->watcher.look(root)) impl_->send(*root, e);
}

void ZelAtspiBridge::tick() {
  impl_->timer = 0;
  if (!isConnected()) return;  // the bus went away: stay quiet from now on
  dispatch();
  look();
  dispatch();
  impl_->timer = impl_->window.runLoop().schedule(kLookInterval, [this] { tick(); });
}

ZEL_NAMESPACE_END
