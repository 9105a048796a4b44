#!/usr/bin/env bash
# The standalone app with sound, under a private JACK server (dummy driver)
# and Xvfb: its ports appear and connect to the system's, or as asked; a
# test client plays two tones through it and its output matches the unit's
# offline, before and after a real pointer drag moves Low Cut in the
# editor; a second instance gets a unique name, one channel and the named
# connection; closing the window (WM_DELETE_WINDOW) removes the ports and
# writes the session; the server going away leaves the editor working with
# a notice; without a server the editor opens with a notice. Runs with a
# private HOME and server name; screenshots go to OUT_DIR.
#   vantry_jack.sh VANTRY PROBE WM_CLOSE OUT_DIR
set -u
vantry=$1
probe=$2
wmclose=$3
out=$(realpath -m "$4")
for tool in Xvfb jackd jack_lsp xdotool xclip xwd convert compare xdpyinfo; do
  command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }
done

work=$(mktemp -d)
export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data XDG_CACHE_HOME=$work/cache
mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$out"
# One server name for this test: JACK keeps a small table of servers and
# frees an entry left by a server that died only for the same name.
export JACK_DEFAULT_SERVER=vantry-jack-test JACK_NO_AUDIO_RESERVATION=1
session=$XDG_CONFIG_HOME/vantry/session.plist

