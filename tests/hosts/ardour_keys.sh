#!/usr/bin/env bash
# Ardour keeps its keys after clicks in Vantry's editor, in Ardour 7's GUI
# (Xvfb, the dummy backend; the setup is ardour_common.sh's), acting as a
# user with the mouse and the keyboard only:
#   wm    with a window manager (openbox, click to focus): after a click on
#         an empty area of the editor, and after one on a slider handle,
#         Space starts and stops the transport and Ctrl+S saves the
#         session; with Ardour's keyboard button on, a click on High Cut
#         and "1k" Return set it to 1 kHz, which Ardour saves once the
#         button is off again; Ctrl+plus grows Ardour's window with the
#         editor, all of it visible, and Ctrl+0 returns both to 100 %.
#   nowm  without one (the keyboard goes where the pointer is): after a
#         click in the editor, Space over the editor starts the transport,
#         Space over Ardour's editor window stops it, and Ctrl+S saves.
#   ardour_keys.sh BUNDLE_DIR OUT_DIR wm|nowm
set -u
here=$(dirname "$(realpath "$0")")
bundle=$(realpath "$1")
out=$(realpath -m "$2")
mode=$3
. "$here/foreign_host.sh"
skip_if_sanitized "$bundle"
tools=(Xvfb ardour ardour7-lua xdotool xwininfo xdpyinfo xwd convert xprop)
[ "$mode" = wm ] && tools+=(openbox)
for tool in "${tools[@]}"; do
  command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }
done
[ -f "$bundle/manifest.ttl" ] && [ -f "$bundle/vantry_ui.so" ] || { echo "FAIL: no bundle at $bundle"; exit 1; }

. "$here/ardour_common.sh"
# Vantry's window below the clocks and rulers, which show whether the
# transport rolls.
ardour_setup "" 600 300
[ "$mode" = wm ] && ardour_window_manager
ardour_start
sleep 1

# Whether the clocks and the rulers above Vantry's window move (not the
# meters on the right, which fall back slowly after a stop).
band() { xwd -root -silent | convert xwd:- -crop "960x$((fy - 80))+0+40" +repage -format '%#' info:; }
rolling() {
  local a b
  a=$(band)
  sleep 0.7
  b=$(band)
  [ "$a" != "$b" ]
}
# Space rolls the transport (within 3 s) and, pressed again, stops it.
space_rolls() {
  local what=$1 i
  xdotool key space
  for i in 1 2 3 4; do rolling && break; done
  rolling || fail "Space did not start the transport $what"
  [ "${2:-}" ] && xdotool mousemove "$2" "$3" sleep 0.3
  xdotool key space
  # Stopping takes a moment (and Auto Return moves the playhead back).
  for i in 1 2 3 4 5; do rolling || break; done
  rolling && fail "Space did not stop the transport $what"
  echo "Space started and stopped the transport $what"
}
saves=0
# Ctrl+S writes the session file anew.
ctrl_s_saves() {
  local before i
  before=$(md5sum <"$snapshot")
  xdotool key ctrl+s
  for i in $(seq 40); do
    [ "$(md5sum <"$snapshot")" != "$before" ] && break
    sleep 0.25
  done
  [ "$(md5sum <"$snapshot")" != "$before" ] || fail "Ctrl+S did not save the session $1"
  saves=$((saves + 1))
  echo "Ctrl+S saved the session $1"
}
# WHEN W H: the editor's X window is W x H and lies wholly inside Ardour's
# plug-in window (the geometries are read anew).
fits() {
  ex=$(geometry "$editor" "Absolute upper-left X") ey=$(geometry "$editor" "Absolute upper-left Y")
  ew=$(geometry "$editor" "Width") eh=$(geometry "$editor" "Height")
  fx=$(geometry "$frame" "Absolute upper-left X") fy=$(geometry "$frame" "Absolute upper-left Y")
  fw=$(geometry "$frame" "Width") fh=$(geometry "$frame" "Height")
  echo "$1: Ardour's window ${fw}x$fh, the editor ${ew}x$eh at $((ex - fx)),$((ey - fy)) in it"
  [ "$ew" -eq "$2" ] && [ "$eh" -eq "$3" ] || fail "$1 the editor is ${ew}x$eh, not $2x$3"
  [ "$ex" -ge "$fx" ] && [ "$ey" -ge "$fy" ] && [ $((ex + ew)) -le $((fx + fw)) ] && [ $((ey + eh)) -le $((fy + fh)) ] ||
    fail "$1 the editor (${ew}x$eh+$ex+$ey) is cut off by Ardour's window (${fw}x$fh+$fx+$fy)"
}
# Editor points (x y from the editor's top left): an empty spot below the
# filter sliders, the High Cut handle at the preset's 3.4 kHz.
empty="$((ex + 120)) $((ey + 296))"
handle="$((ex + 105)) $((ey + 102))"

