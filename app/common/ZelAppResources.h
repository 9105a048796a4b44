// The resources folder of the standalone app and the scripted driver: the
// build puts one per product beside them (bin/resources/<slug>: the
// product's description, the editor's textures and icon font, linked, and
// the manual made at build time); the current product's is used.
// When that folder is there it becomes the bundle's resources folder, so
// that Ctrl+M finds the manual as the plug-in finds its own; otherwise the
// build's resources/ folder stays in use.
//
// Threading: main thread, before any editor is made.
#pragma once

#include <string>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

// The folder now in use.
std::string ZelUseResourcesBesideExecutable();

ZEL_NAMESPACE_END
