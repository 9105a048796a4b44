#include "lv2/ui/ZelLV2Connection.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include <lv2/atom/forge.h>
#include <lv2/patch/patch.h>

#include "host/ZelHostView.h"
#include "lv2/common/ZelLV2Protocol.h"

ZEL_NAMESPACE_BEGIN

namespace {

using namespace zel_lv2;

bool isFrequency(std::uint32_t pid) {
  const ZelUnitParameter* p = ZelCurrentProduct().parameter(int(pid));
  return p && p->kind == ZelParameterKind::Frequency;
}

}  // namespace

float ZelLV2Connection::unitValueFromPort(std::uint32_t pid, float hz) {
  if (!isFrequency(pid)) return hz;
  return ZelHostView::positionFromHertz(std::max(hz, 1e-6f));
}

float ZelLV2Connection::portValueFromUnit(std::uint32_t pid, float x) {
  if (!isFrequency(pid)) return x;
  return ZelHostView::hertzFromPosition(x);
}

ZelLV2Connection::ZelLV2Connection(LV2UI_Write_Function write, LV2UI_Controller controller, LV2_URID_Map* map,
                                   const LV2UI_Touch* touch, std::uint32_t channels)
    : write_(write),
      controller_(controller),
      touch_(touch),
      ports_(ZelCurrentProduct().lv2),
      values_(ports_.controlPortCount),
      meters_(ports_.meterPortCount),
      channelsIn_(channels),
      channelsOut_(channels) {
  auto m = [map](const char* uri) { return map->map(map->handle, uri); };
  urids_ = {m(LV2_ATOM__eventTransfer), m(LV2_ATOM__Object), m(LV2_ATOM__URID),  m(LV2_ATOM__String),
            m(LV2_ATOM__Int),           m(LV2_ATOM__Bool),   m(zel_lv2::kSetMessage), m(zel_lv2::kGetMessage),
            m(LV2_PATCH__property),     m(LV2_PATCH__value), m(ports_.presetNameKey),
            m(ports_.themeKey),         m(ports_.themeToggleKey), m(ports_.zoomKey),
            m(ports_.channelsInKey),    m(ports_.channelsOutKey)};
  lv2_atom_forge_init(&forge_, map);
  for (const ZelUnitParameter& p : ZelCurrentProduct().parameters)
    if (std::size_t(p.pid) < values_.size()) values_[std::size_t(p.pid)] = unitValueFromPort(std::uint32_t(p.pid), p.initial);
}

// ---- From the host.

void ZelLV2Connection::portEvent(std::uint32_t port, std::uint32_t size, std::uint32_t format, const void* buffer) {
  if (!buffer) return;
  if (port < values_.size()) {
    if (format != 0 || size != sizeof(float)) return;
    float hz;
    std::memcpy(&hz, buffer, sizeof hz);
    if (!std::isfinite(hz)) return;
    values_[port] = unitValueFromPort(port, hz);
    tell(nullptr, port);
  } else if (port >= ports_.firstMeterPort && port - ports_.firstMeterPort < meters_.count()) {
    if (format != 0 || size != sizeof(float)) return;
    float level;
    std::memcpy(&level, buffer, sizeof level);
    meters_.set(port - ports_.firstMeterPort, level);
  } else if (port == ports_.notifyAtomPort && format == urids_.atomEventTransfer) {
    receiveAtom(static_cast<const LV2_Atom*>(buffer), size);
  }
}

