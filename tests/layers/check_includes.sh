#!/usr/bin/env bash
# The folder tree is the layering: only the LV2 adapter folder speaks LV2,
# only the drawing and window backends see cairo, pango, FreeType or Xlib.
# Test programs, benchmarks and the tools that draw or host are exempt.
#   check_includes.sh SOURCE_DIR
set -u
cd "$1" || exit 2
failed=0

# Every C++ source of the product, outside the exempt folders.
product_sources() {
  find . \( -path ./tests -o -path ./bench -o -path ./fuzz -o -path ./app/tools -o -path ./app/lv2host -o -path ./app/manual \
    -o -path './build*' -o -path ./.git \) -prune -o \( -name '*.cpp' -o -name '*.h' \) -print
}

# check LABEL PATTERN ALLOWED_PREFIX...
check() {
  local label=$1 pattern=$2 file prefix ok
  shift 2
  while IFS= read -r file; do
    ok=0
    for prefix in "$@"; do
      [[ $file == ./$prefix/* ]] && ok=1
    done
    if [ $ok -eq 0 ]; then
      echo "FAIL: $file includes $label: $(grep -nE "$pattern" "$file" | head -1)"
      failed=1
    fi
  done < <(product_sources | xargs grep -lE "$pattern" 2>/dev/null)
}

check "LV2 headers" '^[[:space:]]*#[[:space:]]*include[[:space:]]*[<"](lv2/|lilv|suil)' lv2
check "X11 headers" '^[[:space:]]*#[[:space:]]*include[[:space:]]*[<"]X11/' toolkit/x11
check "cairo, pango or FreeType headers" \
  '^[[:space:]]*#[[:space:]]*include[[:space:]]*[<"](cairo|pango|ft2build|freetype|fontconfig)' toolkit/cairo toolkit/x11

# The check itself must see sources: an empty scan would pass anything.
[ "$(product_sources | wc -l)" -gt 100 ] || { echo "FAIL: no product sources found under $1"; failed=1; }
[ $failed -eq 0 ] && echo "includes follow the layers"
exit $failed
