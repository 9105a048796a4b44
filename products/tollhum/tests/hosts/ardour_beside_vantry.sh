#!/usr/bin/env bash
# Tollhum beside Vantry in one Ardour 7 session (Ardour's GUI, openbox; the
# setup is tests/hosts/ardour_common.sh's), both editors open at once. The
# musician turns Vantry's editor dark, drags Tollhum's Fine slider and
# steps Vantry to its next preset: Tollhum's editor stays light, Vantry's
# values stay where they were after the drag, Tollhum's Fine stays where
# it was after the preset, and Ctrl+S saves each plug-in's own theme and
# values. Ardour then reopens the session: Vantry's editor comes back dark,
# Tollhum's light. Screenshots go to OUT_DIR.
#   ardour_beside_vantry.sh VANTRY_BUNDLE TOLLHUM_BUNDLE OUT_DIR
set -u
here=$(realpath "$(dirname "$(realpath "$0")")/../../../../tests/hosts")
bundle=$(realpath "$1")
more_bundles=$(realpath "$2")
out=$(realpath -m "$3")
. "$here/foreign_host.sh"
skip_if_sanitized "$bundle"
for tool in Xvfb ardour ardour7-lua xdotool xwininfo xdpyinfo xwd convert xprop openbox; do
  command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }
done
[ -f "$bundle/vantry_ui.so" ] && [ -f "$more_bundles/tollhum_ui.so" ] || { echo "FAIL: no bundles at $1 and $2"; exit 1; }

. "$here/ardour_common.sh"
ZEL_TRACKS="Vantry=vantry,Tollhum=tollhum" ardour_setup "" 20 330 "$here/ardour_two.lua"
[ "$(wc -w <<<"$ids")" -eq 2 ] || fail "the session does not hold both plug-ins ($ids)"
ardour_window_manager

