// `<slug> process`: renders an audio file through the current product's
// unit (dsp/ZelProduct.h), offline.
//
//   <slug> process IN OUT [--preset NAME] [--set CODENAME=VALUE]...
//                  [--format wav16|wav24|float|flac]
//
// Reads any file libsndfile reads with one or two channels and writes OUT
// at the same rate, channel count and length, lined up with IN (the unit's
// latency is taken out), in IN's format unless --format says otherwise.
// --preset applies a factory preset as the editor does; each --set then
// sets one parameter in its own units (a value name such as "Mid/Side" is
// accepted too). Out-of-range values are clamped with a warning.
//
// OUT is written beside itself under a temporary name and renamed when
// complete; on any error (a one-line message, exit 2) or an interruption it
// is not created. Exit 0 on success, 1 when the output cannot be written.
// Threading: main thread; installs SIGINT/SIGTERM handlers while it runs.
#pragma once

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

// argv[0] is "process"; the description is read from `configPath`.
int ZelProcessCommand(int argc, char** argv, const char* configPath);

ZEL_NAMESPACE_END
