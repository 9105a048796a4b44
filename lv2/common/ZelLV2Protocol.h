// What every product's LV2 plug-in and its editor agree on, whatever the
// product: the limits of the values they exchange. The product's URIs and
// port layout are generated from its description (cmake/ZelProduct.cmake:
// lv2/common/<ClassPrefix>URIs.h in the product's generated folder, and the
// product's record, dsp/ZelProduct.h).
//
// Port layout (identical for every variant of a product, so one UI serves
// them all): control inputs 0..N-1 in parameter-id order (frequencies in
// hertz; parameter 0, when it is a switch, is the host's bypass), the
// latency output, the atom control input, the atom notify output, then the
// audio inputs and outputs.
//
// Messages on the atom ports are patch:Set and patch:Get objects:
//   UI -> DSP  patch:Set themeToggle (atom:Bool true): the user toggled the
//              theme; the plug-in flips its remembered theme.
//   UI -> DSP  patch:Set presetName (atom:String): a preset was chosen.
//   UI -> DSP  patch:Set zoom (atom:Int, percent 100-200): the user's zoom.
//   UI -> DSP  patch:Get (no property): send everything below.
//   DSP -> UI  patch:Set presetName, theme (atom:Int 0 or 1: the number of
//              toggles modulo 2), zoom, channelsIn, channelsOut (atom:Int).
// The plug-in answers a patch:Get and announces the preset name after its
// state was restored. It keeps presetName, theme and zoom in its saved
// state.
#pragma once

#include <cstdint>

namespace zel_lv2 {

inline constexpr std::int32_t kMinZoomPercent = 100, kMaxZoomPercent = 200;
// The longest preset name kept, in bytes (UTF-8, without the terminator).
inline constexpr std::uint32_t kMaxPresetNameBytes = 255;

}  // namespace zel_lv2
