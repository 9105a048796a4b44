#!/usr/bin/env bash
# Vantry as GStreamer's lv2 elements (gst-launch-1.0): renders match
# `vantry process` with the same settings, after the latency. GStreamer
# starts every toggle port at off whatever its default, so Power must be
# set (MasterOnOff=true); without it the element passes the sound through.
#   gstreamer.sh VANTRY BUNDLE_DIR
here=$(dirname "$(realpath "$0")")
. "$here/foreign_host.sh"
. "$here/render_common.sh"
command -v gst-launch-1.0 >/dev/null || { echo "SKIP: gst-launch-1.0 is not installed"; exit 77; }
render_setup "$1" "$2"
cd "$work"
export GST_REGISTRY=$work/gst-registry.bin
element=www-zel-audio-example-plugins-vantry
gst-inspect-1.0 "$element-stereo" >/dev/null 2>&1 ||
  { echo "SKIP: GStreamer's lv2 elements (gstreamer1.0-plugins-bad) are not installed"; exit 77; }

# gst IN OUT ELEMENT PROPERTIES...
gst() {
  local in=$1 out=$2 name=$3
  shift 3
  gst-launch-1.0 -q filesrc location="$in" ! wavparse ! audioconvert ! "$name" "$@" \
    ! audioconvert dithering=none ! audio/x-raw,format=S16LE ! wavenc ! filesink location="$out" >gst.log 2>&1 ||
    fail "gst-launch-1.0 failed on $out: $(cat gst.log)"
}

gst in.wav drive.wav "$element-stereo" MasterOnOff=true Drive=60 HighCut=3000 Mode=1
reference drive-ref.wav in.wav --set Drive=60 --set HighCut=3000 --set Mode=1
same_sound drive.wav drive-ref.wav "stereo, Drive 60, High Cut 3 kHz, Mode Mono"

gst in.wav hq.wav "$element-stereo" MasterOnOff=true HQ=true Degrade=40 LowCut=300
reference hq-ref.wav in.wav --set HQ=On --set Degrade=40 --set LowCut=300
same_sound hq.wav hq-ref.wav "stereo, HQ, Degrade 40, Low Cut 300 Hz"

gst mono.wav mono-out.wav "$element-mono" MasterOnOff=true Drive=30 Hiss=-40
reference mono-ref.wav mono.wav --set Drive=30 --set Hiss=-40
same_sound mono-out.wav mono-ref.wav "mono, Drive 30, Hiss -40 dB"

# The host's own limit: Power left alone is off.
gst in.wav off.wav "$element-stereo" Drive=60
same_sound off.wav in.wav "Power not set (GStreamer's off): the input"
exit $failed
