# Sourced by the tests that render a sound file through the plug-in in a
# headless host (lv2apply, ecasound, GStreamer, PipeWire): a private work
# folder with the bundle on LV2_PATH, a test signal, the reference render
# by `vantry process`, and the comparison of the two.
#   render_setup VANTRY BUNDLE_DIR     sets $work, $vantry, LV2_PATH; writes $work/in.wav
#   reference OUT.wav --set ...        renders in.wav with `vantry process`
#   same_sound HOST.wav REF.wav WHAT [LSB]
#                                      fails unless the host's render is the
#                                      reference (after the latency, found
#                                      by the comparison) within LSB (1)
set -u
failed=0
fail() { echo "FAIL: $*"; failed=1; }

render_setup() {
  vantry=$(realpath "$1")
  local bundle
  bundle=$(realpath "$2")
  skip_if_sanitized "$bundle"
  [ -x "$vantry" ] || { echo "FAIL: no vantry at $vantry"; exit 1; }
  [ -f "$bundle/manifest.ttl" ] || { echo "FAIL: no bundle at $bundle"; exit 1; }
  work=$(mktemp -d)
  trap 'rm -rf "$work"' EXIT
  mkdir -p "$work/lv2"
  cp -r "$bundle" "$work/lv2/$(basename "$bundle")"
  export LV2_PATH=$work/lv2 HOME=$work
  # One second of stereo at 48 kHz, 16 bits: a tone with noise on the left,
  # noise on the right, and a mono mix of it.
  python3 - "$work" <<'PY'
import math, random, struct, sys, wave
random.seed(15)
def write(name, channels, sample):
    w = wave.open(f"{sys.argv[1]}/{name}", "wb")
    w.setnchannels(channels); w.setsampwidth(2); w.setframerate(48000)
    w.writeframes(b"".join(struct.pack("<" + "h" * channels, *sample(i)) for i in range(48000)))
    w.close()
tone = lambda i: int(9000 * math.sin(2 * math.pi * 330 * i / 48000)) + random.randint(-2000, 2000)
write("in.wav", 2, lambda i: (tone(i), random.randint(-6000, 6000)))
write("mono.wav", 1, lambda i: (tone(i),))
PY
}

reference() {
  local out=$1
  shift
  "$vantry" process "$@" "$out" >/dev/null 2>"$work/reference.log" || { cat "$work/reference.log"; exit 1; }
}

# Prints "max LSB shift error-dB" and exits 1 when the renders differ by
# more than $3 (1) LSB at every shift from 0 to 1024 frames.
compare_renders() {
  python3 - "$1" "$2" "${3:-1}" <<'PY'
import math, struct, sys, wave
def read(p):
    w = wave.open(p)
    n, c = w.getnframes(), w.getnchannels()
    d = struct.unpack("<" + "h" * (n * c), w.readframes(n))
    return [d[i::c] for i in range(c)]
host, ref = read(sys.argv[1]), read(sys.argv[2])
tol = int(sys.argv[3])
if len(host) != len(ref):
    print(f"{len(host)} channels, expected {len(ref)}"); sys.exit(1)
best = None
for shift in range(0, 1025):
    worst = 0
    for h, r in zip(host, ref):
        n = min(len(h) - shift, len(r))
        if n < len(r) // 2: worst = 1 << 30; break
        # A quick look at every 64th sample first: most shifts fail at once.
        worst = max(worst, max(abs(h[i + shift] - r[i]) for i in range(0, n, 64)))
        if worst > tol: break
        worst = max(worst, max(abs(h[i + shift] - r[i]) for i in range(n)))
    if worst <= tol:
        se = sum((h[i + shift] - r[i]) ** 2 for h, r in zip(host, ref) for i in range(min(len(h) - shift, len(r))))
        ss = sum(v * v for r in ref for v in r) or 1
        print(f"max {worst} LSB at a latency of {shift} frames, {10 * math.log10(se / ss) if se else -math.inf:.1f} dB")
        sys.exit(0)
print(f"no latency from 0 to 1024 frames lines the renders up within {tol} LSB"); sys.exit(1)
PY
}

same_sound() {
  local got=$1 want=$2 what=$3 lsb=${4:-1} result
  [ -s "$got" ] || { fail "$what: the host wrote nothing"; return; }
  if result=$(compare_renders "$got" "$want" "$lsb"); then
    echo "$what: $result"
  else
    fail "$what: $result"
  fi
}
