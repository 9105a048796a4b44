#!/usr/bin/env bash
# Vantry in MusE 4 (JACK's dummy driver, Xvfb): a project with Vantry in
# the master output's effect rack, Hiss at -40 dB band-limited to 300 Hz -
# 3.4 kHz, is opened as a musician opens it; MusE instantiates the plug-in
# from the project's values, shows our editor (the project asks for it) and
# plays the hiss at the level `vantry process` renders with the same
# settings (within 0.5 dB: the noise is random, its level is not). Skips
# without MusE, JACK or Xvfb.
#   muse.sh VANTRY BUNDLE_DIR
set -u
here=$(dirname "$(realpath "$0")")
. "$here/foreign_host.sh"
vantry=$(realpath "$1")
bundle=$(realpath "$2")
skip_if_sanitized "$bundle"
for tool in muse Xvfb xdpyinfo xdotool jackd jack_lsp jack_rec; do
  command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }
done
[ -f "$bundle/manifest.ttl" ] || { echo "FAIL: no bundle at $bundle"; exit 1; }

private_host "$bundle" vantry-muse-test

. "$here/../support/xvfb_display.sh"
start_xvfb
jackd --no-realtime -d dummy -r 48000 -p 1024 >"$work/jackd.log" 2>&1 &
pids+=($!)
for _ in $(seq 100); do jack_lsp >/dev/null 2>&1 && break; sleep 0.1; done
jack_lsp >/dev/null 2>&1 || { echo "FAIL: the JACK server did not start"; cat "$work/jackd.log"; exit 1; }

# The least of a project MusE opens: its master output with Vantry, every
# control given as MusE writes them (by port name), our editor open.
cat >"$work/hiss.med" <<'MED'
<?xml version="1.0"?>
<muse version="3.3">
  <song>
    <sampleRate>48000</sampleRate>
    <AudioOutput>
      <name>Out 1</name>
      <channels>2</channels>
      <plugin uri="https://www.zel-audio.example/plugins/vantry#stereo" label="Vantry LV2" channel="2">
        <control name="Power" val="1" />
        <control name="Degrade" val="0" />
        <control name="Drive" val="0" />
        <control name="Output" val="0" />
        <control name="Low Cut" val="300" />
        <control name="High Cut" val="3400" />
        <control name="Slope" val="24" />
        <control name="Mix" val="100" />
        <control name="Mode" val="0" />
        <control name="Hiss" val="-40" />
        <control name="HQ" val="0" />
        <control name="Width" val="100" />
        <nativegui>1</nativegui>
      </plugin>
    </AudioOutput>
  </song>
</muse>
MED

muse -j "$work/hiss.med" >"$work/muse.log" 2>&1 &
pids+=($!)
for _ in $(seq 150); do jack_lsp 2>/dev/null | grep -q "^MusE:Out 1-1" && break; sleep 0.2; done
jack_lsp 2>/dev/null | grep -q "^MusE:Out 1-1" || { tail -20 "$work/muse.log"; fail "MusE shows no output ports"; exit 1; }
editor=""
for _ in $(seq 100); do
  editor=$(xdotool search --onlyvisible --name 'Vantry LV2' 2>/dev/null | head -1)
  [ -n "$editor" ] && break
  sleep 0.1
done
if [ -n "$editor" ]; then
  eval "$(xdotool getwindowgeometry --shell "$editor")"
  [ "$WIDTH" -eq 480 ] && [ "$HEIGHT" -ge 380 ] || fail "MusE's editor window is ${WIDTH}x$HEIGHT, expected our 480x380"
else
  fail "MusE did not show Vantry's editor"
fi
sleep 1
timeout 10 jack_rec -f "$work/muse.wav" -d 1 "MusE:Out 1-0" "MusE:Out 1-1" >/dev/null 2>&1
python3 -c "
import wave; w = wave.open('$work/silence.wav', 'wb'); w.setnchannels(2); w.setsampwidth(2); w.setframerate(48000)
w.writeframes(bytes(4 * 96000)); w.close()"
"$vantry" process "$work/silence.wav" "$work/ref.wav" --set Hiss=-40 --set LowCut=300 --set HighCut=3400 --set Slope=24 \
  >/dev/null 2>"$work/process.log" || { cat "$work/process.log"; exit 1; }
levels=$(python3 - "$work/muse.wav" "$work/ref.wav" <<'PY'
import math, struct, sys, wave
for p in sys.argv[1:]:
    w = wave.open(p); n, c, width = w.getnframes(), w.getnchannels(), w.getsampwidth()
    if n < 24000 or width not in (2, 4): print("short"); break
    d = w.readframes(n)
    v = struct.unpack("<%d%s" % (n * c, "h" if width == 2 else "i"), d)
    full = 32768.0 if width == 2 else 2147483648.0
    s = sum(x * x for x in v) / len(v)
    print("%.1f" % (10 * math.log10(s / full ** 2)) if s else "-inf", end=" ")
PY
)
read -r got want <<<"$levels"
echo "Hiss -40 dB, 300 Hz - 3.4 kHz: MusE plays ${got} dBFS RMS, vantry process ${want} dBFS"
awk -v a="$got" -v b="$want" 'BEGIN { exit !(a + 0 == a && b + 0 == b && a - b < 0.5 && b - a < 0.5) }' ||
  fail "MusE's sound is not Vantry's with the project's values ($levels)"
exit $failed
