#!/usr/bin/env bash
# The standalone app's session under Xvfb (no sound): a damaged session
# file is set aside and the editor still opens; a drag and a theme change
# survive a SIGKILL a moment later (the settings the editor copies with
# Ctrl+C are the same after the restart, and the window is dark); closing
# the window writes the session. Runs with a private HOME.
#   vantry_session.sh VANTRY WM_CLOSE OUT_DIR
set -u
vantry=$1
wmclose=$2
out=$(realpath -m "$3")
for tool in Xvfb xdotool xclip xwd convert xdpyinfo; do
  command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }
done

work=$(mktemp -d)
export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data XDG_CACHE_HOME=$work/cache
mkdir -p "$HOME" "$XDG_CONFIG_HOME/vantry" "$out"
session=$XDG_CONFIG_HOME/vantry/session.plist

pids=()
cleanup() {
  for p in "${pids[@]}"; do kill -9 "$p" 2>/dev/null; done
  wait 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT
failed=0
fail() { echo "FAIL: $*"; failed=1; }

. "$(dirname "$(realpath "$0")")/../support/xvfb_display.sh"
start_xvfb

start_vantry() {
  local log=$1
  "$vantry" --no-audio >"$log" 2>&1 &
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
  # The first click only gives the window the keyboard (on the title strip).
  xdotool mousemove 240 8 click 1
  sleep 0.2
}
copy_settings() {
  xdotool key ctrl+c
  sleep 0.4
  xclip -selection clipboard -o 2>/dev/null
}
brightness() { xwd -root -silent | convert xwd:- -crop 480x380+0+0 -colorspace gray -format "%[fx:mean]" info:; }

# 1. A damaged file is set aside, and the editor opens all the same.
printf 'bplist00\377\377 damaged' >"$session"
start_vantry "$work/first.log"
grep -q "set aside as $session.bad-" "$work/first.log" || fail "the damaged session was not reported: $(cat "$work/first.log")"
ls "$session".bad-* >/dev/null 2>&1 || fail "no $session.bad-* kept"
grep -q "No audio\|no audio" "$work/first.log" && fail "--no-audio should say nothing about sound"

# 2. A drag (Degrade: its track runs from y 317 at 0 % up to y 61 at 100 %
# at x 175) and the theme button (x 469, y 331); then a crash.
xdotool mousemove 175 317 mousedown 1 sleep 0.1 mousemove 175 280 sleep 0.1 mousemove 175 230 sleep 0.1 \
  mousemove 175 189 sleep 0.2 mouseup 1
sleep 0.2
xdotool mousemove 469 331 click 1
sleep 0.5
before=$(copy_settings)
grep -qE 'deg:(4[5-9]|5[0-5])' <<<"$before" || fail "Degrade after the drag: '$before' (expected about 50)"
sleep 1.5
kill -9 "$vantry_pid"
wait "$vantry_pid" 2>/dev/null

# 3. The restart finds everything again.
start_vantry "$work/second.log"
after=$(copy_settings)
[ -n "$before" ] && [ "$after" = "$before" ] || fail "after the restart the editor copies '$after', before the crash '$before'"
dark=$(brightness)
awk -v b="$dark" 'BEGIN { exit !(b < 0.4) }' || fail "the theme came back light (mean brightness $dark)"
xwd -root -silent | convert xwd:- -crop 480x380+0+0 "$out/session-restored.png"
grep -q "set aside" "$work/second.log" && fail "the session written by the app was set aside: $(cat "$work/second.log")"

# 4. Closing the window writes the session.
rm -f "$session"
"$wmclose" "$window" || fail "cannot send WM_DELETE_WINDOW"
for _ in $(seq 50); do kill -0 "$vantry_pid" 2>/dev/null || break; sleep 0.1; done
kill -0 "$vantry_pid" 2>/dev/null && fail "the window closed but the app goes on"
wait "$vantry_pid"
status=$?
[ $status -eq 0 ] || fail "exit $status after closing the window"
grep -q "<string>dark</string>" "$session" 2>/dev/null || fail "no session written on exit"
ls "$XDG_CONFIG_HOME/vantry" | grep -q tmp && fail "a temporary file was left: $(ls "$XDG_CONFIG_HOME/vantry")"

[ $failed -eq 0 ] && echo "vantry.session: damaged file set aside; '$before' and the dark theme survived a SIGKILL; written on close"
exit $failed
