// One still picture of the editor as a host shows it once its deferred
// steps have run: built on the offscreen backend with a virtual clock,
// started up by the stand-in unit, the window focused, the clock run 1.1 s
// (drawers, sketch, first undo snapshot) and on until every animation has
// settled (the sketch's fade-in), then drawn whole. The same description,
// theme and options always give the same pixels on one machine.
//
// Uses the current theme (ZelUseTheme). Threading: main thread; makes its
// own run loop current while it runs and clears it after.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "toolkit/core/ZelImage.h"

ZEL_NAMESPACE_BEGIN

class ZelConfig;

struct ZelEditorStillOptions {
  double scale = 1;
  std::uint32_t channelsIn = 2, channelsOut = 2;
};

// The picture (nullptr only when it could not be drawn).
std::shared_ptr<const ZelImage> ZelRenderEditorStill(std::unique_ptr<ZelConfig> config,
                                                     const ZelEditorStillOptions& options);
// Renders and writes a PNG file; false when it cannot be written.
bool ZelWriteEditorStill(std::unique_ptr<ZelConfig> config, const ZelEditorStillOptions& options,
                         const std::string& path);

// Makes the light or the dark theme the current one (process-wide).
void ZelUseTheme(bool dark);

ZEL_NAMESPACE_END