void ZelLV2Connection::receiveAtom(const LV2_Atom* atom, std::uint32_t size) {
  if (size < sizeof(LV2_Atom) || atom->size > size - sizeof(LV2_Atom)) return;
  if (atom->type != urids_.atomObject || atom->size < sizeof(LV2_Atom_Object_Body)) return;
  const auto* object = reinterpret_cast<const LV2_Atom_Object*>(atom);
  if (object->body.otype != urids_.set) return;
  // Walk the properties with every size checked against the object's end.
  const auto* begin = reinterpret_cast<const std::uint8_t*>(&object->body);
  const std::uint8_t* end = begin + atom->size;
  const std::uint8_t* p = begin + sizeof(LV2_Atom_Object_Body);
  LV2_URID property = 0;
  const LV2_Atom* value = nullptr;
  while (end - p >= static_cast<std::ptrdiff_t>(sizeof(LV2_Atom_Property_Body))) {
    const auto* prop = reinterpret_cast<const LV2_Atom_Property_Body*>(p);
    const std::size_t valueSize = prop->value.size;
    if (valueSize > static_cast<std::size_t>(end - p) - sizeof(LV2_Atom_Property_Body)) return;
    if (prop->key == urids_.patchProperty && prop->value.type == urids_.atomURID && valueSize == sizeof(LV2_URID))
      property = reinterpret_cast<const LV2_Atom_URID*>(&prop->value)->body;
    else if (prop->key == urids_.patchValue)
      value = &prop->value;
    p += sizeof(LV2_Atom_Property_Body) + lv2_atom_pad_size(static_cast<std::uint32_t>(valueSize));
  }
  if (property && value) receiveProperty(property, value);
}

void ZelLV2Connection::receiveProperty(LV2_URID key, const LV2_Atom* value) {
  const auto integer = [&](std::int32_t& out) {
    if ((value->type != urids_.atomInt && value->type != urids_.atomBool) || value->size != sizeof(std::int32_t))
      return false;
    out = reinterpret_cast<const LV2_Atom_Int*>(value)->body;
    return true;
  };
  std::int32_t n = 0;
  if (key == urids_.presetName && value->type == urids_.atomString) {
    const char* text = static_cast<const char*>(LV2_ATOM_BODY_CONST(value));
    const std::size_t length = strnlen(text, value->size);
    if (length == value->size || length > kMaxPresetNameBytes) return;  // unterminated or too long
    presetName_.assign(text, length);
    if (observer_.presetNameChanged) observer_.presetNameChanged(presetName_);
  } else if (key == urids_.theme && integer(n)) {
    if (observer_.themeReported) observer_.themeReported(n != 0);
  } else if (key == urids_.zoom && integer(n) && n >= kMinZoomPercent && n <= kMaxZoomPercent) {
    zoom_ = n / 100.0;
    if (observer_.zoomReported) observer_.zoomReported(zoom_);
  } else if (key == urids_.channelsIn && integer(n) && n >= 0 && n <= 64) {
    channelsIn_ = static_cast<std::uint32_t>(n);
  } else if (key == urids_.channelsOut && integer(n) && n >= 0 && n <= 64) {
    channelsOut_ = static_cast<std::uint32_t>(n);
  }
}

// ---- To the host.

void ZelLV2Connection::writeAtom(const void* atom, std::uint32_t size) {
  write_(controller_, ports_.controlAtomPort, size, urids_.atomEventTransfer, atom);
}

template <typename Forge>
void ZelLV2Connection::sendSetWith(LV2_URID key, std::size_t valueBytes, Forge forgeValue) {
  std::vector<std::uint8_t> buffer(256 + valueBytes);
  LV2_Atom_Forge forge = forge_;
  lv2_atom_forge_set_buffer(&forge, buffer.data(), buffer.size());
  LV2_Atom_Forge_Frame frame;
  auto* set = reinterpret_cast<LV2_Atom*>(lv2_atom_forge_object(&forge, &frame, 0, urids_.set));
  lv2_atom_forge_key(&forge, urids_.patchProperty);
  lv2_atom_forge_urid(&forge, key);
  lv2_atom_forge_key(&forge, urids_.patchValue);
  forgeValue(forge);
  lv2_atom_forge_pop(&forge, &frame);
  if (set) writeAtom(set, lv2_atom_total_size(set));
}

void ZelLV2Connection::sendSet(LV2_URID key, const std::string& value) {
  sendSetWith(key, value.size(), [&](LV2_Atom_Forge& f) {
    lv2_atom_forge_string(&f, value.c_str(), static_cast<std::uint32_t>(value.size()));
  });
}

void ZelLV2Connection::sendSet(LV2_URID key, bool value) {
  sendSetWith(key, 0, [&](LV2_Atom_Forge& f) { lv2_atom_forge_bool(&f, value); });
}

void ZelLV2Connection::sendSet(LV2_URID key, std::int32_t value) {
  sendSetWith(key, 0, [&](LV2_Atom_Forge& f) { lv2_atom_forge_int(&f, value); });
}

