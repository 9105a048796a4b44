#!/usr/bin/env bash
# Vantry inside jalv.gtk3 (JACK's dummy driver, Xvfb): the editor appears
# embedded in the host's window, the editor and plug-in exchange their
# private state through the host, a real pointer drag moves a slider, the
# editor says so (Ctrl+C copies its settings to the X clipboard) and the
# host saves the new value (File > Save, state.ttl), and the host closes
# cleanly. Runs with a private HOME.
#   jalv.sh BUNDLE_DIR OUT_DIR
set -u
bundle=$(realpath "$1")
out=$(realpath -m "$2")
. "$(dirname "$(realpath "$0")")/foreign_host.sh"
skip_if_sanitized "$bundle"
for tool in Xvfb xdpyinfo jackd jack_lsp jalv.gtk3 xdotool xclip xwd convert; do
  command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }
done
[ -f "$bundle/manifest.ttl" ] && [ -f "$bundle/vantry_ui.so" ] || { echo "FAIL: no bundle at $bundle"; exit 1; }

private_host "$bundle" vantry-jalv-test
mkdir -p "$out"

. "$(dirname "$(realpath "$0")")/../support/xvfb_display.sh"
start_xvfb
jackd --no-realtime -d dummy -r 48000 -p 256 >"$work/jackd.log" 2>&1 &
pids+=($!)
for _ in $(seq 100); do jack_lsp >/dev/null 2>&1 && break; sleep 0.1; done
jack_lsp >/dev/null 2>&1 || { echo "FAIL: the JACK server did not start"; cat "$work/jackd.log"; exit 1; }

stdbuf -oL jalv.gtk3 --dump "https://www.zel-audio.example/plugins/vantry#stereo" >"$work/jalv.log" 2>&1 &
jalv=$!
pids+=($jalv)
window=""
for _ in $(seq 100); do
  window=$(xdotool search --name '^Vantry' 2>/dev/null | head -1)
  [ -n "$window" ] && break
  sleep 0.1
done
[ -n "$window" ] || { cat "$work/jalv.log"; fail "jalv showed no Vantry window"; exit 1; }
sleep 2

# The editor sits below jalv's menu bar: the Degrade slider's track runs
# from y 317 (0 %) to y 61 (100 %) at x 175 of the editor.
eval "$(xdotool getwindowgeometry --shell "$window")"
top=$((HEIGHT - 380))
[ "$WIDTH" -eq 480 ] && [ "$top" -ge 0 ] || fail "jalv's window is ${WIDTH}x$HEIGHT, expected 480 wide, at least 380 high"
xwd -root -silent | convert xwd:- -crop "480x$HEIGHT+0+0" "$out/jalv-before.png"
xdotool mousemove 175 $((top + 317)) mousedown 1 sleep 0.1 mousemove 175 $((top + 280)) sleep 0.1 \
  mousemove 175 $((top + 230)) sleep 0.1 mousemove 175 $((top + 189)) sleep 0.2 mouseup 1
sleep 0.5
xdotool key ctrl+c
sleep 0.5
copied=$(xclip -selection clipboard -o 2>/dev/null)
xwd -root -silent | convert xwd:- -crop "480x$HEIGHT+0+0" "$out/jalv-editor.png"
# Ctrl+C copies the editor's settings as a link; Degrade is "deg".
degrade=$(grep -oE 'deg:[-0-9.]+' <<<"$copied" | head -1 | cut -d: -f2)
awk -v d="${degrade:-x}" 'BEGIN { exit !(d + 0 == d && d >= 45 && d <= 55) }' ||
  fail "Degrade after the drag: '$copied' (expected about 50)"

# The picture is the editor's, not an empty window: many colours.
colours=$(convert "$out/jalv-editor.png" -format %k info:)
[ "$colours" -gt 50 ] || fail "the embedded editor looks empty ($colours colours)"

