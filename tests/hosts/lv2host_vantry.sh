#!/usr/bin/env bash
# Vantry in our own LV2 test host (zel-lv2-host: lilv and suil, XTest input,
# an Xvfb of its own): the scripts in vantry/ must pass; the screenshots
# they take show the restored preset name and theme; the editor asks for
# 480 x 380 times each scale factor; a flood of host values during a drag
# (flood.lv2s) fights nothing; two instances with both editors open keep
# apart (instances.lv2s); 50 open/close cycles and two instances
# (one closed while the other works) leave no X errors. Prints the host's
# measurements (first paint, idle cost, memory). Runs with a private HOME.
#   lv2host_vantry.sh ZEL_LV2_HOST BUNDLE_DIR OUT_DIR
set -u
host=$(realpath "$1")
bundle=$(realpath "$2")
out=$(realpath -m "$3")
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
failed=0
fail() { echo "FAIL: $*"; failed=1; }
command -v convert >/dev/null && command -v compare >/dev/null || { echo "SKIP: ImageMagick is not installed"; exit 77; }
[ -f "$bundle/vantry_ui.so" ] || { echo "FAIL: no bundle at $bundle"; exit 1; }
. "$here/../app/lv2host/xvfb.sh"
export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_CACHE_HOME=$work/cache XDG_DATA_HOME=$work/data
mkdir -p "$HOME" "$out"

# run NAME [OPTIONS...] < SCRIPT: the host in $work, output in $work/NAME.out.
run() {
  local name=$1
  shift
  (cd "$work" && timeout 300 "$host" --bundle "$bundle" "$@" - >"$work/$name.out" 2>"$work/$name.err")
  local got=$?
  if [ "$got" != 0 ]; then
    fail "$name exited $got"
    sed 's/^/    /' "$work/$name.out" "$work/$name.err"
  fi
}

for script in editor state mono flood instances; do
  run "$script" <"$here/vantry/$script.lv2s"
done

# The screenshots of state.lv2s: the restored instance shows the saved
# preset's name in the saved (dark) theme.
crop() { convert "$work/$1.png" -crop 140x14+140+358 +repage "$work/$1-name.png"; }
mean() { convert "$work/$1.png" -crop 60x60+150+120 +repage -format '%[fx:mean]' info:; }
differs() { [ "$(compare -metric AE "$work/$1-name.png" "$work/$2-name.png" null: 2>&1)" != 0 ]; }
if [ -f "$work/restored.png" ]; then
  for shot in chosen-dark other-light restored; do crop "$shot"; done
  differs restored chosen-dark && fail "the restored editor does not show the saved preset's name"
  differs chosen-dark other-light || fail "the preset-name check cannot tell two names apart"
  awk -v d="$(mean restored)" -v l="$(mean other-light)" 'BEGIN { exit !(d < 0.4 && l > 0.6) }' ||
    fail "the restored editor is not in the saved dark theme"
  cp "$work"/chosen-dark.png "$work"/restored.png "$work"/editor.png "$out/"
fi

# Each scale factor: the size asked for, and a window of that size.
for scale in 1 1.5 2; do
  read -r w h < <(awk -v s="$scale" 'BEGIN { printf "%d %d\n", 480 * s + 0.5, 380 * s + 0.5 }')
  run "scale-$scale" --scale "$scale" <<EOF2
plugin https://www.zel-audio.example/plugins/vantry#stereo
ui
expect-size $w $h
idle 10
screenshot scale-$scale.png
EOF2
  grep -q "screenshot scale-$scale.png: ${w}x$h" "$work/scale-$scale.out" || fail "scale $scale: the window is not ${w}x$h"
done

# 50 open/close cycles, then two instances with one closed mid-way.
{
  echo "plugin https://www.zel-audio.example/plugins/vantry#stereo"
  for _ in $(seq 50); do printf 'ui\nidle 2\nclose-ui\n'; done
  printf 'instances 2\nselect 0\nui\nselect 1\nui\nidle 5\nselect 0\nclose-ui\nselect 1\nclear-writes\n'
  printf 'drag 175 317 175 189 8\nexpect-writes Degrade 1 100\nexpect-touch Degrade\nidle 5\nclose-ui\n'
  echo "expect-x-errors 0"
} >"$work/cycles.lv2s"
run cycles <"$work/cycles.lv2s"

# What a musician waits for and what idling costs.
grep -h -E "^ui .*first paint|^idle:" "$work/editor.out"
grep -h "^flood:" "$work/flood.out"
[ $failed -eq 0 ] && echo "zel-lv2-host: editor, presets and state, mono, an automation flood, scales 1-2, 50 cycles and two instances pass"
exit $failed
