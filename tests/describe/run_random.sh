#!/usr/bin/env bash
# zel-describe on 10 MB of random bytes: every command must refuse the file
# with exit status 2, promptly and without crashing.
#   run_random.sh TOOL
set -u
tool=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
head -c 10485760 /dev/urandom >"$work/random.plist"
# A binary property list header in front of the noise takes the binary reader.
{ printf 'bplist00'; head -c 10485752 /dev/urandom; } >"$work/random-binary.plist"

failed=0
for file in "$work/random.plist" "$work/random-binary.plist"; do
  for command in check summary json "eval"; do
    args=("$command" "$file")
    [ "$command" = eval ] && args+=(position Anything 1)
    timeout 60 "$tool" "${args[@]}" >"$work/out" 2>"$work/err"
    status=$?
    if [ "$status" != 2 ]; then
      echo "FAIL: zel-describe ${args[*]} exited with $status, expected 2"
      head -c 2000 "$work/out" "$work/err"
      failed=1
    fi
    if [ "$command" = check ] && ! grep -q '^error: ' "$work/out"; then
      echo "FAIL: zel-describe check $file printed no error line"
      failed=1
    fi
  done
done
exit "$failed"
