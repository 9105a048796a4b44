#!/usr/bin/env bash
# A session that musicians saved with Vantry 1.1.1 still loads (the
# fixture in ../fixtures/ardour-1.1.1, saved by Ardour 7 before Vantry moved
# into its product folder): both inserts (stereo and mono) are found by
# their URIs, every port by its index holds its saved value, and the
# plug-in state restored from the saved keys (preset name, theme, zoom) is
# what the plug-in saves again. Headless (ardour7-lua, dummy backend), with
# a private HOME.
#   saved_session.sh BUNDLE_DIR
set -u
here=$(dirname "$(realpath "$0")")
bundle=$(realpath "$1")
fixture=$here/../fixtures/ardour-1.1.1
. "$here/../../../../tests/hosts/foreign_host.sh"
skip_if_sanitized "$bundle"
command -v ardour7-lua >/dev/null || { echo "SKIP: ardour7-lua is not installed (package ardour)"; exit 77; }

work=$(mktemp -d)
pid=""
cleanup() {
  [ -n "$pid" ] && kill -9 "$pid" 2>/dev/null
  wait 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT
fail() { echo "FAIL: $*"; exit 1; }
export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data XDG_CACHE_HOME=$work/cache
mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME" "$work/lv2"
cp -r "$bundle" "$work/lv2/vantry.lv2"
export LV2_PATH=$work/lv2
cp -r "$fixture" "$work/session"
session=$work/session

timeout -k 5 90 ardour7-lua "$here/saved_session.lua" "$session" "$fixture/values.txt" >"$work/log" 2>&1 &
pid=$!
wait "$pid"
status=$?
pid=""
cat "$work/log"
[ "$status" -eq 0 ] && grep -q "^saved_session: ok$" "$work/log" || fail "loading the saved session failed (exit $status)"

# The plug-in state each insert saves now: the restored keys, unchanged.
[ -f "$session/resaved.ardour" ] || fail "no snapshot saved"
state_of() {  # the state.ttl of the insert of URI in the snapshot
  local block dir id
  block=$(grep -oE "<Processor id=\"[0-9]+\" [^>]*unique-id=\"$1\"" "$session/resaved.ardour")
  id=$(grep -oE '^<Processor id="[0-9]+"' <<<"$block" | grep -oE '[0-9]+')
  dir=$(sed -n "/<Processor id=\"$id\"/,/<\/Processor>/p" "$session/resaved.ardour" | grep -oE 'state-dir="state[0-9]+"' | head -1 | cut -d'"' -f2)
  echo "$session/plugins/$id/$dir/state.ttl"
}
base=https://www.zel-audio.example/plugins/vantry
check() {  # URI PRESET THEME ZOOM
  local ttl
  ttl=$(state_of "$1")
  [ -f "$ttl" ] || fail "no saved plug-in state for $1"
  grep -qF "<$base#presetName> \"$2\"" "$ttl" && grep -qF "<$base#theme> \"$3\"^^xsd:int" "$ttl" &&
    grep -qF "<$base#zoom> \"$4\"^^xsd:int" "$ttl" || { cat "$ttl"; fail "$1 saved other state than it restored"; }
}
check "$base#stereo" Telephone 0 100
check "$base#mono" "" 1 150
echo "saved session: Vantry 1.1.1's Ardour session loads with every value and its plug-in state"
