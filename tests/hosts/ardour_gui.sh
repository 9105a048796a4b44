#!/usr/bin/env bash
# Vantry's editor inside Ardour 7's GUI (Xvfb, the dummy backend, no window
# manager). The session comes from ardour_session.lua (Vantry on a stereo
# track, preset "Telephone", Low Cut automated). Ardour reopens the plug-in
# windows a session was saved with open; the session is told so, the way
# Ardour writes it when a user leaves the editor open. Then: the editor
# appears in Ardour's plug-in window in the theme its state holds (light for
# a fresh session), a click on its theme button turns it to the other, and
# Ctrl+S in Ardour saves the plug-in's state with that theme beside the
# preset name. Screenshots go to OUT_DIR. Runs with a private HOME whose
# Ardour settings skip the first-run and audio setup dialogs.
#   ardour_gui.sh BUNDLE_DIR OUT_DIR [SESSION_DIR]
# SESSION_DIR: a session ardour_session.lua saved (by default the script
# makes one); the snapshot "vantry" is opened, on a copy.
set -u
here=$(dirname "$(realpath "$0")")
bundle=$(realpath "$1")
out=$(realpath -m "$2")
. "$(dirname "$(realpath "$0")")/foreign_host.sh"
skip_if_sanitized "$bundle"
for tool in Xvfb ardour ardour7-lua xdotool xwininfo xdpyinfo xwd convert; do
  command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }
done
[ -f "$bundle/manifest.ttl" ] && [ -f "$bundle/vantry_ui.so" ] || { echo "FAIL: no bundle at $bundle"; exit 1; }

work=$(mktemp -d)
export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data XDG_CACHE_HOME=$work/cache
mkdir -p "$HOME" "$XDG_CONFIG_HOME/ardour7" "$XDG_DATA_HOME" "$XDG_CACHE_HOME" "$out" "$work/lv2"
rm -f "$out"/ardour-*.png
cp -r "$bundle" "$work/lv2/vantry.lv2"
export LV2_PATH=$work/lv2
session=$work/session

