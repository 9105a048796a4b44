# Sourced by the tests of Vantry's editor in Ardour 7's GUI (Xvfb, the dummy
# backend). The session comes from ardour_session.lua (Vantry on a stereo
# track, preset "Telephone", Low Cut automated). Ardour reopens the plug-in
# windows a session was saved with open; the session is told so, the way
# Ardour writes it when a user leaves the editor open. Runs with a private
# HOME whose Ardour settings skip the first-run and audio setup dialogs.
#   ardour_setup SESSION_DIR X Y [LUA]
#                                  the session (a copy of SESSION_DIR, or a
#                                  new one made by LUA, ardour_session.lua
#                                  by default), Ardour's settings and Xvfb;
#                                  each Vantry's window opens at X,Y, the
#                                  next 620 pixels to the right. Sets $ids
#                                  (route-processor ids, of every Zel
#                                  plug-in). Needs $bundle, $out, $here;
#                                  $more_bundles: other bundles to install.
#   ardour_window_manager          starts openbox (click to focus)
#   ardour_start                   starts Ardour and waits for Vantry's
#                                  window: sets $ardour, $frame, $main,
#                                  $editor and the geometries e{x,y,w,h}
#                                  (the editor) and f{x,y,w,h} (its window)
# fail prints the screen to $out/ardour-failed.png and Ardour's log.
set -u
pids=()
cleanup() {
  for p in "${pids[@]}"; do kill -9 "$p" 2>/dev/null; done
  wait 2>/dev/null
  rm -rf "$work"
}
fail() {
  echo "FAIL: $*"
  [ -n "${DISPLAY:-}" ] && xwd -root -silent 2>/dev/null | convert xwd:- "$out/ardour-failed.png" 2>/dev/null &&
    echo "the screen is in $out/ardour-failed.png"
  [ -f "$work/ardour.log" ] && tail -30 "$work/ardour.log"
  exit 1
}

ardour_setup() {
  local from=$1 x=$2 y=$3 lua=${4:-$here/ardour_session.lua} id windows=""
  work=$(mktemp -d)
  trap cleanup EXIT
  export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data XDG_CACHE_HOME=$work/cache
  mkdir -p "$HOME" "$XDG_CONFIG_HOME/ardour7" "$XDG_DATA_HOME" "$XDG_CACHE_HOME" "$out" "$work/lv2"
  local b
  for b in "$bundle" ${more_bundles:-}; do cp -r "$b" "$work/lv2/$(basename "$b")"; done
  export LV2_PATH=$work/lv2
  session=$work/session
  if [ -n "$from" ]; then
    cp -r "$from" "$session"
  else
    timeout -k 5 90 ardour7-lua "$lua" create "$session" "$work/values" >"$work/create.log" 2>&1 ||
      { cat "$work/create.log"; fail "ardour7-lua could not make the session"; }
  fi
  snapshot=$session/vantry.ardour
  [ -f "$snapshot" ] || fail "no session at $snapshot"

  # Ardour's settings: no first-run wizard (.a7), no memory warning, the dummy
  # backend started without its dialog, on the device the session was saved
  # with (a different one brings up a warning).
  local device
  device=$(grep -oE '<EngineHints backend="Dummy" input-device="[^"]*"' "$snapshot" | cut -d'"' -f4)
  [ -n "$device" ] || fail "the session was not made with the dummy backend"
  touch "$XDG_CONFIG_HOME/ardour7/.a7"
  echo '<instant><no-memory-warning/></instant>' >"$XDG_CONFIG_HOME/ardour7/instant.xml"
  cat >"$XDG_CONFIG_HOME/ardour7/config" <<CONFIG
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
CONFIG

  # Each plug-in's window ("P-<route id>-<processor id>") was open, with its
  # own editor rather than Ardour's generic one.
  ids=$(awk '/<Route / { match($0, / id="[0-9]+"/); route = substr($0, RSTART + 5, RLENGTH - 6) }
    /<Processor .*type="lv2" unique-id="https:\/\/www.zel-audio.example\/plugins\/[a-z]+#stereo"/ {
      match($0, / id="[0-9]+"/); print route "-" substr($0, RSTART + 5, RLENGTH - 6) }' "$snapshot")
  [ -n "$ids" ] || fail "the session holds no Vantry"
  grep -q "<Extra>" "$snapshot" && fail "the session already has GUI state"
  for id in $ids; do
    windows+="<Window name=\"P-$id\" visible=\"1\" x-off=\"$x\" y-off=\"$y\" x-size=\"-1\" y-size=\"-1\" custom-ui=\"1\"/>"
    x=$((x + 620))
  done
  sed -i "s|^</Session>|  <Extra><UI>$windows</UI></Extra>\n</Session>|" "$snapshot"

  # Xvfb picks a free display and writes its number.
  Xvfb -displayfd 3 -screen 0 1280x900x24 -nolisten tcp -noreset 3>"$work/display" >/dev/null 2>&1 &
  pids+=($!)
  for _ in $(seq 100); do [ -s "$work/display" ] && break; sleep 0.1; done
  [ -s "$work/display" ] || fail "Xvfb did not start"
  DISPLAY=:$(head -1 "$work/display")
  export DISPLAY
  for _ in $(seq 50); do xdpyinfo >/dev/null 2>&1 && break; sleep 0.1; done
  xdpyinfo >/dev/null 2>&1 || fail "Xvfb does not answer on $DISPLAY"
}

ardour_window_manager() {
  openbox --sm-disable >"$work/openbox.log" 2>&1 &
  pids+=($!)
  for _ in $(seq 50); do xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q "window id" && return 0; sleep 0.1; done
  fail "openbox did not start"
}

geometry() { xwininfo -id "$1" | awk -v k="$2" '$0 ~ k { print $NF }'; }
# The editor is the innermost (most indented) window of Ardour's plug-in window.
editor_in() {
  xwininfo -tree -id "$1" | awk 'match($0, /^ +0x[0-9a-f]+/) && RLENGTH > depth { depth = RLENGTH; id = $1 }
    END { print id }'
}

ardour_start() {
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

  editor=$(editor_in "$frame")
  [ -n "$editor" ] || fail "Ardour's plug-in window holds no editor"
  ex=$(geometry "$editor" "Absolute upper-left X") ey=$(geometry "$editor" "Absolute upper-left Y")
  ew=$(geometry "$editor" "Width") eh=$(geometry "$editor" "Height")
  fx=$(geometry "$frame" "Absolute upper-left X") fy=$(geometry "$frame" "Absolute upper-left Y")
  fw=$(geometry "$frame" "Width") fh=$(geometry "$frame" "Height")
  [ "$ew" -ge 400 ] && [ "$eh" -ge 300 ] || fail "the editor is ${ew}x$eh"
  echo "Ardour's Vantry window ${fw}x$fh+$fx+$fy, the editor ${ew}x$eh+$ex+$ey"
}
