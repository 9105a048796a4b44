// The backing scale of an X screen: X has no notion of one, so desktops
// publish the text resolution as the "Xft.dpi" resource; 96 dpi is scale 1.
// Pure functions; any thread.
#pragma once

#include <optional>
#include <string_view>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

// The value of "Xft.dpi" in a resource-manager string ("name:\tvalue" lines,
// as the RESOURCE_MANAGER property holds them); nothing when it is absent
// or not a positive number.
std::optional<double> ZelX11DPIFromResources(std::string_view resources);

// dpi / 96 rounded to the nearest quarter, kept within 1 ... 4 (a screen
// of fewer than 96 dpi does not shrink the editor); 1 for nothing.
double ZelX11ScaleForDPI(std::optional<double> dpi);

ZEL_NAMESPACE_END
