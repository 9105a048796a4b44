# Sourced by the accessibility tests, run inside dbus-run-session: a work
# folder, cleanup, an Xvfb, and the AT-SPI bus (its launcher, which starts
# the registry) on the private session bus.
work=$(mktemp -d)
export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_CACHE_HOME=$work/cache XDG_DATA_HOME=$work/data
export XDG_RUNTIME_DIR=$work/run
mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$XDG_CACHE_HOME" "$XDG_DATA_HOME" "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"
pids=()
failed=0
fail() { echo "FAIL: $*"; failed=1; }
cleanup() {
  for p in "${pids[@]}"; do kill "$p" 2>/dev/null; done
  wait 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT

need_a11y_tools() {
  local tool
  for tool in Xvfb xdpyinfo xdotool /usr/libexec/at-spi-bus-launcher; do
    command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }
  done
  /usr/bin/python3 -c 'import pyatspi' 2>/dev/null || { echo "SKIP: python3-pyatspi is not installed"; exit 77; }
}

. "$(dirname "${BASH_SOURCE[0]}")/../support/xvfb_display.sh"

# The accessibility bus and its registry, as a desktop session has them.
# The session bus starts the launcher (at-spi-bus-launcher) on the first
# request for its address, as on a desktop.
start_a11y_bus() {
  for _ in $(seq 100); do
    dbus-send --session --print-reply --dest=org.a11y.Bus /org/a11y/bus org.a11y.Bus.GetAddress >/dev/null 2>&1 && break
    sleep 0.1
  done
  # What Orca does when it starts: tell the desktop a screen reader runs.
  dbus-send --session --print-reply --dest=org.a11y.Bus /org/a11y/bus org.freedesktop.DBus.Properties.Set \
    string:org.a11y.Status string:IsEnabled variant:boolean:true >/dev/null 2>&1
}

# wait_window REGEX: prints the first X window whose name matches, waiting
# up to 30 s; prints nothing when none came.
wait_window() {
  local window=""
  for _ in $(seq 300); do
    window=$(xdotool search --name "$1" 2>/dev/null | head -1)
    [ -n "$window" ] && break
    sleep 0.1
  done
  echo "$window"
}
