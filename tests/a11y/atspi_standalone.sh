#!/usr/bin/env bash
# The standalone app from a screen reader's side: under an Xvfb of its own
# and a private session bus (dbus-run-session) with the AT-SPI bus
# launcher, `vantry` joins the accessibility bus and atspi_check.py reads
# and drives it through pyatspi (tree, names, roles, ranges and values of
# the 12 parameters, setting a value, Tab, drawers, value events); a mono
# run checks that the controls its channel rules disable are not enabled.
#   atspi_standalone.sh VANTRY OUT_DIR
set -u
if [ -z "${ZEL_A11Y_SESSION:-}" ]; then
  command -v dbus-run-session >/dev/null || { echo "SKIP: dbus-run-session is not installed"; exit 77; }
  exec env ZEL_A11Y_SESSION=1 dbus-run-session -- bash "$0" "$@"
fi
vantry=$(realpath "$1")
out=$(realpath -m "$2")
here=$(cd "$(dirname "$0")" && pwd)
. "$here/a11y_session.sh"
need_a11y_tools

start_xvfb
start_a11y_bus

# run NAME [VANTRY OPTIONS...] -- [CHECK OPTIONS...]
run() {
  local name=$1 opts=() checks=()
  shift
  while [ $# -gt 0 ] && [ "$1" != -- ]; do opts+=("$1"); shift; done
  [ $# -gt 0 ] && shift
  checks=("$@")
  "$vantry" --no-audio --session "$work/$name.plist" "${opts[@]}" >"$work/$name.log" 2>&1 &
  local app=$!
  pids+=($app)
  local window
  window=$(wait_window '^Vantry$')
  [ -n "$window" ] || { cat "$work/$name.log"; fail "$name: no Vantry window"; return; }
  for _ in $(seq 100); do grep -q "on the accessibility bus" "$work/$name.log" && break; sleep 0.1; done
  grep -q "on the accessibility bus" "$work/$name.log" || fail "$name: vantry did not say it joined the accessibility bus"
  /usr/bin/python3 "$here/atspi_check.py" --keys-to "$window" --session "$work/$name.plist" "${checks[@]}" \
    >"$work/$name.check" 2>&1 || fail "$name: the screen reader's checks failed"
  sed "s/^/  $name: /" "$work/$name.check"
  kill "$app" 2>/dev/null
  wait "$app" 2>/dev/null
  cp "$work/$name.log" "$out/" 2>/dev/null
}

mkdir -p "$out"
run stereo
run mono --channels 1 1 -- --mono

# No bus, no connection: without the accessibility bus the app keeps none.
env -u DBUS_SESSION_BUS_ADDRESS -u AT_SPI_BUS_ADDRESS "$vantry" --no-audio --session "$work/none.plist" \
  >"$work/none.log" 2>&1 &
none=$!
pids+=($none)
sleep 2
grep -q "accessibility" "$work/none.log" && fail "without a session bus the app still speaks of accessibility"
ls -l /proc/$none/fd 2>/dev/null | grep -q socket: && sockets=$(ls -l /proc/$none/fd | grep -c socket:) || sockets=0
# One socket: the X connection.
[ "$sockets" -le 1 ] || fail "without a bus the app holds $sockets sockets (the X connection only expected)"
echo "without a bus: $sockets socket(s) open"
kill "$none" 2>/dev/null

# A desktop that runs the bus with no screen reader (IsEnabled false): the
# app asks once and keeps nothing open either.
dbus-send --session --print-reply --dest=org.a11y.Bus /org/a11y/bus org.freedesktop.DBus.Properties.Set \
  string:org.a11y.Status string:IsEnabled variant:boolean:false >/dev/null 2>&1
"$vantry" --no-audio --session "$work/off.plist" >"$work/off.log" 2>&1 &
off=$!
pids+=($off)
sleep 2
grep -q "on the accessibility bus" "$work/off.log" && fail "with accessibility off the app joined the bus"
sockets=$(ls -l /proc/$off/fd 2>/dev/null | grep -c socket:)
[ "$sockets" -le 1 ] || fail "with accessibility off the app holds $sockets sockets (the X connection only expected)"
echo "accessibility off: $sockets socket(s) open"
kill "$off" 2>/dev/null

[ "$failed" = 0 ] && echo "PASS"
exit "$failed"
