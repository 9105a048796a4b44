// What the plug-in and its editor agree on: URIs, port indices and the patch
// properties that carry the private state between them. Both sides of the
// LV2 bundle include this header and nothing else of each other.
//
// Port layout (identical for the mono and stereo plug-ins, so one UI serves
// both): control inputs 0-11 in parameter-id order (frequencies in hertz,
// Power is the host's bypass), the latency output, the atom control input,
// the atom notify output, then the audio inputs and outputs.
//
// Messages on the atom ports are objects of our own types kSetMessage and
// kGetMessage, laid out as patch:Set and patch:Get (patch:property,
// patch:value). Hosts look into patch:Set messages for the properties they
// know and warn about the others; these they pass on untouched.
//   UI -> DSP  Set kThemeToggle (atom:Bool true): the user toggled the
//              theme; the plug-in flips its remembered theme.
//   UI -> DSP  Set kPresetName (atom:String): a preset was chosen.
//   UI -> DSP  Set kZoom (atom:Int, percent 100-200): the user's zoom.
//   UI -> DSP  Get (no property): send everything below.
//   DSP -> UI  Set kPresetName, kTheme (atom:Int 0 or 1: the number
//              of toggles modulo 2), kZoom, kChannelsIn, kChannelsOut
//              (atom:Int).
// The plug-in answers a Get and announces the preset name after its state
// was restored. It keeps kPresetName, kTheme and kZoom in its saved state.
// Both atom ports are optional, and so is urid:map: without them the
// plug-in runs on its control ports alone.
#pragma once

#include <cstdint>

namespace zel_vantry_lv2 {

inline constexpr char kPluginURIPrefix[] = "https://www.zel-audio.example/plugins/vantry";
inline constexpr char kStereoURI[] = "https://www.zel-audio.example/plugins/vantry#stereo";
inline constexpr char kMonoURI[] = "https://www.zel-audio.example/plugins/vantry#mono";
inline constexpr char kUIURI[] = "https://www.zel-audio.example/plugins/vantry#ui";

inline constexpr char kSetMessage[] = "https://www.zel-audio.example/ns/editor#Set";
inline constexpr char kGetMessage[] = "https://www.zel-audio.example/ns/editor#Get";

inline constexpr char kPresetName[] = "https://www.zel-audio.example/plugins/vantry#presetName";
inline constexpr char kTheme[] = "https://www.zel-audio.example/plugins/vantry#theme";
inline constexpr char kThemeToggle[] = "https://www.zel-audio.example/plugins/vantry#themeToggle";
inline constexpr char kZoom[] = "https://www.zel-audio.example/plugins/vantry#zoom";
inline constexpr std::int32_t kMinZoomPercent = 100, kMaxZoomPercent = 200;
inline constexpr char kChannelsIn[] = "https://www.zel-audio.example/plugins/vantry#channelsIn";
inline constexpr char kChannelsOut[] = "https://www.zel-audio.example/plugins/vantry#channelsOut";

inline constexpr std::uint32_t kControlPortCount = 12;  // ports 0-11: parameter ids 0-11
inline constexpr std::uint32_t kLatencyPort = 12;
inline constexpr std::uint32_t kControlAtomPort = 13;
inline constexpr std::uint32_t kNotifyAtomPort = 14;
inline constexpr std::uint32_t kFirstAudioPort = 15;  // inputs, then outputs

// The longest preset name kept, in bytes (UTF-8, without the terminator).
inline constexpr std::uint32_t kMaxPresetNameBytes = 255;

}  // namespace zel_vantry_lv2
