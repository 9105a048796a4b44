// Checks a description against the kinds its keys are read as, and reports
// every value of the wrong kind with its key path:
//   clumps[2].parameters[0].minValue: expected a number, found a string
// The model itself never needs this (a value of the wrong kind reads as
// absent); the describe tool prints the findings. Unknown keys are not
// reported. Reentrant.
#pragma once

#include <vector>

#include "toolkit/foundation/ZelPlist.h"
#include "toolkit/foundation/ZelPlistReader.h"

ZEL_NAMESPACE_BEGIN

// Warnings for every value of the wrong kind in the top-level description
// dictionary (an error when `description` itself is not a dictionary).
std::vector<ZelDiagnostic> ZelCheckDescriptionKinds(const ZelPlist& description);

ZEL_NAMESPACE_END
