#!/usr/bin/env bash
# The plug-in's editor from a screen reader's side, inside hosts: under an
# Xvfb of its own and a private session bus with the AT-SPI bus,
#  - in our test host (zel-lv2-host), whose script plays automation on
#    Drive meanwhile (50 changes a second: the events are rate-limited) and afterwards checks that the value set through the
#    bus reached the plug-in between a touch begin and end;
#  - in jalv.gtk3 (when installed), where GTK holds a bridge of its own in
#    the same process: the editor registers beside it.
# atspi_check.py does the reading and driving (see there).
#   atspi_hosts.sh ZEL_LV2_HOST BUNDLE_DIR
set -u
if [ -z "${ZEL_A11Y_SESSION:-}" ]; then
  command -v dbus-run-session >/dev/null || { echo "SKIP: dbus-run-session is not installed"; exit 77; }
  exec env ZEL_A11Y_SESSION=1 dbus-run-session -- bash "$0" "$@"
fi
host=$(realpath "$1")
bundle=$(realpath "$2")
here=$(cd "$(dirname "$0")" && pwd)
. "$here/a11y_session.sh"
need_a11y_tools
[ -f "$bundle/vantry_ui.so" ] || { echo "FAIL: no bundle at $bundle"; exit 1; }

start_xvfb
start_a11y_bus

# ---- zel-lv2-host: automation on Drive, a set value that reaches the plug-in.
{
  echo "plugin https://www.zel-audio.example/plugins/vantry#stereo"
  echo "ui"
  echo "clear-writes"
  echo "wait 3000"
  # Automation: 50 changes a second for 4 s.
  for i in $(seq 1 200); do
    echo "set Drive $((i % 100))"
    echo "wait 20"
  done
  # The screen reader's checks run meanwhile.
  echo "wait 35000"
  echo "expect-port LowCut == 1000 0.001"
  echo "expect-touch LowCut"
  echo "expect-x-errors 0"
} >"$work/host.lv2s"
(cd "$work" && timeout 120 "$host" --bundle "$bundle" "$work/host.lv2s" >"$work/host.out" 2>&1) &
hostpid=$!
pids+=($hostpid)
window=$(wait_window '^zel-lv2-host')
if [ -z "$window" ]; then
  fail "zel-lv2-host showed no window"
else
  /usr/bin/python3 "$here/atspi_check.py" --keys-to "$window" --automation Drive >"$work/host.check" 2>&1 ||
    fail "zel-lv2-host: the screen reader's checks failed"
  sed "s/^/  zel-lv2-host: /" "$work/host.check"
fi
wait "$hostpid" || fail "zel-lv2-host: the plug-in's side did not hold (exit $?)"
sed "s/^/  zel-lv2-host: /" "$work/host.out"

# ---- jalv.gtk3: GTK's own bridge in the same process.
. "$here/../hosts/foreign_host.sh"
if is_sanitized "$bundle"; then
  echo "jalv.gtk3: left out (the bundle is built with the sanitizers, which jalv cannot load)"
elif command -v jalv.gtk3 >/dev/null && command -v jackd >/dev/null; then
  mkdir -p "$work/lv2"
  cp -r "$bundle" "$work/lv2/vantry.lv2"
  export LV2_PATH=$work/lv2 JACK_DEFAULT_SERVER=vantry-a11y-test-$$ JACK_NO_AUDIO_RESERVATION=1
  jackd --no-realtime -d dummy -r 48000 -p 256 >"$work/jackd.log" 2>&1 &
  pids+=($!)
  for _ in $(seq 100); do jack_lsp >/dev/null 2>&1 && break; sleep 0.1; done
  jalv.gtk3 "https://www.zel-audio.example/plugins/vantry#stereo" >"$work/jalv.log" 2>&1 &
  pids+=($!)
  window=$(wait_window '^Vantry')
  if [ -z "$window" ]; then
    cat "$work/jalv.log"
    fail "jalv.gtk3 showed no Vantry window"
  else
    /usr/bin/python3 "$here/atspi_check.py" --keys-to "$window" >"$work/jalv.check" 2>&1 ||
      fail "jalv.gtk3: the screen reader's checks failed"
    sed "s/^/  jalv.gtk3: /" "$work/jalv.check"
    # GTK's bridge and ours, side by side.
    /usr/bin/python3 - <<'PY' | sed "s/^/  jalv.gtk3: /"
import pyatspi
apps = [a.name for a in pyatspi.Registry.getDesktop(0) if a is not None]
print("applications on the bus:", apps)
PY
  fi
else
  echo "jalv.gtk3 or jackd is not installed: only zel-lv2-host was checked"
fi

[ "$failed" = 0 ] && echo "PASS"
exit "$failed"
