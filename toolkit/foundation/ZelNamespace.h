// The editor's namespace. Every symbol of a build lives in an inline
// namespace named after the product's class prefix and version integer
// (ZEL_ABI_TAG, set by the build), so two products or two versions of the
// editor loaded into the same host process never share a symbol.
#pragma once

#ifndef ZEL_ABI_TAG
#define ZEL_ABI_TAG ZelVantry_65793
#endif

#define ZEL_NAMESPACE_BEGIN namespace zel { inline namespace ZEL_ABI_TAG {
#define ZEL_NAMESPACE_END } }
