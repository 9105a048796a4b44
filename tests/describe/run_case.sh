#!/usr/bin/env bash
# Runs one contract case of zel-describe:
#   run_case.sh TOOL CASES_DIR NAME FIXTURES_DIR RESOURCES_DIR
# NAME.args       the arguments, one per line (@FIXTURES@ and @RESOURCES@ are
#                 replaced by the folders)
# NAME.expected   standard output, exactly (optional)
# NAME.contains   text that standard output must contain (optional)
# NAME.stderr     text that standard error must contain (optional)
# NAME.status     the exit status (0 when absent)
set -u
tool=$1 dir=$2 name=$3 fixtures=$4 resources=$5

args=()
while IFS= read -r line || [ -n "$line" ]; do
  line=${line//@FIXTURES@/$fixtures}
  args+=("${line//@RESOURCES@/$resources}")
done <"$dir/$name.args"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$tool" "${args[@]}" >"$work/out" 2>"$work/err"
status=$?

failed=0
fail() {
  echo "FAIL $name: $*"
  failed=1
}

want=0
[ -f "$dir/$name.status" ] && want=$(tr -d '[:space:]' <"$dir/$name.status")
[ "$status" = "$want" ] || fail "exit status $status, expected $want"
if [ -f "$dir/$name.expected" ] && ! diff -u "$dir/$name.expected" "$work/out" >"$work/diff"; then
  fail "standard output differs (- expected, + actual):"
  cat "$work/diff"
fi
if [ -f "$dir/$name.contains" ] && ! grep -qF -- "$(cat "$dir/$name.contains")" "$work/out"; then
  fail "standard output lacks '$(cat "$dir/$name.contains")'"
fi
if [ -f "$dir/$name.stderr" ] && ! grep -qF -- "$(cat "$dir/$name.stderr")" "$work/err"; then
  fail "standard error lacks '$(cat "$dir/$name.stderr")'"
fi
if [ "$failed" != 0 ]; then
  echo "--- standard output"; cat "$work/out"
  echo "--- standard error"; cat "$work/err"
fi
exit "$failed"
