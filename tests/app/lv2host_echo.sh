#!/usr/bin/env bash
# zel-lv2-host against the echo plug-in (tests/app/lv2host/echo/), whose DSP
# and UI log everything the host hands them: lv2host/echo.lv2s must pass,
# the UI's first paint shows in the screenshot, and a UI that asks to close
# is closed. Skips (77) without Xvfb.
#   lv2host_echo.sh ZEL_LV2_HOST ECHO_BUNDLE_DIR
set -u
host=$(realpath "$1")
bundle=$(realpath "$2")
here=$(cd "$(dirname "$0")" && pwd)/lv2host
work=$(mktemp -d)
failed=0
fail() { echo "FAIL: $*"; failed=1; }
. "$here/xvfb.sh"

(cd "$work" && timeout 120 "$host" --bundle "$bundle" --scale 2 "$here/echo.lv2s" >"$work/out" 2>"$work/err")
status=$?
[ "$status" = 0 ] || fail "echo.lv2s exited $status: $(cat "$work/out" "$work/err")"
grep -q "the UI asked to be closed" "$work/err" || fail "the UI's request to close was not noticed"
[ "$(grep -c '^ui urn:zel-test:echo#ui: ' "$work/out")" = 3 ] || fail "expected the UI opened 3 times"
# The screenshot is the host window at the size the UI asked for.
size=$(od -An -tu1 -j16 -N8 "$work/echo.png" 2>/dev/null | awk '{print $3*256+$4, $7*256+$8}')
[ "$size" = "200 100" ] || fail "echo.png is '$size', expected '200 100'"
sed 's/^/  /' "$work/out"

# Without --bundle the plug-in is not found (it is in no LV2_PATH directory).
(cd "$work" && LV2_PATH=/nonexistent timeout 60 "$host" - <<<'plugin urn:zel-test:echo' >/dev/null 2>"$work/err2")
[ $? = 2 ] || fail "a missing plug-in did not exit 2"
exit $failed
