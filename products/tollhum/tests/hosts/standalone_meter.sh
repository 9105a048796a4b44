#!/usr/bin/env bash
# Tollhum's standalone app meters what it plays: under a private JACK server
# (dummy driver) and Xvfb, the meter's bars rest at the bottom in silence
# and rise while a test client plays two tones through the app. The
# screenshot goes to OUT_DIR. Runs with a private HOME and server name.
#   standalone_meter.sh TOLLHUM PROBE OUT_DIR
set -u
app=$(realpath "$1")
probe=$(realpath "$2")
out=$(realpath -m "$3")
for tool in Xvfb jackd jack_lsp xdotool xwininfo xdpyinfo xwd convert; do
  command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }
done
work=$(mktemp -d)
export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data XDG_CACHE_HOME=$work/cache
mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$out"
export JACK_DEFAULT_SERVER=tollhum-meter-test JACK_NO_AUDIO_RESERVATION=1
pids=()
cleanup() {
  for p in "${pids[@]}"; do kill "$p" 2>/dev/null; done
  wait 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT
fail() { echo "FAIL: $*"; [ -f "$work/app.log" ] && tail -5 "$work/app.log"; exit 1; }
. "$(dirname "$(realpath "$0")")/../../../../tests/support/xvfb_display.sh"
start_xvfb
jackd --no-realtime -d dummy -r 48000 -p 256 >"$work/jack.log" 2>&1 &
pids+=($!)
for _ in $(seq 50); do jack_lsp >/dev/null 2>&1 && break; sleep 0.1; done
jack_lsp >/dev/null 2>&1 || fail "no JACK server"
"$app" >"$work/app.log" 2>&1 &
pids+=($!)
window=""
for _ in $(seq 100); do
  window=$(xdotool search --name '^Tollhum' 2>/dev/null | head -1)
  [ -n "$window" ] && jack_lsp 2>/dev/null | grep -q '^Tollhum:in_2$' && break
  sleep 0.1
done
[ -n "$window" ] || fail "the app opened no window"
x=$(xwininfo -id "$window" | awk '/Absolute upper-left X/ { print $NF }')
y=$(xwininfo -id "$window" | awk '/Absolute upper-left Y/ { print $NF }')
w=$(xwininfo -id "$window" | awk '/Width/ { print $NF }')
# The lower half of the meter (its bars from -60 to about -20 dBFS), beside
# the right edge of the window: its mean brightness.
meter() {
  xwd -root -silent | convert xwd:- "$work/screen.png"
  convert "$work/screen.png" -crop "36x80+$((x + w - 49))+$((y + 222))" +repage -colorspace Gray \
    -format '%[fx:int(255*mean)]' info:
}
sleep 2.5  # the picture fades in
quiet=$(meter)
"$probe" --to Tollhum:in_1 --to Tollhum:in_2 --from Tollhum:out_1 --seconds 4 >"$work/probe.log" 2>&1 &
pids+=($!)
sleep 2.5
loud=$(meter)
cp "$work/screen.png" "$out/tollhum-standalone-meter.png"
echo "the meter's lower half: mean grey $quiet in silence, $loud with two tones at -12 dBFS"
[ "$loud" -gt $((quiet + 40)) ] || fail "the meter did not rise with the tones ($quiet, then $loud)"