if [ "$mode" = wm ]; then
  xdotool mousemove $empty sleep 0.2 click 1 sleep 0.5
  space_rolls "after a click on an empty area"
  ctrl_s_saves "after a click on an empty area"
  xdotool mousemove $handle sleep 0.2 click 1 sleep 0.5
  space_rolls "after a click on a slider handle"
  ctrl_s_saves "after a click on a slider handle"
  xwd -root -silent | convert xwd:- "$out/ardour-keys.png"

  # Ardour's keyboard button (the last of its toolbar) passes keys to the
  # editor: a value typed on High Cut.
  xdotool mousemove $((fx + fw - 23)) $((fy + 16)) sleep 0.2 click 1 sleep 0.5
  xdotool mousemove $handle sleep 0.2 click 1 sleep 0.3
  xdotool type --delay 60 1k
  xdotool key Return
  sleep 1
  xwd -root -silent | convert xwd:- -crop "${fw}x$fh+$fx+$fy" +repage "$out/ardour-keys-typed.png"

  # Zoom: Ctrl+plus grows Ardour's window with the editor, the whole editor
  # inside it; Ctrl+0 returns both to their size, without margins.
  xdotool key ctrl+plus
  sleep 1.5
  fits "after Ctrl+plus" 600 475
  xwd -root -silent | convert xwd:- -crop "${fw}x$fh+$fx+$fy" +repage "$out/ardour-zoom.png"
  xdotool key ctrl+0
  sleep 1.5
  fits "after Ctrl+0" 480 380
  [ "$fw" -eq 480 ] && [ "$fh" -le 420 ] || fail "Ardour's window stayed ${fw}x$fh after Ctrl+0 (margins around the editor)"
  xdotool mousemove $((fx + fw - 23)) $((fy + 16)) sleep 0.2 click 1 sleep 0.5
  xdotool mousemove $empty sleep 0.2 click 1 sleep 0.3
  ctrl_s_saves "with the keyboard button off again"
  high=$(grep -oE '<Port symbol="HighCut" value="[^"]*"' "$snapshot" | cut -d'"' -f4)
  awk -v v="${high:-x}" 'BEGIN { exit !(v + 0 == v && v > 999 && v < 1001) }' ||
    fail "High Cut after typing 1k with the keyboard button on: '$high' (expected 1000)"
  echo "typed 1k on High Cut: Ardour saved $high Hz"
else
  xdotool mousemove $empty sleep 0.2 click 1 sleep 0.5
  # Back over Ardour's own window (its rulers) to stop.
  space_rolls "after a click in the editor (stopped over Ardour's window)" 640 200
  xdotool mousemove $empty sleep 0.2 click 1 sleep 0.5
  ctrl_s_saves "after a click in the editor"
  xdotool mousemove 640 200 sleep 0.3
  space_rolls "over Ardour's window"
  xwd -root -silent | convert xwd:- "$out/ardour-keys-nowm.png"
fi

xdotool key ctrl+q
for _ in $(seq 80); do kill -0 "$ardour" 2>/dev/null || break; sleep 0.25; done
kill -0 "$ardour" 2>/dev/null && fail "Ardour did not quit on Ctrl+Q within 20 s"
if grep -iE "segmentation|suil error|X Error|\[ERROR\]|\[FATAL\]|patch:Set" "$work/ardour.log"; then
  fail "errors or warnings in Ardour's output"
fi
echo "ardour keys ($mode): Ardour kept Space and Ctrl+S ($saves saves); screenshots in $out"
