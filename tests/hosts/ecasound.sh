#!/usr/bin/env bash
# Vantry in ecasound (-elv2:URI,values): the plug-in is listed, and stereo
# and mono renders match `vantry process` with the same settings, after the
# latency. ecasound takes the values in port order (Power, Degrade, Drive,
# Output, Low Cut, High Cut, Slope, Mix, Mode, Hiss, HQ, Width) and sets
# the ones left out to 0, not to their defaults: every render names all.
#   ecasound.sh VANTRY BUNDLE_DIR
here=$(dirname "$(realpath "$0")")
. "$here/foreign_host.sh"
. "$here/render_common.sh"
command -v ecasound >/dev/null || { echo "SKIP: ecasound is not installed"; exit 77; }
render_setup "$1" "$2"
uri=https://www.zel-audio.example/plugins/vantry
cd "$work"

ecasound -c -D <<<"lv2-register" 2>&1 | grep -q -- "-elv2:$uri#stereo,'Power','Degrade'" ||
  fail "ecasound does not list the stereo plug-in"

# eca IN OUT PLUGIN VALUES
eca() {
  timeout 60 ecasound -q -f:s16_le,"$(python3 -c "import wave,sys; print(wave.open(sys.argv[1]).getnchannels())" "$1")",48000 \
    -i "$1" -o "$2" "-elv2:$uri#$3,$4" >ecasound.log 2>&1 || fail "ecasound failed on $2: $(cat ecasound.log)"
}

eca in.wav drive.wav stereo 1,0,60,0,20,3000,12,100,1,-96,0,100
reference drive-ref.wav in.wav --set Drive=60 --set HighCut=3000 --set Mode=1
same_sound drive.wav drive-ref.wav "stereo, Drive 60, High Cut 3 kHz, Mode Mono"

eca in.wav hq.wav stereo 1,40,0,0,300,20000,12,100,0,-96,1,100
reference hq-ref.wav in.wav --set HQ=On --set Degrade=40 --set LowCut=300
same_sound hq.wav hq-ref.wav "stereo, HQ, Degrade 40, Low Cut 300 Hz"

eca mono.wav mono-out.wav mono 1,0,30,0,20,20000,12,100,0,-40,0,100
reference mono-ref.wav mono.wav --set Drive=30 --set Hiss=-40
same_sound mono-out.wav mono-ref.wav "mono, Drive 30, Hiss -40 dB"
exit $failed