# Starts Ardour and finds both plug-in windows and their editors:
# $vx,$vy (Vantry's editor), $tx,$ty (Tollhum's), their sizes $vw.. $th.
open_both() {
  ardour --no-announcements --no-splash "$snapshot" >"$work/ardour.log" 2>&1 &
  ardour=$!
  pids+=("$ardour")
  local frameV="" frameT=""
  for _ in $(seq 240); do
    frameV=$(xdotool search --name '^Vantry: ' 2>/dev/null | head -1)
    frameT=$(xdotool search --name '^Tollhum: ' 2>/dev/null | head -1)
    [ -n "$frameV" ] && [ -n "$frameT" ] && break
    kill -0 "$ardour" 2>/dev/null || fail "Ardour exited"
    sleep 0.25
  done
  [ -n "$frameV" ] && [ -n "$frameT" ] || fail "Ardour did not open both plug-in windows within 60 s"
  sleep 2
  local e
  e=$(editor_in "$frameV")
  vx=$(geometry "$e" "Absolute upper-left X") vy=$(geometry "$e" "Absolute upper-left Y")
  vw=$(geometry "$e" "Width") vh=$(geometry "$e" "Height")
  e=$(editor_in "$frameT")
  tx=$(geometry "$e" "Absolute upper-left X") ty=$(geometry "$e" "Absolute upper-left Y")
  tw=$(geometry "$e" "Width") th=$(geometry "$e" "Height")
  echo "Vantry's editor ${vw}x$vh+$vx+$vy, Tollhum's ${tw}x$th+$tx+$ty"
}
# The share of an editor's pixels (X Y W H) within 4 % of the light theme's
# paper, on the screen now (kept in $work/screen.png).
paper() {
  xwd -root -silent | convert xwd:- "$work/screen.png"
  convert "$work/screen.png" -crop "${3}x$4+$1+$2" +repage -fuzz 4% -fill white -opaque 'rgb(240,236,225)' \
    -fill black +opaque white -format '%[fx:mean]' info:
}
light() { awk -v s="$1" 'BEGIN { exit !(s >= 0.4) }'; }
dark() { awk -v s="$1" 'BEGIN { exit !(s < 0.05) }'; }
port() { # PRODUCT SYMBOL: the value Ardour saved
  awk -v p="$1" -v s="$2" '/<Processor / { k = index($0, "plugins/" p "#stereo") > 0 }
    k && $0 ~ "<Port symbol=\"" s "\"" { match($0, /value="[^"]*"/); print substr($0, RSTART + 7, RLENGTH - 8); exit }' "$snapshot"
}
state_of() { # PRODUCT: the plug-in's state file as last saved
  local id dir
  id=$(awk -v p="$1" '/<Processor .*type="lv2"/ && index($0, "plugins/" p "#stereo") {
    match($0, / id="[0-9]+"/); print substr($0, RSTART + 5, RLENGTH - 6); exit }' "$snapshot")
  dir=$(awk -v p="$1" '/<Processor .*type="lv2"/ { k = index($0, "plugins/" p "#stereo") > 0 }
    k && /state-dir=/ { match($0, /state-dir="[^"]*"/); print substr($0, RSTART + 11, RLENGTH - 12); exit }' "$snapshot")
  echo "$session/plugins/$id/$dir/state.ttl"
}
theme_of() { grep -oE "<https://www.zel-audio.example/plugins/$1#theme> \"[01]\"" "$(state_of "$1")" | cut -d'"' -f2; }
preset_of() { grep -oE "<https://www.zel-audio.example/plugins/$1#presetName> \"[^\"]*\"" "$(state_of "$1")" | cut -d'"' -f2; }
near() { awk -v v="${1:-x}" -v w="$2" 'BEGIN { exit !(v + 0 == v && v - w < 0.5 && w - v < 0.5) }'; }

tollhum_preset=$(preset_of tollhum)
open_both
v=$(paper "$vx" "$vy" "$vw" "$vh") t=$(paper "$tx" "$ty" "$tw" "$th")
cp "$work/screen.png" "$out/ardour-beside-vantry.png"
light "$v" && light "$t" || fail "a fresh session's editors are not both light (paper: Vantry $v, Tollhum $t)"

# Vantry's theme button (a click on its empty panel first activates the window).
xdotool mousemove $((vx + vw - 30)) $((vy + vh - 90)) sleep 0.2 click 1 sleep 0.5
xdotool mousemove $((vx + vw - 12)) $((vy + vh - 48)) sleep 0.2 click 1
for _ in $(seq 30); do
  v=$(paper "$vx" "$vy" "$vw" "$vh")
  dark "$v" && break
  sleep 0.5
done
t=$(paper "$tx" "$ty" "$tw" "$th")
dark "$v" || fail "Vantry's theme button did not turn its editor dark (paper $v)"
light "$t" || fail "Vantry's theme reached Tollhum's editor (paper $t)"
echo "Vantry's editor dark (paper $v), Tollhum's still light (paper $t)"

# Tollhum's Fine slider (horizontal, at 0 ct) dragged 100 pixels to the right.
xdotool mousemove $((tx + 134)) $((ty + 97)) mousedown 1 sleep 0.1
for dx in 25 50 75 100; do xdotool mousemove $((tx + 134 + dx)) $((ty + 97)) sleep 0.1; done
xdotool sleep 0.2 mouseup 1 sleep 0.7
# Vantry's next preset, in its preset bar.
xdotool mousemove $((vx + 343)) $((vy + 365)) sleep 0.2 click 1 sleep 1
# Ctrl+S, after a click on Tollhum's empty corner: Ardour keeps its keys.
xdotool mousemove $((tx + 470)) $((ty + 70)) sleep 0.2 click 1 sleep 0.3
xwd -root -silent | convert xwd:- "$out/ardour-beside-vantry-changed.png"
before=$(md5sum <"$snapshot")
xdotool key ctrl+s
for _ in $(seq 40); do [ "$(md5sum <"$snapshot")" != "$before" ] && break; sleep 0.25; done
[ "$(md5sum <"$snapshot")" != "$before" ] || fail "Ctrl+S did not save the session"
echo "saved: Vantry preset \"$(preset_of vantry)\" Drive $(port vantry Drive) High Cut $(port vantry HighCut) theme $(theme_of vantry);" \
  "Tollhum Fine $(port tollhum Fine) Note $(port tollhum Note) theme $(theme_of tollhum)"
awk -v f="$(port tollhum Fine)" 'BEGIN { exit !(f + 0 == f && f > 5) }' ||
  fail "the drag did not reach Tollhum, or Vantry's preset moved it (Fine $(port tollhum Fine))"
near "$(port vantry Drive)" 0 && fail "Vantry's next preset did not reach Vantry (Drive $(port vantry Drive))"
[ -n "$(preset_of vantry)" ] || fail "Vantry's state holds no preset name"
[ "$(preset_of tollhum)" = "$tollhum_preset" ] ||
  fail "Tollhum's preset name became \"$(preset_of tollhum)\" with Vantry's preset"
[ "$(theme_of vantry)" = 1 ] || fail "Vantry's state holds theme $(theme_of vantry), not dark"
[ "$(theme_of tollhum)" = 0 ] || fail "Tollhum's state holds theme $(theme_of tollhum), not light"

xdotool key ctrl+q
for _ in $(seq 80); do kill -0 "$ardour" 2>/dev/null || break; sleep 0.25; done
kill -0 "$ardour" 2>/dev/null && fail "Ardour did not quit on Ctrl+Q"

# Reopened: each editor comes back in its own plug-in's theme.
open_both
for _ in $(seq 20); do
  v=$(paper "$vx" "$vy" "$vw" "$vh") t=$(paper "$tx" "$ty" "$tw" "$th")
  dark "$v" && light "$t" && break
  sleep 0.5
done
cp "$work/screen.png" "$out/ardour-beside-vantry-reopened.png"
dark "$v" && light "$t" || fail "reopened: Vantry's editor paper $v (dark expected), Tollhum's $t (light expected)"
if grep -iE "segmentation|suil error|X Error|\[ERROR\]|\[FATAL\]|patch:Set" "$work/ardour.log"; then
  fail "errors or warnings in Ardour's output"
fi
echo "ardour beside vantry: themes, values and presets kept apart and reloaded; screenshots in $out"
