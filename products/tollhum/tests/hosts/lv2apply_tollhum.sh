#!/usr/bin/env bash
# Tollhum in lv2apply (lilv-utils), a host without urid:map that leaves the
# atom ports unconnected: stereo and mono files rendered with controls set
# by -c match `tollhum process` with the same settings (Tollhum has no
# latency, so the comparison finds none). The strings ring for seconds and
# their float rounding depends on the block length (lv2apply's is not
# process's), so a render may stray by 2 LSB of 16 bits. The meter's
# output ports stay unread there.
#   lv2apply_tollhum.sh TOLLHUM BUNDLE_DIR
hosts=$(dirname "$(realpath "$0")")/../../../../tests/hosts
. "$hosts/foreign_host.sh"
. "$hosts/render_common.sh"
command -v lv2apply >/dev/null || { echo "SKIP: lv2apply (lilv-utils) is not installed"; exit 77; }
render_setup "$1" "$2"
uri=https://www.zel-audio.example/plugins/tollhum
cd "$work"

lv2apply -i in.wav -o chord.wav -c Note 57 -c Chord 3 -c Decay 70 -c Mix 60 "$uri#stereo" 2>lv2apply.log ||
  fail "lv2apply refused the stereo plug-in: $(cat lv2apply.log)"
reference chord-ref.wav in.wav --set Note=57 --set Chord=3 --set Decay=70 --set Mix=60
same_sound chord.wav chord-ref.wav "stereo, Note 57, Chord Major, Decay 70, Mix 60" 2

lv2apply -i in.wav -o wide.wav -c Fine -30 -c Width 100 -c Tone 20 -c Output -6 "$uri#stereo" 2>lv2apply.log ||
  fail "lv2apply refused the stereo plug-in: $(cat lv2apply.log)"
reference wide-ref.wav in.wav --set Fine=-30 --set Width=100 --set Tone=20 --set Output=-6
same_sound wide.wav wide-ref.wav "stereo, Fine -30, Width 100, Tone 20, Output -6 dB" 2

# Output -6 dB: these strings peak above full scale, which lv2apply's
# 16-bit writer wraps around instead of clipping.
lv2apply -i mono.wav -o mono-out.wav -c Note 64 -c Chord 2 -c Mix 80 -c Output -6 "$uri#mono" 2>lv2apply.log ||
  fail "lv2apply refused the mono plug-in: $(cat lv2apply.log)"
reference mono-ref.wav mono.wav --set Note=64 --set Chord=2 --set Mix=80 --set Output=-6
same_sound mono-out.wav mono-ref.wav "mono, Note 64, Chord Fifths, Mix 80, Output -6 dB" 2
exit $failed
