// One still picture of the gallery, rendered offscreen on a virtual clock:
// the set-up has settled and the demonstrations (pulse, flash, warning
// pulse) are caught mid-way. The same arguments always give the same
// pixels on one machine (fonts and rasterizer permitting).
//
// Makes `dark`'s theme current (process-wide) and leaves it so.
// Threading: main thread; sets and clears the thread's current run loop.
#pragma once

#include <memory>
#include <string>

#include "toolkit/core/ZelImage.h"

namespace gallery {

struct StillOptions {
  bool dark = false;
  double scale = 1;
  std::string config;  // the description whose label images are shown
};

// The picture, or nullptr when it could not be rendered.
std::shared_ptr<const zel::ZelImage> renderStill(const StillOptions& options);
// Renders and writes a PNG file; false when it cannot be written.
bool writeStill(const StillOptions& options, const std::string& path);

// Makes the light or dark theme current.
void useTheme(bool dark);

}  // namespace gallery
