# Sourced by the zel-lv2-host tests: starts an Xvfb of their own on the first
# free display, exports DISPLAY, stops it (and removes $work) on exit, and
# skips the test (77) without one. Needs $work.
xvfb_pid=
xvfb_cleanup() {
  [ -n "$xvfb_pid" ] && kill "$xvfb_pid" 2>/dev/null
  rm -rf "$work"
}
trap xvfb_cleanup EXIT
command -v Xvfb >/dev/null || { echo "SKIP: Xvfb is not installed"; exit 77; }
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp -noreset 3>"$work/display" 2>"$work/xvfb.log" &
xvfb_pid=$!
for _ in $(seq 100); do
  [ -s "$work/display" ] && break
  sleep 0.1
done
[ -s "$work/display" ] || { echo "SKIP: Xvfb did not start: $(cat "$work/xvfb.log")"; exit 77; }
export DISPLAY=:$(head -n1 "$work/display")
