// The editor's pictures for the manual: the editor as a host shows it (the
// same start-up as ZelRenderEditorStill), optionally with the advanced
// drawer open, drawn at a backing scale into a cairo image surface, with
// the frame of every clump that is visible in it.
//
// Uses the current theme. Threading: main thread; makes its own run loop
// current while it runs and clears it after.
#pragma once

#include <cairo.h>

#include <map>
#include <memory>
#include <string>

#include "toolkit/foundation/Geometry.h"

ZEL_NAMESPACE_BEGIN

class ZelConfig;

struct ZelManualShot {
  // The picture, `scale` pixels per point; owned (freed with the shot).
  std::shared_ptr<cairo_surface_t> image;
  CGSize size{};  // in points
  double scale = 1;
  // Visible clumps by code name, in points from the picture's top-left
  // corner (y down, as the page is laid out).
  std::map<std::string, CGRect, std::less<>> clumpFrames;
};

// `config` must not be null; the editor owns it while it is drawn.
ZelManualShot ZelShootEditor(std::unique_ptr<ZelConfig> config, double scale, bool advancedDrawer);

ZEL_NAMESPACE_END
