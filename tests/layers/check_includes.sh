#!/usr/bin/env bash
# The folder tree is the layering: no folder includes from a folder above
# it, only the LV2 adapter folder speaks LV2, only the drawing and window
# backends see cairo, pango, FreeType or Xlib.
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

# The layer rule: no folder includes from a folder above it. Bottom up:
# dsp (the standard library only), the toolkit (foundation, core, widgets,
# then the cairo and X11 backends), theme, layout, model, controls, sketch,
# editor, host, the adapters (lv2, app/standalone), app, products. A
# program's main file (*Main.cpp) puts an adapter and the tools together,
# so it stands with app.
layer_of() {
  case $1 in
    app/standalone/*Main.cpp) echo 13 ;;
    dsp/*) echo 0 ;;
    toolkit/foundation/*) echo 1 ;;
    toolkit/core/*) echo 2 ;;
    toolkit/widgets/*) echo 3 ;;
    toolkit/cairo/* | toolkit/x11/*) echo 4 ;;
    theme/*) echo 5 ;;
    layout/*) echo 6 ;;
    model/*) echo 7 ;;
    controls/*) echo 8 ;;
    sketch/*) echo 9 ;;
    editor/*) echo 10 ;;
    host/*) echo 11 ;;
    lv2/* | app/standalone/*) echo 12 ;;
    app/*) echo 13 ;;
    products/*) echo 14 ;;
  esac
}

# Whether FILE including INCLUDED (paths from the source root) runs up the
# layers. Paths outside the layered folders are not judged.
runs_up() {
  local from to
  from=$(layer_of "$1")
  to=$(layer_of "$2")
  [ -n "$from" ] && [ -n "$to" ] && [ "$to" -gt "$from" ]
}

# The rule itself, on pairs whose answer is known.
for pair in editor/A.cpp:host/B.h toolkit/core/A.h:toolkit/widgets/B.h toolkit/widgets/A.h:toolkit/x11/B.h \
  model/A.cpp:controls/B.h app/standalone/ZelLiveUnit.cpp:app/common/B.h lv2/ui/A.cpp:products/x/B.h dsp/A.h:toolkit/foundation/B.h; do
  runs_up "${pair%%:*}" "${pair#*:}" || { echo "FAIL: the layer rule lets ${pair%%:*} include ${pair#*:}"; failed=1; }
done
for pair in host/A.cpp:editor/B.h toolkit/x11/A.cpp:toolkit/cairo/B.h lv2/ui/A.cpp:host/B.h \
  app/standalone/ZelStandaloneMain.cpp:app/common/B.h products/x/A.cpp:app/common/B.h tests/A.cpp:products/x/B.h; do
  runs_up "${pair%%:*}" "${pair#*:}" && { echo "FAIL: the layer rule forbids ${pair%%:*} to include ${pair#*:}"; failed=1; }
done

while IFS= read -r file; do
  file=${file#./}
  [ -n "$(layer_of "$file")" ] || continue
  while IFS=: read -r line included; do
    if runs_up "$file" "$included"; then
      echo "FAIL: $file:$line includes $included, from a layer above"
      failed=1
    fi
  done < <(grep -nE '^[[:space:]]*#[[:space:]]*include[[:space:]]*"[^"]+"' "$file" |
    sed -E 's/^([0-9]+):[^"]*"([^"]+)".*/\1:\2/')
done < <(product_sources)

# The check itself must see sources: an empty scan would pass anything.
[ "$(product_sources | wc -l)" -gt 100 ] || { echo "FAIL: no product sources found under $1"; failed=1; }
[ $failed -eq 0 ] && echo "includes follow the layers"
exit $failed
