// The scripted driver's "dump": the editor's state as text, one line per
// registered control in registration order
//   control PID NAME value=V focused=0|1 dimmed=0|1 hidden=0|1 disabled=0|1 frame=X,Y,W,H
// (frame: the primary control's frame in editor coordinates, y up, by the
// views' frames: layer transforms of a drawer transition do not move it), then
//   preset value=K name=NAME dirty=0|1
//   undo=0|1 redo=0|1
//   drawers advanced=0|1 presets=0|1
//   theme light|dark
//   buffer TEXT
//   sketch visible=0|1
// Numbers are printed with %.9g. An empty name or buffer leaves nothing
// after the "=" or the word.
//
// Threading: main thread only.
#pragma once

#include <string>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

class ZelGenericUI;

// The lines, each ending in a newline.
std::string ZelDriveDump(ZelGenericUI& editor);

// One number as the driver prints numbers (%.9g).
std::string ZelDriveNumber(double value);

ZEL_NAMESPACE_END