# The host's own copy: jalv saves its state (File > Save: Ctrl+S, a folder
# dialog that takes a typed path) with every port's value. Ctrl+S is typed
# as the user types it, right after the drag, with the pointer still on the
# editor: the host's shortcut works after a click in the editor.
save_state() {
  local dir=$1 dialog="" i
  xdotool key ctrl+s
  for i in $(seq 50); do
    dialog=$(xdotool search --onlyvisible --maxdepth 1 --name '^Save State$' 2>/dev/null | head -1)
    [ -n "$dialog" ] && break
    sleep 0.1
  done
  [ -n "$dialog" ] || return 1
  # No window manager here: the keyboard goes where the pointer is.
  xdotool mousemove --window "$dialog" 300 25 sleep 0.3
  xdotool type --delay 5 "$dir"
  for i in 1 2 3; do
    xdotool key Return
    sleep 0.7
    xdotool search --onlyvisible --maxdepth 1 --name '^Save State$' >/dev/null 2>&1 || break
  done
  for i in $(seq 30); do [ -s "$dir/state.ttl" ] && return 0; sleep 0.1; done
  return 1
}
if save_state "$work/saved"; then
  saved=$(awk '/lv2:symbol "Degrade"/ { found = 1 } found && /pset:value/ { v = $2; sub(/;$/, "", v); print v; exit }' \
    "$work/saved/state.ttl")
  awk -v d="${saved:-x}" 'BEGIN { exit !(d + 0 == d && d >= 45 && d <= 55) }' ||
    fail "jalv saved Degrade as '$saved' (expected about 50)"
  grep -q "vantry#theme" "$work/saved/state.ttl" || fail "the plug-in's own state (theme) is not in jalv's save"
else
  fail "jalv did not save its state"
fi

# The editor asked the plug-in for its state and the plug-in answered.
grep -q "UI => Plugin" "$work/jalv.log" || fail "no message from the editor reached the plug-in"
grep -q "vantry#presetName" "$work/jalv.log" || fail "the plug-in did not tell the editor its preset name"

# Zoom: Ctrl+plus (the pointer on the editor) grows the editor to 125 %
# and jalv's window with it, the whole editor inside; Ctrl+0 returns both.
editor=$(xwininfo -tree -id "$window" | awk 'match($0, /^ +0x[0-9a-f]+/) && RLENGTH > depth { depth = RLENGTH; id = $1 }
  END { print id }')
fits() {
  local g ex ey ew eh wx wy ww wh
  g() { xwininfo -id "$1" | awk -v k="$2" '$0 ~ k { print $NF }'; }
  ex=$(g "$editor" "Absolute upper-left X") ey=$(g "$editor" "Absolute upper-left Y")
  ew=$(g "$editor" "Width") eh=$(g "$editor" "Height")
  wx=$(g "$window" "Absolute upper-left X") wy=$(g "$window" "Absolute upper-left Y")
  ww=$(g "$window" "Width") wh=$(g "$window" "Height")
  echo "$1: jalv's window ${ww}x$wh, the editor ${ew}x$eh at $((ex - wx)),$((ey - wy))"
  [ "$ew" = "$2" ] && [ "$eh" = "$3" ] || { fail "$1 the editor is ${ew}x$eh, not $2x$3"; return; }
  [ "$ex" -ge "$wx" ] && [ "$ey" -ge "$wy" ] && [ $((ex + ew)) -le $((wx + ww)) ] && [ $((ey + eh)) -le $((wy + wh)) ] ||
    fail "$1 the editor is cut off by jalv's window"
  [ "$ww" = "$2" ] || fail "$1 jalv's window is $ww wide, not $2 (margins or cut)"
}
xdotool mousemove 240 $((top + 200)) sleep 0.2 key ctrl+plus
sleep 1.5
fits "after Ctrl+plus" 600 475
xwd -root -silent | convert xwd:- -crop "700x600+0+0" "$out/jalv-zoom.png"
xdotool key ctrl+0
sleep 1.5
fits "after Ctrl+0" 480 380

kill -INT "$jalv"
for _ in $(seq 50); do kill -0 "$jalv" 2>/dev/null || break; sleep 0.1; done
kill -0 "$jalv" 2>/dev/null && fail "jalv did not close"
grep -iE "segmentation|abort|X Error" "$work/jalv.log" && fail "errors in jalv's output"
[ $failed -eq 0 ] && echo "jalv: editor embedded, Degrade dragged to $degrade and saved by jalv as $saved, state exchanged; screenshots in $out"
exit $failed