pids=()
cleanup() {
  for p in "${pids[@]}"; do kill "$p" 2>/dev/null; done
  wait 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT
failed=0
fail() { echo "FAIL: $*"; failed=1; }

. "$(dirname "$(realpath "$0")")/../support/xvfb_display.sh"
start_xvfb
start_jack() {
  jackd --no-realtime -d dummy -r 48000 -p 256 >"$work/jackd.log" 2>&1 &
  jackd_pid=$!
  pids+=($jackd_pid)
  for _ in $(seq 50); do jack_lsp >/dev/null 2>&1 && return 0; sleep 0.1; done
  echo "FAIL: the JACK server did not start"; cat "$work/jackd.log"; exit 1
}
start_jack

# start_vantry LOG ARGS...: starts the app, waits for its window.
start_vantry() {
  local log=$1
  shift
  "$vantry" "$@" >"$log" 2>&1 &
  vantry_pid=$!
  pids+=($vantry_pid)
  window=""
  for _ in $(seq 300); do  # 30 s: a loaded machine starts slowly
    window=$(xdotool search --name '^Vantry$' 2>/dev/null | head -1)
    [ -n "$window" ] && break
    sleep 0.1
  done
  [ -n "$window" ] || { cat "$log"; fail "no Vantry window"; exit 1; }
  sleep 1
}
# wait_exit PID: the app's exit status, or 124 when it does not end in 5 s.
wait_exit() {
  for _ in $(seq 50); do kill -0 "$1" 2>/dev/null || break; sleep 0.1; done
  kill -0 "$1" 2>/dev/null && { kill -9 "$1"; return 124; }
  wait "$1"
}
# The ports connected to PORT, sorted, on one line.
connections() { jack_lsp -c 2>/dev/null | awk -v p="$1" '/^[^ \t]/ { on = ($0 == p); next } on { print $1 }' | sort | xargs; }
copy_settings() {
  xdotool key ctrl+c
  sleep 0.4
  xclip -selection clipboard -o 2>/dev/null
}
shot() { xwd -root -silent | convert xwd:- -crop 480x380+0+0 "$out/$1"; }
# Pixels that differ between two shots in the notice's corner (above the
# preset bar, under Slope).
corner_change() {
  convert "$out/$1" -crop 140x16+0+334 +repage "$work/corner-a.png"
  convert "$out/$2" -crop 140x16+0+334 +repage "$work/corner-b.png"
  compare -metric AE -fuzz 5% "$work/corner-a.png" "$work/corner-b.png" null: 2>&1 | cut -d' ' -f1
}

# 1. Ports and their connections to the system.
start_vantry "$work/first.log"
grep -q "playing through JACK as Vantry at 48000 Hz" "$work/first.log" || fail "no JACK client: $(cat "$work/first.log")"
[ "$(connections Vantry:in_1)" = "system:capture_1" ] || fail "Vantry:in_1 is connected to '$(connections Vantry:in_1)'"
[ "$(connections Vantry:in_2)" = "system:capture_2" ] || fail "Vantry:in_2 is connected to '$(connections Vantry:in_2)'"
[ "$(connections Vantry:out_1)" = "system:playback_1" ] || fail "Vantry:out_1 is connected to '$(connections Vantry:out_1)'"
[ "$(connections Vantry:out_2)" = "system:playback_2" ] || fail "Vantry:out_2 is connected to '$(connections Vantry:out_2)'"

# 2. Sound as the unit makes it, at the initial settings.
measure() { "$probe" --to Vantry:in_1 --to Vantry:in_2 --from Vantry:out_1 "$@" 2>&1; }
flat=$(measure --expect LowCut=20) || fail "the initial sound is not the unit's: $flat"
echo "$flat" | sed 's/^/initial: /'

# 3. Low Cut dragged up in the editor: its thumb sits at the bottom of the
# track (x 37, y 217) and moves up the log scale.
xdotool mousemove 37 217 mousedown 1 sleep 0.1 mousemove 37 190 sleep 0.1 mousemove 37 160 sleep 0.1 \
  mousemove 37 140 sleep 0.2 mouseup 1
sleep 0.5
copied=$(copy_settings)
low=$(grep -oE 'lo:[-0-9.]+' <<<"$copied" | head -1 | cut -d: -f2)
awk -v v="${low:-x}" 'BEGIN { exit !(v + 0 == v && v >= 300 && v <= 2000) }' ||
  fail "Low Cut after the drag: '$copied' (expected a few hundred hertz)"
cut=$(measure --expect "LowCut=${low:-20}") || fail "the sound after the drag is not the unit's at $low Hz: $cut"
echo "$cut" | sed 's/^/after the drag: /'
db() { grep "tone $1 Hz" <<<"$2" | awk '{ print $4 }'; }
awk -v a="$(db 100 "$flat")" -v b="$(db 100 "$cut")" 'BEGIN { exit !(a - b > 20) }' ||
  fail "100 Hz did not drop by more than 20 dB ($(db 100 "$flat") -> $(db 100 "$cut"))"
awk -v a="$(db 5000 "$flat")" -v b="$(db 5000 "$cut")" 'BEGIN { d = a - b; exit !(d < 0.5 && d > -0.5) }' ||
  fail "5 kHz moved ($(db 5000 "$flat") -> $(db 5000 "$cut"))"
shot jack-editor.png

# Another buffer size on the fly: the same sound.
if command -v jack_bufsize >/dev/null; then
  jack_bufsize 1024 >/dev/null
  large=$(measure --expect "LowCut=${low:-20}") || fail "at 1024 frames a block the sound is not the unit's: $large"
  jack_bufsize 256 >/dev/null
fi

# 4. A second instance: a name of its own, one channel, only the named connection.
first_pid=$vantry_pid
first_window=$window
"$vantry" --mono --no-connect --connect-out system:playback_2 --session "$work/second.plist" >"$work/second.log" 2>&1 &
second=$!
pids+=($second)
for _ in $(seq 50); do jack_lsp 2>/dev/null | grep -q '^Vantry-01:out_1$' && break; sleep 0.1; done
ports=$(jack_lsp 2>/dev/null | grep '^Vantry-01:' | sort | xargs)
[ "$ports" = "Vantry-01:in_1 Vantry-01:out_1" ] || fail "the second instance has ports '$ports': $(cat "$work/second.log")"
[ -z "$(connections Vantry-01:in_1)" ] || fail "--no-connect: Vantry-01:in_1 is connected to $(connections Vantry-01:in_1)"
[ "$(connections Vantry-01:out_1)" = "system:playback_2" ] || fail "--connect-out: '$(connections Vantry-01:out_1)'"
kill -TERM "$second"
wait_exit "$second" || fail "the second instance did not end cleanly on SIGTERM"
jack_lsp 2>/dev/null | grep -q '^Vantry-01:' && fail "the second instance's ports stayed"

# 5. Closing the window as a window manager does.
"$wmclose" "$first_window" || fail "cannot send WM_DELETE_WINDOW"
wait_exit "$first_pid"
status=$?
[ $status -eq 0 ] || fail "closing the window: exit $status: $(cat "$work/first.log")"
jack_lsp 2>/dev/null | grep -q '^Vantry' && fail "ports left after closing: $(jack_lsp | grep Vantry | xargs)"
saved=$(awk '/<key>LowCut<\/key>/ { getline; gsub(/<[^>]*>|[ \t]/, ""); print; exit }' "$session" 2>/dev/null)
awk -v a="${saved:-x}" -v b="${low:-y}" 'BEGIN { exit !(a + 0 == a && a - b < 1 && b - a < 1) }' ||
  fail "the session has LowCut '$saved', expected $low"

# 6. The server goes away: the editor goes on, restored, and says so.
start_vantry "$work/gone.log"
kill -TERM "$jackd_pid"
wait "$jackd_pid" 2>/dev/null
for _ in $(seq 50); do grep -q "went away" "$work/gone.log" && break; sleep 0.1; done
grep -q "the JACK server went away" "$work/gone.log" || fail "no word of the server's end: $(cat "$work/gone.log")"
sleep 0.3
shot jack-gone.png
changed=$(corner_change jack-editor.png jack-gone.png)
[ "${changed:-0}" -gt 100 ] 2>/dev/null || fail "no notice in the window after the server went away ($changed pixels changed)"
xdotool mousemove 240 8 click 1
copied=$(copy_settings)
grep -q "lo:$low" <<<"$copied" || fail "after the server went: the editor copies '$copied' (expected lo:$low, restored)"
"$wmclose" "$window"
wait_exit "$vantry_pid" || fail "the app did not end cleanly after the server went away: $(cat "$work/gone.log")"

# 7. No server at all: the editor opens and says why there is no sound.
start_vantry "$work/none.log"
grep -q "no audio: no JACK server is running; start a JACK server" "$work/none.log" ||
  fail "no server: '$(cat "$work/none.log")'"
shot jack-none.png
changed=$(corner_change jack-editor.png jack-none.png)
[ "${changed:-0}" -gt 100 ] 2>/dev/null || fail "no notice in the window without a server ($changed pixels changed)"
"$wmclose" "$window"
wait_exit "$vantry_pid" || fail "the app did not end cleanly without a server"
grep -iE "segmentation|abort|X Error" "$work"/*.log && fail "errors in the app's output"

[ $failed -eq 0 ] && echo "vantry.jack: ports and connections as asked, Low Cut dragged to $low Hz matches the unit offline, clean close, server loss and absence handled; screenshots in $out"
exit $failed
