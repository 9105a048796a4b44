#!/usr/bin/env bash
# Two Vantry instances on two tracks of one Ardour session, both editors
# open (Ardour 7's GUI, openbox; the setup is ardour_common.sh's): in the
# first, a drag on Degrade, "1k" typed on High Cut (Ardour's keyboard
# button on), the next preset, Ctrl+Z and Ctrl+plus; the second's values
# and size stay as they were, as Ardour saves them. Then Ardour reopens
# the session: each editor comes back with its own state (the first at
# its zoom, the second at 100 %) and values.
#   ardour_two.sh BUNDLE_DIR OUT_DIR
set -u
here=$(dirname "$(realpath "$0")")
bundle=$(realpath "$1")
out=$(realpath -m "$2")
. "$here/foreign_host.sh"
skip_if_sanitized "$bundle"
for tool in Xvfb ardour ardour7-lua xdotool xwininfo xdpyinfo xwd convert xprop openbox; do
  command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }
done
[ -f "$bundle/manifest.ttl" ] && [ -f "$bundle/vantry_ui.so" ] || { echo "FAIL: no bundle at $bundle"; exit 1; }

. "$here/ardour_common.sh"
ardour_setup "" 20 330 "$here/ardour_two.lua"
[ "$(wc -w <<<"$ids")" -eq 2 ] || fail "the session does not hold two Vantry ($ids)"
ardour_window_manager

# Starts Ardour and finds both plug-in windows and their editors.
open_both() {
  ardour --no-announcements --no-splash "$snapshot" >"$work/ardour.log" 2>&1 &
  ardour=$!
  pids+=("$ardour")
  frameA="" frameB=""
  for _ in $(seq 240); do
    frameA=$(xdotool search --name '^Vantry A: ' 2>/dev/null | head -1)
    frameB=$(xdotool search --name '^Vantry B: ' 2>/dev/null | head -1)
    [ -n "$frameA" ] && [ -n "$frameB" ] && break
    kill -0 "$ardour" 2>/dev/null || fail "Ardour exited"
    sleep 0.25
  done
  [ -n "$frameA" ] && [ -n "$frameB" ] || fail "Ardour did not open both Vantry windows within 60 s"
  sleep 2
  editorA=$(editor_in "$frameA") editorB=$(editor_in "$frameB")
  ax=$(geometry "$editorA" "Absolute upper-left X") ay=$(geometry "$editorA" "Absolute upper-left Y")
  fax=$(geometry "$frameA" "Absolute upper-left X") fay=$(geometry "$frameA" "Absolute upper-left Y")
  faw=$(geometry "$frameA" "Width")
}
size_of() { echo "$(geometry "$1" "Width")x$(geometry "$1" "Height")"; }
port() { # PROCESSOR-INDEX SYMBOL: the value Ardour saved
  awk -v n="$1" -v s="$2" '/<Processor .*vantry#stereo/ { k++ } k == n && $0 ~ "<Port symbol=\"" s "\"" {
    match($0, /value="[^"]*"/); print substr($0, RSTART + 7, RLENGTH - 8); exit }' "$snapshot"
}
near() { awk -v v="${1:-x}" -v w="$2" 'BEGIN { exit !(v + 0 == v && v - w < 0.5 && w - v < 0.5) }'; }

open_both
echo "both editors open: A $(size_of "$editorA"), B $(size_of "$editorB")"
keyboard() { xdotool mousemove $((fax + faw - 23)) $((fay + 16)) sleep 0.2 click 1 sleep 0.5; }
xdotool mousemove $((ax + 175)) $((ay + 317)) mousedown 1 sleep 0.1 mousemove $((ax + 175)) $((ay + 280)) sleep 0.1 \
  mousemove $((ax + 175)) $((ay + 230)) sleep 0.1 mousemove $((ax + 175)) $((ay + 189)) sleep 0.2 mouseup 1 sleep 0.7
keyboard
xdotool mousemove $((ax + 105)) $((ay + 150)) sleep 0.2 click 1 sleep 0.3 type --delay 60 1k
xdotool key Return sleep 1
xdotool mousemove $((ax + 343)) $((ay + 365)) sleep 0.2 click 1 sleep 1
xdotool key ctrl+z sleep 1
xdotool key ctrl+plus sleep 1.5
sizeA=$(size_of "$editorA") sizeB=$(size_of "$editorB")
xwd -root -silent | convert xwd:- "$out/ardour-two.png"
[ "$sizeA" = 600x475 ] || fail "Ctrl+plus in the first editor made it $sizeA"
[ "$sizeB" = 480x380 ] || fail "the zoom reached the second editor: $sizeB"
keyboard
xdotool mousemove $((ax + 120)) $((ay + 296)) sleep 0.2 click 1 sleep 0.3
before=$(md5sum <"$snapshot")
xdotool key ctrl+s
for _ in $(seq 40); do [ "$(md5sum <"$snapshot")" != "$before" ] && break; sleep 0.25; done
[ "$(md5sum <"$snapshot")" != "$before" ] || fail "Ctrl+S did not save the session"
echo "saved: A Degrade $(port 1 Degrade) High Cut $(port 1 HighCut) Drive $(port 1 Drive);" \
  "B Degrade $(port 2 Degrade) High Cut $(port 2 HighCut) Drive $(port 2 Drive)"
awk -v d="$(port 1 Degrade)" 'BEGIN { exit !(d > 40 && d < 60) }' || fail "the drag did not reach the first plug-in"
near "$(port 1 HighCut)" 1000 || fail "the typed 1k did not reach the first plug-in (or undo did not bring it back)"
near "$(port 1 Drive)" 0 || fail "undo did not take the first plug-in back from the preset"
near "$(port 2 Degrade)" 0 && near "$(port 2 HighCut)" 20000 && near "$(port 2 Drive)" 0 ||
  fail "the second plug-in changed with the first"

xdotool key ctrl+q
for _ in $(seq 80); do kill -0 "$ardour" 2>/dev/null || break; sleep 0.25; done
kill -0 "$ardour" 2>/dev/null && fail "Ardour did not quit on Ctrl+Q"
grep -q "custom-ui" "$snapshot" || fail "Ardour did not save the open plug-in windows"

# Reopened, each editor comes back with its own state.
open_both
sizeA=$(size_of "$editorA") sizeB=$(size_of "$editorB")
xwd -root -silent | convert xwd:- "$out/ardour-two-reopened.png"
[ "$sizeA" = 600x475 ] && [ "$sizeB" = 480x380 ] || fail "reopened: A $sizeA, B $sizeB (expected 600x475 and 480x380)"
if grep -iE "segmentation|suil error|X Error|\[ERROR\]|\[FATAL\]|patch:Set" "$work/ardour.log"; then
  fail "errors or warnings in Ardour's output"
fi
echo "ardour two: the second instance kept its values and size; reopened A $sizeA, B $sizeB; screenshots in $out"