pids=()
cleanup() {
  for p in "${pids[@]}"; do kill -9 "$p" 2>/dev/null; done
  wait 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT
fail() {
  echo "FAIL: $*"
  [ -n "${DISPLAY:-}" ] && xwd -root -silent 2>/dev/null | convert xwd:- "$out/ardour-failed.png" 2>/dev/null &&
    echo "the screen is in $out/ardour-failed.png"
  [ -f "$work/ardour.log" ] && tail -30 "$work/ardour.log"
  exit 1
}

if [ $# -ge 3 ]; then
  cp -r "$3" "$session"
else
  timeout -k 5 90 ardour7-lua "$here/ardour_session.lua" create "$session" "$work/values" >"$work/create.log" 2>&1 ||
    { cat "$work/create.log"; fail "ardour7-lua could not make the session"; }
fi
snapshot=$session/vantry.ardour
[ -f "$snapshot" ] || fail "no session at $snapshot"

# Ardour's settings: no first-run wizard (.a7), no memory warning, the dummy
# backend started without its dialog, on the device the session was saved
# with (a different one brings up a warning).
device=$(grep -oE '<EngineHints backend="Dummy" input-device="[^"]*"' "$snapshot" | cut -d'"' -f4)
[ -n "$device" ] || fail "the session was not made with the dummy backend"
touch "$XDG_CONFIG_HOME/ardour7/.a7"
echo '<instant><no-memory-warning/></instant>' >"$XDG_CONFIG_HOME/ardour7/instant.xml"
cat >"$XDG_CONFIG_HOME/ardour7/config" <<EOF
<?xml version="1.0" encoding="UTF-8"?>
<Ardour>
  <Config>
    <Option name="try-autostart-engine" value="1"/>
    <Option name="hide-dummy-backend" value="0"/>
    <Option name="check-announcements" value="0"/>
  </Config>
  <Extra>
    <AudioMIDISetup>
      <EngineStates>
        <State backend="None (Dummy)" driver="Normal Speed" device="$device" input-device="$device" output-device="$device" sample-rate="48000" buffer-size="1024" n-periods="0" input-latency="0" output-latency="0" active="1" use-buffered-io="0" midi-option="No MIDI I/O"/>
      </EngineStates>
    </AudioMIDISetup>
  </Extra>
</Ardour>
EOF

# Vantry's plug-in window ("P-<route id>-<processor id>") was open, with its
# own editor rather than Ardour's generic one.
ids=$(awk '/<Route / { match($0, / id="[0-9]+"/); route = substr($0, RSTART + 5, RLENGTH - 6) }
  /<Processor .*type="lv2" unique-id="https:\/\/www.zel-audio.example\/plugins\/vantry#stereo"/ {
    match($0, / id="[0-9]+"/); print route "-" substr($0, RSTART + 5, RLENGTH - 6) }' "$snapshot")
[ "$(wc -w <<<"$ids")" -eq 1 ] || fail "the session does not hold exactly one Vantry ($ids)"
grep -q "<Extra>" "$snapshot" && fail "the session already has GUI state"
sed -i "s|^</Session>|  <Extra><UI><Window name=\"P-$ids\" visible=\"1\" x-off=\"0\" y-off=\"0\" x-size=\"-1\" y-size=\"-1\" custom-ui=\"1\"/></UI></Extra>\n</Session>|" "$snapshot"

# Xvfb picks a free display and writes its number.
Xvfb -displayfd 3 -screen 0 1280x900x24 -nolisten tcp -noreset 3>"$work/display" >/dev/null 2>&1 &
pids+=($!)
for _ in $(seq 100); do [ -s "$work/display" ] && break; sleep 0.1; done
[ -s "$work/display" ] || fail "Xvfb did not start"
DISPLAY=:$(head -1 "$work/display")
export DISPLAY
for _ in $(seq 50); do xdpyinfo >/dev/null 2>&1 && break; sleep 0.1; done
xdpyinfo >/dev/null 2>&1 || fail "Xvfb does not answer on $DISPLAY"

ardour --no-announcements --no-splash "$snapshot" >"$work/ardour.log" 2>&1 &
ardour=$!
pids+=("$ardour")
frame=""
for _ in $(seq 240); do
  frame=$(xdotool search --name '^Vantry: ' 2>/dev/null | head -1)
  [ -n "$frame" ] && break
  kill -0 "$ardour" 2>/dev/null || fail "Ardour exited"
  sleep 0.25
done
[ -n "$frame" ] || fail "Ardour opened no Vantry window within 60 s"
main=$(xdotool search --name '^vantry - Ardour' 2>/dev/null | head -1)
[ -n "$main" ] || fail "no Ardour main window for the session"

# The editor is the innermost (most indented) window of Ardour's plug-in window.
editor=$(xwininfo -tree -id "$frame" | awk 'match($0, /^ +0x[0-9a-f]+/) && RLENGTH > depth { depth = RLENGTH; id = $1 }
  END { print id }')
[ -n "$editor" ] || fail "Ardour's plug-in window holds no editor"
geometry() { xwininfo -id "$1" | awk -v k="$2" '$0 ~ k { print $NF }'; }
ex=$(geometry "$editor" "Absolute upper-left X") ey=$(geometry "$editor" "Absolute upper-left Y")
ew=$(geometry "$editor" "Width") eh=$(geometry "$editor" "Height")
fx=$(geometry "$frame" "Absolute upper-left X") fy=$(geometry "$frame" "Absolute upper-left Y")
fw=$(geometry "$frame" "Width") fh=$(geometry "$frame" "Height")
[ "$ew" -ge 400 ] && [ "$eh" -ge 300 ] || fail "the editor is ${ew}x$eh"
echo "Ardour's Vantry window ${fw}x$fh+$fx+$fy, the editor ${ew}x$eh+$ex+$ey"

# The screen now, in $work/screen.png; the share of the editor's pixels
# within 4 % of the light theme's beige paper, and the editor's mean grey.
look() {
  xwd -root -silent | convert xwd:- "$work/screen.png"
  beige=$(convert "$work/screen.png" -crop "${ew}x$eh+$ex+$ey" +repage -fuzz 4% -fill white -opaque 'rgb(240,236,225)' \
    -fill black +opaque white -format '%[fx:mean]' info:)
  grey=$(convert "$work/screen.png" -crop "${ew}x$eh+$ex+$ey" +repage -colorspace Gray -format '%[fx:int(255*mean)]' info:)
}
# Does the editor show THEME: 0, the paper covering most of it; 1, dark?
shows() {
  if [ "$1" -eq 0 ]; then awk -v s="$beige" 'BEGIN { exit !(s >= 0.4) }'; else [ "$grey" -lt 90 ]; fi
}
# Polls the screen until the editor shows THEME, at most 15 s.
await() {
  for _ in $(seq 30); do
    look
    shows "$1" && return 0
    sleep 0.5
  done
  return 1
}
theme_name() { if [ "$1" -eq 0 ]; then echo light; else echo dark; fi; }

# The theme the session's plug-in state holds (0 for a fresh one).
plugin_dir=$session/plugins/${ids#*-}
state_dir=$(grep -oE 'state-dir="state[0-9]+"' "$snapshot" | cut -d'"' -f2)
theme=$(grep -oE '<https://www.zel-audio.example/plugins/vantry#theme> "[01]"' "$plugin_dir/$state_dir/state.ttl" | cut -d'"' -f2)
[ -n "$theme" ] || fail "the session's plug-in state holds no theme"
toggled=$((1 - theme))

await "$theme"
found=$?
cp "$work/screen.png" "$out/ardour-gui.png"
convert "$work/screen.png" -crop "${fw}x$fh+$fx+$fy" +repage "$out/ardour-editor.png"
[ $found -eq 0 ] || fail "the editor does not show its $(theme_name "$theme") theme (beige $beige, mean grey $grey)"
colours=$(convert "$work/screen.png" -crop "${ew}x$eh+$ex+$ey" +repage -format %k info:)
[ "$colours" -gt 50 ] || fail "the editor looks empty ($colours colours)"
echo "the editor shows its $(theme_name "$theme") theme: beige $beige, mean grey $grey, $colours colours"

# Ardour leaves the keyboard focus elsewhere; a first click into the editor
# only activates it (buttons, unlike sliders, do not take that click). So:
# a click on the empty panel below the filter shape, then one on the theme
# button, bottom right.
xdotool mousemove $((ex + ew - 30)) $((ey + eh - 90)) sleep 0.2 click 1
sleep 0.5
look
shows "$theme" || fail "the click on the empty panel changed the editor (beige $beige, mean grey $grey)"
xdotool mousemove $((ex + ew - 12)) $((ey + eh - 48)) sleep 0.2 click 1
await "$toggled"
found=$?
convert "$work/screen.png" -crop "${fw}x$fh+$fx+$fy" +repage "$out/ardour-editor-toggled.png"
[ $found -eq 0 ] || fail "the theme button did not turn the editor $(theme_name "$toggled") (beige $beige, mean grey $grey)"
echo "the theme button turned it $(theme_name "$toggled"): beige $beige, mean grey $grey"

# Ctrl+S in Ardour: the plug-in's state, saved anew, holds the new theme
# and still the preset name.
xdotool key --window "$main" ctrl+s
saved=""
for _ in $(seq 40); do
  saved=$(grep -oE 'state-dir="state[0-9]+"' "$snapshot" 2>/dev/null | cut -d'"' -f2)
  [ -n "$saved" ] && [ "$saved" != "$state_dir" ] && break
  sleep 0.25
done
[ -n "$saved" ] && [ "$saved" != "$state_dir" ] || fail "Ctrl+S saved no new plug-in state"
ttl=$plugin_dir/$saved/state.ttl
grep -qF "<https://www.zel-audio.example/plugins/vantry#theme> \"$toggled\"^^xsd:int" "$ttl" ||
  { cat "$ttl"; fail "the saved state lacks theme $toggled"; }
grep -qF '<https://www.zel-audio.example/plugins/vantry#presetName> "Telephone"' "$ttl" ||
  { cat "$ttl"; fail "the saved state lost the preset name"; }

# Ctrl+Q: Ardour closes the editor and quits by itself.
xdotool key --window "$main" ctrl+q
for _ in $(seq 80); do kill -0 "$ardour" 2>/dev/null || break; sleep 0.25; done
kill -0 "$ardour" 2>/dev/null && fail "Ardour did not quit within 20 s"
wait "$ardour" 2>/dev/null
status=$?
[ "$status" -eq 0 ] || fail "Ardour exited with $status"
if grep -iE "segmentation|suil error|X Error|\[ERROR\]|\[FATAL\]" "$work/ardour.log"; then fail "errors in Ardour's output"; fi
echo "ardour gui: Vantry's editor open in Ardour, turned $(theme_name "$toggled"), theme $toggled saved; screenshots in $out"
