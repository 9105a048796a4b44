#!/bin/sh
# The bundle's Turtle against the installed LV2 vocabularies: no error and no
# warning. lv2_validate names a file of the LV2 package that Debian does not
# ship (lv2core.doap.ttl) and skips it; that line alone is allowed.
set -u
bundle=$1
command -v lv2_validate >/dev/null && command -v sord_validate >/dev/null ||
  { echo "lv2_validate or sord_validate (package sordi) is missing" >&2; exit 1; }
out=$(lv2_validate "$bundle"/*.ttl 2>&1)
status=$?
echo "$out"
[ "$status" -eq 0 ] || { echo "lv2_validate failed ($status)" >&2; exit 1; }
unexpected=$(echo "$out" | grep -v -e '^Found 0 errors among' -e '^Skipping file /usr/lib/lv2/core.lv2/lv2core.doap.ttl$')
[ -z "$unexpected" ] || { echo "unexpected output:" >&2; echo "$unexpected" >&2; exit 1; }
echo "$out" | grep -q '^Found 0 errors among' || { echo "no summary line" >&2; exit 1; }
