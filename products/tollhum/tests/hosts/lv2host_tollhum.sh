#!/usr/bin/env bash
# Tollhum in our own LV2 test host (zel-lv2-host on an Xvfb of its own): the
# scripts beside this file must pass (the meter ports against a tone, the
# mono plug-in, the keyboard and a horizontal drag); their screenshots go to
# OUT_DIR. Runs with a private HOME.
#   lv2host_tollhum.sh ZEL_LV2_HOST BUNDLE_DIR OUT_DIR
set -u
host=$(realpath "$1")
bundle=$(realpath "$2")
out=$(realpath -m "$3")
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
[ -f "$bundle/tollhum_ui.so" ] || { echo "FAIL: no bundle at $bundle"; exit 1; }
. "$here/../../../../tests/app/lv2host/xvfb.sh"
export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_CACHE_HOME=$work/cache XDG_DATA_HOME=$work/data
mkdir -p "$HOME" "$out"
failed=0
for script in "$here"/*.lv2s; do
  name=$(basename "$script" .lv2s)
  (cd "$out" && timeout 300 "$host" --bundle "$bundle" "$script" >"$work/$name.out" 2>"$work/$name.err")
  status=$?
  grep -E '^(ui |idle:)' "$work/$name.out"
  if [ "$status" != 0 ]; then
    echo "FAIL: $name.lv2s (status $status)"
    cat "$work/$name.out" "$work/$name.err"
    failed=1
  fi
done
[ "$failed" = 0 ] && echo "PASS: every script"
exit "$failed"
