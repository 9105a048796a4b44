#!/usr/bin/env bash
# vantry process: bad input is refused with one line and exit 2, leaving no
# output behind; real renders keep the rate, channels and length, line up
# with the input, and do what their settings say.
#   vantry_process.sh VANTRY
set -u
vantry=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0
fail() { echo "FAIL: $*"; failed=1; }
py() { python3 - "$@"; }

# WAV files: a stereo mix of a tone and noise, the same in mono, white
# noise, a three-channel file and a file that is not sound at all.
py "$work" <<'PY'
import math, random, struct, sys, wave
random.seed(7)
def write(name, channels, frames, sample):
    w = wave.open(f"{sys.argv[1]}/{name}", "wb")
    w.setnchannels(channels); w.setsampwidth(2); w.setframerate(44100)
    w.writeframes(b"".join(struct.pack("<" + "h" * channels, *sample(i)) for i in range(frames)))
    w.close()
tone = lambda i: int(9000 * math.sin(2 * math.pi * 330 * i / 44100)) + random.randint(-2000, 2000)
write("stereo.wav", 2, 30000, lambda i: (tone(i), random.randint(-6000, 6000)))
write("mono.wav", 1, 12345, lambda i: (tone(i),))
write("noise.wav", 2, 44100, lambda i: (random.randint(-8000, 8000), random.randint(-8000, 8000)))
write("three.wav", 3, 1000, lambda i: (0, 0, 0))
PY
echo "not sound" >"$work/text.wav"

# refuse WHY ARGS...: exit 2, one line naming the problem, no output file.
refuse() {
  local why=$1
  shift
  rm -f "$work/out.wav"
  (cd "$work" && "$vantry" process "$@" >"$work/stdout" 2>"$work/err")
  local got=$?
  [ "$got" = 2 ] || fail "process $* exited $got, expected 2"
  [ "$(wc -l <"$work/err")" = 1 ] || fail "process $*: not one line: $(cat "$work/err")"
  grep -q "^vantry process: .*$why" "$work/err" || fail "process $*: '$(cat "$work/err")' does not say '$why'"
  [ -e "$work/out.wav" ] && fail "process $* left out.wav behind"
  ls -A "$work" | grep -q vantry- && fail "process $* left a temporary file"
}

refuse "needs an input and an output"
refuse "needs an input and an output" stereo.wav
refuse "unknown option --loud" stereo.wav out.wav --loud
refuse "cannot read missing.wav" missing.wav out.wav
refuse "cannot read text.wav" text.wav out.wav
refuse "3 channels" three.wav out.wav
refuse "no factory preset is named \"Nope\"" stereo.wav out.wav --preset Nope
refuse "no parameter has the code name \"Volume\"" stereo.wav out.wav --set Volume=3
refuse "CODENAME=VALUE" stereo.wav out.wav --set Drive
refuse "needs a number" stereo.wav out.wav --set Drive=lots
refuse "--format is" stereo.wav out.wav --format mp3
refuse "--preset needs a value" stereo.wav out.wav --preset
refuse "overwrite the input" stereo.wav ./stereo.wav

# run ARGS...: succeeds with one summary line on stderr (no terminal here).
run() {
  (cd "$work" && "$vantry" process "$@" >"$work/stdout" 2>"$work/err") || fail "process $* failed: $(cat "$work/err")"
  grep -q "frames, .* Hz, .* real time" "$work/err" || fail "process $*: no summary: $(cat "$work/err")"
}

# Power off is the input, byte for byte; so is a dry-only mix with HQ on,
# whose latency is taken out.
run stereo.wav off.wav --set MasterOnOff=0 --set Drive=90
cmp -s "$work/stereo.wav" "$work/off.wav" || fail "power off changed the sound"
run stereo.wav dry.wav --set HQ=On --set Mix=0
cmp -s "$work/stereo.wav" "$work/dry.wav" || fail "the dry signal with HQ on is not the input lined up"

# Out of range: clamped, with a warning, still written.
run stereo.wav loud.wav --set Output=40
grep -q "warning: Output=40 is outside -24 to 24; using 24" "$work/err" || fail "no clamp warning: $(cat "$work/err")"

# One channel stays one channel, at the same rate and length; FLAC on request.
run mono.wav mono-out.wav --set Mode=Mid/Side --set Degrade=40
run mono.wav mono.flac --format flac
[ "$(head -c 4 "$work/mono.flac")" = "fLaC" ] || fail "--format flac did not write FLAC"

# Telephone on white noise: the band above 5 kHz nearly gone. The second
# difference of a signal stands for its highs (its gain is 4 sin^2(pi f / fs)).
run noise.wav phone.wav --preset Telephone
py "$work" <<'PY' || failed=1
import struct, sys, wave
def read(name):
    w = wave.open(f"{sys.argv[1]}/{name}")
    data = w.readframes(w.getnframes())
    return w, struct.unpack("<" + "h" * (len(data) // 2), data)
ok = True
for src, dst in (("mono.wav", "mono-out.wav"), ("noise.wav", "phone.wav")):
    a, _ = read(src)
    b, _ = read(dst)
    if (a.getnchannels(), a.getframerate(), a.getnframes()) != (b.getnchannels(), b.getframerate(), b.getnframes()):
        print(f"FAIL: {dst} is {b.getnchannels()} ch {b.getframerate()} Hz {b.getnframes()} frames, "
              f"{src} {a.getnchannels()} ch {a.getframerate()} Hz {a.getnframes()} frames")
        ok = False
def highs(samples):
    left = samples[0::2]
    d2 = [left[i] - 2 * left[i - 1] + left[i - 2] for i in range(2, len(left))]
    rms = lambda v: (sum(x * x for x in v) / len(v)) ** 0.5
    return rms(d2) / max(rms(left), 1e-9)
_, noise = read("noise.wav")
_, phone = read("phone.wav")
if not highs(phone) < 0.3 * highs(noise):
    print(f"FAIL: Telephone left the highs at {highs(phone):.3f} against {highs(noise):.3f}")
    ok = False
sys.exit(0 if ok else 1)
PY

[ "$failed" = 0 ] && echo "vantry process: all cases passed"
exit "$failed"
