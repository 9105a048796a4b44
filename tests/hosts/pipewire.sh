#!/usr/bin/env bash
# Vantry's Telephone preset as a PipeWire filter-chain microphone
# (products/vantry/docs/pipewire/vantry-telephone.conf, as shipped): a
# private PipeWire daemon with a dummy driver and WirePlumber load the
# configuration; a tone pair played into the filter's input comes out of
# "Vantry Telephone Microphone" band-limited as the preset says: 1 kHz
# passes, 8 kHz (above High Cut's 3.4 kHz) and 100 Hz (below Low Cut's
# 300 Hz) are cut. Then a stereo filter with other settings renders a file
# that matches `vantry process` within 1 LSB. Skips without PipeWire,
# WirePlumber or a D-Bus session.
#   pipewire.sh VANTRY BUNDLE_DIR
here=$(dirname "$(realpath "$0")")
. "$here/foreign_host.sh"
. "$here/render_common.sh"
for tool in pipewire wireplumber pw-play pw-record pw-link dbus-daemon; do
  command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }
done
[ -f /usr/lib/x86_64-linux-gnu/pipewire-0.3/libpipewire-module-filter-chain.so ] ||
  ls /usr/lib/*/pipewire-0.3/libpipewire-module-filter-chain.so >/dev/null 2>&1 ||
  { echo "SKIP: PipeWire's filter-chain module is not installed"; exit 77; }
conf=$here/../../products/vantry/docs/pipewire/vantry-telephone.conf
[ -f "$conf" ] || { echo "FAIL: no $conf"; exit 1; }
render_setup "$1" "$2"
cd "$work"

# The daemon: no devices, a dummy driver at 48 kHz; the shipped filter as
# a drop-in, where a user puts it.
export XDG_CONFIG_HOME=$work/config XDG_RUNTIME_DIR=$work/run PIPEWIRE_RUNTIME_DIR=$work/run
mkdir -p "$XDG_CONFIG_HOME/pipewire/pipewire.conf.d" "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"
cp "$conf" "$XDG_CONFIG_HOME/pipewire/pipewire.conf.d/"
cat >"$XDG_CONFIG_HOME/pipewire/pipewire.conf" <<'CONF'
context.properties = {
    core.daemon = true
    core.name = pipewire-0
    default.clock.rate = 48000
}
context.spa-libs = {
    audio.convert.* = audioconvert/libspa-audioconvert
    support.* = support/libspa-support
}
context.modules = [
    { name = libpipewire-module-protocol-native }
    { name = libpipewire-module-metadata }
    { name = libpipewire-module-spa-node-factory }
    { name = libpipewire-module-client-node }
    { name = libpipewire-module-access args = { } }
    { name = libpipewire-module-adapter }
    { name = libpipewire-module-link-factory }
]
context.objects = [
    { factory = metadata args = { metadata.name = default } }
    { factory = spa-node-factory
        args = {
            factory.name = support.node.driver
            node.name = Dummy-Driver
            node.group = pipewire.dummy
            priority.driver = 20000
        }
    }
]
CONF

# A second filter for the exact comparison: stereo Vantry with Drive,
# High Cut and Mode set, and no Hiss (a noise that has run since the filter
# started cannot line up with a fresh render). Its input takes only what is
# played into it, not the default microphone (the Telephone one).
cat >"$XDG_CONFIG_HOME/pipewire/pipewire.conf.d/vantry-exact.conf" <<'CONF'
context.modules = [
  { name = libpipewire-module-filter-chain
    args = {
      node.description = "Vantry exact"
      filter.graph = {
        nodes = [ { type = lv2 name = vantry plugin = "https://www.zel-audio.example/plugins/vantry#stereo"
                    control = { MasterOnOff = 1 Drive = 60 HighCut = 3000 Mode = 1 } } ]
      }
      capture.props  = { node.name = "capture.vantry_exact" audio.channels = 2 audio.position = [ FL FR ] node.autoconnect = false }
      playback.props = { node.name = "vantry_exact" media.class = Audio/Source audio.channels = 2 audio.position = [ FL FR ] }
    }
  }
]
CONF

pids=()
stop_all() {
  local p
  for p in "${pids[@]}"; do kill "$p" 2>/dev/null; done
  wait 2>/dev/null
  rm -rf "$work"
}
trap stop_all EXIT
pipewire >pipewire.log 2>&1 &
pids+=($!)
for _ in $(seq 50); do pw-link -o 2>/dev/null | grep -q . && break; [ -S "$XDG_RUNTIME_DIR/pipewire-0" ] && break; sleep 0.1; done
# WirePlumber sets the streams' ports up and links them; it wants a D-Bus
# session bus, here one of its own.
dbus-daemon --session --nofork --print-address=3 3>bus-address 2>dbus.log &
pids+=($!)
for _ in $(seq 50); do [ -s bus-address ] && break; sleep 0.1; done
[ -s bus-address ] || { echo "SKIP: no D-Bus session bus starts here"; exit 77; }
DBUS_SESSION_BUS_ADDRESS=$(head -1 bus-address)
export DBUS_SESSION_BUS_ADDRESS
wireplumber >wireplumber.log 2>&1 &
pids+=($!)
for _ in $(seq 100); do pw-link -o 2>/dev/null | grep -q "^vantry_telephone:" && break; sleep 0.1; done
pw-link -o 2>/dev/null | grep -q "^vantry_telephone:" ||
  { tail -5 pipewire.log; fail "PipeWire shows no Vantry Telephone Microphone"; exit 1; }

# 1 kHz, 8 kHz and 100 Hz at -20 dBFS each, two seconds, mono.
python3 - <<'PY'
import math, struct, wave
w = wave.open("tones.wav", "wb"); w.setnchannels(1); w.setsampwidth(2); w.setframerate(48000)
w.writeframes(b"".join(struct.pack("<h", int(3276 * sum(math.sin(2 * math.pi * f * i / 48000) for f in (1000, 8000, 100))))
                       for i in range(96000)))
w.close()
PY
pw-record -P '{ node.name = vantry-test-record }' --target vantry_telephone --rate 48000 --channels 1 --format s16 \
  recorded.wav >record.log 2>&1 &
recorder=$!
pids+=($recorder)
sleep 0.5
timeout 20 pw-play -P '{ node.name = vantry-test-play }' --target capture.vantry_telephone tones.wav >play.log 2>&1 ||
  fail "pw-play could not play into the filter: $(cat play.log)"
sleep 0.5
kill -INT "$recorder"
wait "$recorder" 2>/dev/null

# Each tone's level in the loudest second of the recording, against the input's.
levels=$(python3 - <<'PY'
import math, struct, wave
def read(p):
    w = wave.open(p); n = w.getnframes()
    return struct.unpack("<" + "h" * n, w.readframes(n))
def level(s, f):
    # Goertzel over whole cycles of f, in dB re full scale.
    k = 2 * math.cos(2 * math.pi * f / 48000); a = b = 0.0
    for x in s: a, b = x / 32768 + k * a - b, a
    p = a * a + b * b - k * a * b
    return 10 * math.log10(max(p, 1e-30) * 4 / len(s) ** 2)
rec = read("recorded.wav")
if len(rec) < 48000: print("short", len(rec)); raise SystemExit
start = max(range(0, len(rec) - 48000, 4800), key=lambda i: sum(x * x for x in rec[i:i + 48000:16]))
rec = rec[start:start + 48000]; inp = read("tones.wav")[24000:72000]
print(" ".join(f"{level(rec, f) - level(inp, f):.1f}" for f in (1000, 8000, 100)))
PY
)
read -r k1 k8 h100 <<<"$levels"
echo "Telephone through PipeWire, output against input: 1 kHz ${k1} dB, 8 kHz ${k8} dB, 100 Hz ${h100} dB"
awk -v a="$k1" -v b="$k8" -v c="$h100" 'BEGIN { exit !(a + 0 == a && a > -12 && a < 12 && b < a - 24 && c < a - 24) }' ||
  fail "the microphone does not sound like the Telephone preset ($levels)"
# The same filter sample for sample: in.wav played into the stereo filter
# and recorded from it matches `vantry process` with the same settings. The
# filter runs on silence before the file starts; the recording is cut where
# its sound starts, at the place where the reference's starts. PipeWire
# rounds to 16 bits where `vantry process` may not: 1 LSB apart at most.
pw-record -P '{ node.name = vantry-test-record-exact }' --target vantry_exact --rate 48000 --channels 2 --format s16 \
  exact.wav >record-exact.log 2>&1 &
recorder=$!
pids+=($recorder)
sleep 0.5
# pw-play drops a file's last part shorter than the graph's quantum (1024
# frames here): the file goes in with silence after it.
python3 -c '
import wave; w = wave.open("in.wav"); d = w.readframes(w.getnframes())
o = wave.open("in-padded.wav", "wb"); o.setnchannels(2); o.setsampwidth(2); o.setframerate(48000)
o.writeframes(d + bytes(4 * 4096)); o.close()'
timeout 20 pw-play -P '{ node.name = vantry-test-play-exact }' --target capture.vantry_exact in-padded.wav >play-exact.log 2>&1 ||
  fail "pw-play could not play into the stereo filter: $(cat play-exact.log)"
sleep 0.5
kill -INT "$recorder"
wait "$recorder" 2>/dev/null
reference exact-ref.wav in.wav --set Drive=60 --set HighCut=3000 --set Mode=1
python3 - <<'PY'
import struct, wave
def frames(p):
    w = wave.open(p); n = w.getnframes()
    return w, struct.unpack("<" + "h" * (n * 2), w.readframes(n))
def first_sound(d):
    return next((i // 2 for i, v in enumerate(d) if v), len(d) // 2)
_, ref = frames("exact-ref.wav")
w, rec = frames("exact.wav")
cut = max(0, first_sound(rec) - first_sound(ref))
out = wave.open("exact-cut.wav", "wb"); out.setnchannels(2); out.setsampwidth(2); out.setframerate(48000)
out.writeframes(struct.pack("<" + "h" * (len(rec) - 2 * cut), *rec[2 * cut:])); out.close()
PY
same_sound exact-cut.wav exact-ref.wav "PipeWire, stereo, Drive 60, High Cut 3 kHz, Mode Mono"
exit $failed
