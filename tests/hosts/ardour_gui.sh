#!/usr/bin/env bash
# Vantry's editor inside Ardour 7's GUI (Xvfb, the dummy backend, no window
# manager; the setup is ardour_common.sh's). Then: the editor
# appears in Ardour's plug-in window in the theme its state holds (light for
# a fresh session), a click on its theme button turns it to the other, and
# Ctrl+S in Ardour saves the plug-in's state with that theme beside the
# preset name. Screenshots go to OUT_DIR.
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

rm -f "$out"/ardour-*.png
. "$here/ardour_common.sh"
ardour_setup "${3:-}" 0 0
ardour_start

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

# Ctrl+S typed right after the click, the pointer still on the editor (no
# window manager: the keyboard goes where the pointer is): the editor does
# not use it and Ardour saves. The plug-in's state, saved anew, holds the
# new theme and still the preset name.
xdotool key ctrl+s
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
xdotool key ctrl+q
for _ in $(seq 80); do kill -0 "$ardour" 2>/dev/null || break; sleep 0.25; done
kill -0 "$ardour" 2>/dev/null && fail "Ardour did not quit within 20 s"
wait "$ardour" 2>/dev/null
status=$?
[ "$status" -eq 0 ] || fail "Ardour exited with $status"
if grep -iE "segmentation|suil error|X Error|\[ERROR\]|\[FATAL\]" "$work/ardour.log"; then fail "errors in Ardour's output"; fi
echo "ardour gui: Vantry's editor open in Ardour, turned $(theme_name "$toggled"), theme $toggled saved; screenshots in $out"
