#!/usr/bin/env bash
# Vantry in lv2apply (lilv-utils), a host without urid:map that leaves the
# atom ports unconnected: stereo and mono files rendered with controls set
# by -c match `vantry process` with the same settings, after the latency.
#   lv2apply.sh VANTRY BUNDLE_DIR
here=$(dirname "$(realpath "$0")")
. "$here/foreign_host.sh"
. "$here/render_common.sh"
command -v lv2apply >/dev/null || { echo "SKIP: lv2apply (lilv-utils) is not installed"; exit 77; }
render_setup "$1" "$2"
uri=https://www.zel-audio.example/plugins/vantry
cd "$work"

lv2apply -i in.wav -o drive.wav -c Drive 60 -c HighCut 3000 -c Mode 1 "$uri#stereo" 2>lv2apply.log ||
  fail "lv2apply refused the stereo plug-in: $(cat lv2apply.log)"
reference drive-ref.wav in.wav --set Drive=60 --set HighCut=3000 --set Mode=1
same_sound drive.wav drive-ref.wav "stereo, Drive 60, High Cut 3 kHz, Mode Mono"

# HQ adds latency, which lv2apply leaves in.
lv2apply -i in.wav -o hq.wav -c HQ 1 -c Degrade 40 -c LowCut 300 "$uri#stereo" 2>lv2apply.log ||
  fail "lv2apply refused HQ: $(cat lv2apply.log)"
reference hq-ref.wav in.wav --set HQ=On --set Degrade=40 --set LowCut=300
same_sound hq.wav hq-ref.wav "stereo, HQ, Degrade 40, Low Cut 300 Hz"

lv2apply -i mono.wav -o mono-out.wav -c Drive 30 -c Hiss -40 "$uri#mono" 2>lv2apply.log ||
  fail "lv2apply refused the mono plug-in: $(cat lv2apply.log)"
reference mono-ref.wav mono.wav --set Drive=30 --set Hiss=-40
same_sound mono-out.wav mono-ref.wav "mono, Drive 30, Hiss -40 dB"
exit $failed
