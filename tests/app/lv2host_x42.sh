#!/usr/bin/env bash
# zel-lv2-host against open-source plug-ins with X11 UIs (x42-eq and
# x42-autotune from x42-plugins) under its own Xvfb: the scripts in
# lv2host/ must pass, failures.lv2s must fail on exactly its expectation
# lines, bad scripts exit 2 before anything runs, the clipboard is read from
# another client, and the watchdog ends a script that runs too long.
# Skips (77) without Xvfb, xclip or the x42 bundles.
#   lv2host_x42.sh ZEL_LV2_HOST
set -u
host=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)/lv2host
work=$(mktemp -d)
failed=0
fail() { echo "FAIL: $*"; failed=1; }

command -v xclip >/dev/null || { echo "SKIP: xclip is not installed"; exit 77; }
found=
lv2_path=${LV2_PATH:-}
for dir in ${lv2_path//:/ } "$HOME/.lv2" /usr/local/lib/lv2 /usr/lib/lv2; do
  [ -f "$dir/fil4.lv2/manifest.ttl" ] && [ -f "$dir/fat1.lv2/manifest.ttl" ] && found=$dir
done
[ -n "$found" ] || { echo "SKIP: x42-plugins (fil4.lv2, fat1.lv2) are not installed"; rm -rf "$work"; exit 77; }
. "$here/xvfb.sh"
xclip_pid=
trap '[ -n "$xclip_pid" ] && kill "$xclip_pid" 2>/dev/null; xvfb_cleanup' EXIT

# run WANT NAME [OPTIONS...] < SCRIPT: runs the host in $work, output in $work/NAME.out.
run() {
  local want=$1 name=$2
  shift 2
  (cd "$work" && timeout 180 "$host" "$@" - >"$work/$name.out" 2>"$work/$name.err")
  local got=$?
  if [ "$got" != "$want" ]; then
    fail "$name exited $got, expected $want"
    sed 's/^/    /' "$work/$name.out" "$work/$name.err"
  fi
}

# The PNG's width and height from its header.
png_size() { od -An -tu1 -j16 -N8 "$1" | awk '{print $1*16777216+$2*65536+$3*256+$4, $5*16777216+$6*65536+$7*256+$8}'; }

for script in eq-ui state presets cycles; do
  run 0 "$script" <"$here/$script.lv2s"
done

# What eq-ui measured: the first paint, the idle cost, the UI's memory.
grep -q "first paint after" "$work/eq-ui.out" || fail "eq-ui: no first paint reported"
grep -Eq "^idle: median [0-9.]+ us.* over 200 calls" "$work/eq-ui.out" || fail "eq-ui: no idle cost reported"
grep -Eq "memory \+[0-9]+ KiB" "$work/eq-ui.out" || fail "eq-ui: no memory reported"
[ -f "$work/eq.png" ] && [ "$(png_size "$work/eq.png")" = "800 418" ] ||
  fail "eq.png is not the host window at the UI's size: $(png_size "$work/eq.png" 2>/dev/null)"
grep -q "restore-state tweaked: .* into a new instance, UI re-created" "$work/state.out" ||
  fail "state: the restore did not re-create the UI"
[ "$(grep -c '^ui ' "$work/cycles.out")" = 13 ] || fail "cycles: expected 13 UIs opened"
sed 's/^/  /' "$work/eq-ui.out"

# Each failing expectation is reported with its line; the script goes on.
run 1 failures <"$here/failures.lv2s"
lines=$(grep -o '^FAIL line [0-9]*' "$work/failures.out" | awk '{print $3}' | tr '\n' ' ')
[ "$lines" = "7 8 10 11 12 " ] || fail "failures.lv2s failed on lines '$lines', expected '7 8 10 11 12 '"

# The clipboard, owned by another client.
printf 'gain 3 dB' | xclip -quiet -selection clipboard -i -loops 3 >/dev/null 2>&1 &
xclip_pid=$!
sleep 0.3
run 0 clipboard <<<'clipboard-expect gain 3 dB'
run 1 clipboard-wrong <<<'clipboard-expect something else'
grep -q "the clipboard holds 'gain 3 dB'" "$work/clipboard-wrong.out" || fail "the wrong clipboard is not reported"

# Bad scripts and options: exit 2 with the line, before any plug-in loads.
run 2 unknown <<<$'plugin http://gareus.org/oss/lv2/fil4#mono\nfrobnicate 3'
grep -q "line 2: unknown command 'frobnicate'" "$work/unknown.err" || fail "unknown command: $(cat "$work/unknown.err")"
grep -q "^plugin" "$work/unknown.out" && fail "a bad script ran its first line"
run 2 arguments <<<'drag 1 2 3'
run 2 not-a-number <<<'set Gain loud'
run 2 operator <<<'expect-port Gain =~ 3'
run 2 missing-plugin <<<'plugin http://example.org/no-such-plugin'
grep -q "no plug-in http://example.org/no-such-plugin" "$work/missing-plugin.err" || fail "missing plug-in: no reason"
run 2 unknown-port <<<$'plugin http://gareus.org/oss/lv2/fil4#mono\nset NoSuchPort 1'
run 2 no-ui <<<$'plugin http://gareus.org/oss/lv2/fil4#mono\nclick 10 10'
run 2 unknown-state <<<$'plugin http://gareus.org/oss/lv2/fil4#mono\nrestore-state never-saved'
run 2 bad-bundle --bundle "$work/nowhere" <<<'print hi'
run 2 bad-option --block 0 <<<'print hi'

# A script that runs past the time limit fails on the line it is on.
run 1 timeout --timeout 1 <<<$'print start\nwait 5000'
grep -q "FAIL line 2: the script did not finish within 1 s" "$work/timeout.out" || fail "the watchdog did not report"

exit $failed
