#!/usr/bin/env bash
# A product is its folder: tests/products/scratch (a description with three
# parameters, a pass-through unit, manual texts) copied alone into a
# temporary folder is built against this build tree by zel_add_product
# (cmake/ZelProductProject), and its bundle is then what a host expects:
# the Turtle valid, the library exporting its descriptor only, and lilv
# finding, running and restoring both plug-ins (zel-load-scratch).
#   scratch_product.sh SOURCE_DIR BUILD_DIR ZEL_LOAD_SCRATCH
set -u
src=$(realpath "$1")
tree=$(realpath "$2")
load=$(realpath "$3")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*"; exit 1; }

cp -r "$src/tests/products/scratch" "$work/scratch"
cmake -S "$src/cmake/ZelProductProject" -B "$work/build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DZEL_BUILD_TREE="$tree" -DZEL_PRODUCT_DIRS="$work/scratch" >"$work/configure.log" 2>&1 ||
  { cat "$work/configure.log"; fail "the scratch product does not configure"; }
cmake --build "$work/build" --target scratch_lv2 -j2 >"$work/build.log" 2>&1 ||
  { cat "$work/build.log"; fail "the scratch product does not build"; }

bundle=$work/build/scratch.lv2
for f in manifest.ttl scratch.ttl presets.ttl scratch_dsp.so resources/config.plist resources/config.bplist; do
  [ -f "$bundle/$f" ] || fail "the bundle lacks $f"
done
[ -e "$bundle/scratch_ui.ttl" ] && fail "a bundle built without the editor announces one"
grep -q '<https://www.zel-audio.example/plugins/scratch#>' "$bundle/manifest.ttl" ||
  fail "the URIs do not come from the description's pluginURLSlug"
sh "$src/tests/lv2/validate.sh" "$bundle" || fail "lv2_validate"
sh "$src/tests/lv2/exports.sh" "$bundle/scratch_dsp.so" || fail "the plug-in library exports more than lv2_descriptor"
"$load" "$bundle" || fail "lilv"
echo "scratch product: built from its folder alone, loaded through lilv"
