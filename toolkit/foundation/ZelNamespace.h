// The editor's namespace. Every symbol of a build lives in an inline
// namespace named after the editor's version (ZEL_ABI_TAG, set by the build
// in CMakeLists.txt), and each product's own code in an inline namespace of
// its own inside it (ZEL_PRODUCT_NAMESPACE_BEGIN, from the product's
// generated parameter table), so two products or two versions of the
// editor loaded into the same host process never share a symbol.
#pragma once

#ifndef ZEL_ABI_TAG
#error "ZEL_ABI_TAG is set by the build (CMakeLists.txt)"
#endif

#define ZEL_NAMESPACE_BEGIN namespace zel { inline namespace ZEL_ABI_TAG {
#define ZEL_NAMESPACE_END } }
