#!/usr/bin/env bash
# Runs one scripted-driver case:
#   run_case.sh DRIVER CASES_DIR NAME RESOURCES_DIR
# NAME.script    the script (passed as the last argument when it exists)
# NAME.args      more arguments, one per line (optional); @CASES@ and
#                @RESOURCES@ are replaced by the folders; a line @STDIN@
#                feeds the script on standard input instead
# NAME.expected  standard output, exactly, where @BIN@ stands for the
#                driver's own folder (the manual lives in @BIN@/resources)
# NAME.stderr    text that standard error must contain (optional)
# NAME.status    the exit status (0 when absent)
# The case runs in an empty temporary folder (renders land there), in the
# C locale so that typed numbers read the same everywhere.
set -u
driver=$1 dir=$2 name=$3 resources=$4

args=()
stdin=/dev/null
script=()
[ -f "$dir/$name.script" ] && script=("$dir/$name.script")
if [ -f "$dir/$name.args" ]; then
  while IFS= read -r line || [ -n "$line" ]; do
    if [ "$line" = "@STDIN@" ]; then
      stdin=$dir/$name.script
      script=()
      continue
    fi
    line=${line//@CASES@/$dir}
    args+=("${line//@RESOURCES@/$resources}")
  done <"$dir/$name.args"
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
(cd "$work" && LC_ALL=C "$driver" "${args[@]}" "${script[@]}" <"$stdin" >"$work/out" 2>"$work/err")
status=$?
bin=$(cd "$(dirname "$driver")" && pwd)
sed -i "s|$bin/|@BIN@/|g" "$work/out"

failed=0
fail() {
  echo "FAIL $name: $*"
  failed=1
}

want=0
[ -f "$dir/$name.status" ] && want=$(tr -d '[:space:]' <"$dir/$name.status")
[ "$status" = "$want" ] || fail "exit status $status, expected $want"
if ! diff -u "$dir/$name.expected" "$work/out" >"$work/diff"; then
  fail "standard output differs (- expected, + actual):"
  cat "$work/diff"
fi
if [ -f "$dir/$name.stderr" ] && ! grep -qF -- "$(cat "$dir/$name.stderr")" "$work/err"; then
  fail "standard error lacks '$(cat "$dir/$name.stderr")'"
fi
if [ "$failed" != 0 ]; then
  echo "--- standard error"; cat "$work/err"
fi
exit "$failed"
