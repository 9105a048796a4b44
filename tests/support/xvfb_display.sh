# Sourced by the shell tests that need an X server of their own:
# start_xvfb starts an Xvfb on a display number it picks itself, adds its
# pid to the caller's `pids` array (the caller's cleanup kills it), exports
# DISPLAY and waits until the server answers. Needs $work.
start_xvfb() {
  Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp -noreset 3>"$work/display" >/dev/null 2>&1 &
  pids+=($!)
  for _ in $(seq 100); do [ -s "$work/display" ] && break; sleep 0.1; done
  [ -s "$work/display" ] || { echo "FAIL: Xvfb did not start"; exit 1; }
  export DISPLAY=:$(head -1 "$work/display")
  for _ in $(seq 200); do xdpyinfo >/dev/null 2>&1 && break; sleep 0.1; done
  xdpyinfo >/dev/null 2>&1 || { echo "FAIL: Xvfb on $DISPLAY does not answer"; exit 1; }
}
