#!/usr/bin/env bash
# Vantry in an Ardour 7 session, headless (ardour7-lua, the dummy backend's
# pink noise as input). ardour_session.lua does the work inside Ardour; this
# script runs it twice, in two processes, and reads the saved files between:
#   1. create: Vantry on a stereo track, the preset "Telephone" loaded through
#      Ardour, Low Cut automated 20 Hz -> 2000 Hz and played back (the port
#      follows the ramp, the output drops), the session saved.
#   2. the saved plug-in state holds the preset name and the theme (0); the
#      theme is then set to 1 in that state, as a theme toggle in the editor
#      would have left it.
#   3. reload: the ports, the automation and Ardour's last preset come back;
#      a new snapshot is saved, whose plug-in state is what the plug-in
#      reports after its restore: "Telephone" and theme 1. (Ardour keeps the
#      old state folder only when the plug-in's state equals it, and writes a
#      new one otherwise.)
# Runs with a private HOME; keeps the sessions in OUT_DIR/ardour-session.
#   ardour_session.sh BUNDLE_DIR OUT_DIR
set -u
here=$(dirname "$(realpath "$0")")
bundle=$(realpath "$1")
out=$(realpath -m "$2")
. "$(dirname "$(realpath "$0")")/foreign_host.sh"
skip_if_sanitized "$bundle"
command -v ardour7-lua >/dev/null || { echo "SKIP: ardour7-lua is not installed (package ardour)"; exit 77; }
[ -f "$bundle/manifest.ttl" ] && [ -f "$bundle/vantry_dsp.so" ] || { echo "FAIL: no bundle at $bundle"; exit 1; }

work=$(mktemp -d)
export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data XDG_CACHE_HOME=$work/cache
mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME" "$out" "$work/lv2"
cp -r "$bundle" "$work/lv2/vantry.lv2"
export LV2_PATH=$work/lv2
session=$work/session
values=$work/values

pid=""
cleanup() {
  [ -n "$pid" ] && kill -9 "$pid" 2>/dev/null
  wait 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT
fail() { echo "FAIL: $*"; exit 1; }

# ardour7-lua STEP: runs the Lua script, at most 90 s; its output in $work/STEP.log.
run_lua() {
  timeout -k 5 90 ardour7-lua "$here/ardour_session.lua" "$1" "$session" "$values" >"$work/$1.log" 2>&1 &
  pid=$!
  wait "$pid"
  local status=$?
  pid=""
  cat "$work/$1.log"
  [ "$status" -eq 0 ] && grep -q "^ardour_session: ok$" "$work/$1.log" || fail "the $1 step failed (exit $status)"
  if grep -iE "segmentation|abort|\[ERROR\]|\[FATAL\]" "$work/$1.log"; then fail "errors in the $1 step's output"; fi
}

# The plug-in state folder the snapshot FILE points at (or why there is none).
state_of() {
  local file=$1 id dir
  id=$(grep -oE '<Processor id="[0-9]+" name="[^"]*"[^>]*type="lv2" unique-id="https://www.zel-audio.example/plugins/vantry#stereo"' "$file" |
    grep -oE '^<Processor id="[0-9]+"' | grep -oE '[0-9]+')
  [ "$(wc -w <<<"$id")" -eq 1 ] || { echo "$(basename "$file") does not hold exactly one Vantry ($id)"; return 1; }
  dir=$(grep -oE 'state-dir="state[0-9]+"' "$file" | cut -d'"' -f2)
  [ "$(wc -w <<<"$dir")" -eq 1 ] || { echo "$(basename "$file") names no single plug-in state folder ($dir)"; return 1; }
  echo "$session/plugins/$id/$dir"
}

# Holds STATE_DIR the preset name NAME and the theme THEME?
check_state() {
  local ttl=$1/state.ttl
  [ -f "$ttl" ] || fail "no plug-in state at $ttl"
  grep -qF "<https://www.zel-audio.example/plugins/vantry#presetName> \"$2\"" "$ttl" ||
    { cat "$ttl"; fail "the saved state lacks the preset name '$2'"; }
  grep -qF "<https://www.zel-audio.example/plugins/vantry#theme> \"$3\"^^xsd:int" "$ttl" ||
    { cat "$ttl"; fail "the saved state lacks theme $3"; }
}

run_lua create
[ -f "$session/vantry.ardour" ] || fail "no session file"
# The session file: Vantry's insert with Low Cut (parameter 4) automated in
# Play, four points, and Ardour's record of the preset.
grep -q 'last-preset-label="Telephone"' "$session/vantry.ardour" || fail "the session does not name the preset"
automation=$(sed -n '/automation-id="parameter-4"/,/<\/AutomationList>/p' "$session/vantry.ardour")
grep -q 'state="Play"' <<<"$automation" || fail "Low Cut's automation was not saved in Play"
[ "$(sed -n '/<events>/,/<\/events>/p' <<<"$automation" | grep -cE '[0-9]+ [0-9.]+')" -eq 4 ] ||
  { echo "$automation"; fail "Low Cut's automation was not saved with its four points"; }
state=$(state_of "$session/vantry.ardour") || fail "$state"
check_state "$state" Telephone 0

# The theme as the editor leaves it after one toggle.
sed -i 's|\(<https://www.zel-audio.example/plugins/vantry#theme>\) "0"^^xsd:int|\1 "1"^^xsd:int|' "$state/state.ttl"

run_lua reload
[ -f "$session/reloaded.ardour" ] || fail "no snapshot saved after reloading"
state=$(state_of "$session/reloaded.ardour") || fail "$state"
check_state "$state" Telephone 1

rm -rf "$out/ardour-session"
cp -r "$session" "$out/ardour-session"
echo "ardour session: Vantry automated, saved and reloaded with preset 'Telephone' and theme 1; session in $out/ardour-session"
