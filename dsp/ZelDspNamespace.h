// The namespace of the audio side (the generic building blocks, the unit
// interface): the editor's inline namespace (toolkit/foundation/
// ZelNamespace.h), without the editor's headers. ZEL_ABI_TAG is set by the
// build.
#pragma once

#ifndef ZEL_ABI_TAG
#error "ZEL_ABI_TAG is set by the build (CMakeLists.txt)"
#endif
#define ZEL_DSP_NAMESPACE_BEGIN namespace zel { inline namespace ZEL_ABI_TAG {
#define ZEL_DSP_NAMESPACE_END } }