void ZelLV2Connection::sendGet() {
  struct {
    LV2_Atom_Object object;
  } get{};
  get.object.atom.size = sizeof(LV2_Atom_Object_Body);
  get.object.atom.type = urids_.atomObject;
  get.object.body.otype = urids_.get;
  writeAtom(&get, sizeof get);
}

void ZelLV2Connection::requestState() { sendGet(); }

void ZelLV2Connection::tell(const void* sender, std::uint32_t pid) { listeners_.tell(sender, pid, values_[pid]); }

// ---- ZelUnitConnection.

ZelUnitStatus ZelLV2Connection::getParameter(std::uint32_t pid, float& value) {
  if (pid >= values_.size()) return kZelUnitInvalidParameter;
  value = values_[pid];
  return kZelUnitNoErr;
}

ZelUnitStatus ZelLV2Connection::setParameter(std::uint32_t pid, float value, const void* sender) {
  if (pid >= values_.size()) return kZelUnitInvalidParameter;
  if (!std::isfinite(value)) return kZelUnitInvalidParameter;
  const bool changed = value != values_[pid];
  values_[pid] = value;
  if (changed) {
    const ZelUnitParameter& p = ZelCurrentProduct().parameters[pid];
    const float port = std::clamp(portValueFromUnit(pid, value), p.minimum, p.maximum);
    write_(controller_, pid, sizeof(float), 0, &port);
  }
  tell(sender, pid);
  return kZelUnitNoErr;
}

ZelUnitStatus ZelLV2Connection::notifyListeners(std::uint32_t pid, const void* sender) {
  if (pid >= values_.size()) return kZelUnitInvalidParameter;
  tell(sender, pid);
  return kZelUnitNoErr;
}

ZelUnitStatus ZelLV2Connection::postGesture(ZelUnitGesture gesture, std::uint32_t pid, const void* sender) {
  (void)sender;
  if (pid >= values_.size()) return kZelUnitInvalidParameter;
  if (touch_ && touch_->touch) touch_->touch(touch_->handle, pid, gesture == ZelUnitGesture::Begin);
  return kZelUnitNoErr;
}

ZelUnitStatus ZelLV2Connection::setInterfacePreference(bool flag) {
  sendSet(urids_.themeToggle, flag);
  return kZelUnitNoErr;
}

ZelUnitStatus ZelLV2Connection::getPresetName(std::string& name) {
  name = presetName_;
  return kZelUnitNoErr;
}

ZelUnitStatus ZelLV2Connection::setPresetName(const std::string& name) {
  // The plug-in keeps a bounded name: cut on a character boundary.
  std::string kept = name.substr(0, kMaxPresetNameBytes);
  while (!kept.empty() && kept.size() < name.size() && (static_cast<unsigned char>(name[kept.size()]) & 0xC0) == 0x80)
    kept.pop_back();
  presetName_ = kept;
  sendSet(urids_.presetName, kept);
  return kZelUnitNoErr;
}

ZelUnitStatus ZelLV2Connection::getChannelCount(ZelUnitProperty which, std::uint32_t& count) {
  return ZelUnitChannelCount(which, channelsIn_, channelsOut_, count);
}

ZelUnitStatus ZelLV2Connection::getMetering(ZelUnitMetering& metering) {
  if (meters_.count() == 0) {
    metering = {};
    return kZelUnitInvalidProperty;  // nothing to meter
  }
  metering = meters_.metering();
  return kZelUnitNoErr;
}

ZelUnitStatus ZelLV2Connection::getZoom(double& zoom) {
  zoom = zoom_;
  return kZelUnitNoErr;
}

ZelUnitStatus ZelLV2Connection::setZoom(double zoom) {
  if (!std::isfinite(zoom)) return kZelUnitInvalidParameter;
  const auto percent = static_cast<std::int32_t>(
      std::clamp(std::lround(zoom * 100), static_cast<long>(kMinZoomPercent), static_cast<long>(kMaxZoomPercent)));
  zoom_ = percent / 100.0;
  sendSet(urids_.zoom, percent);
  return kZelUnitNoErr;
}

ZEL_NAMESPACE_END
