#!/bin/sh
# The plug-in library shows hosts lv2_descriptor and nothing else.
set -u
symbols=$(nm -D --defined-only "$1" | awk '{print $NF}') || exit 1
echo "$symbols"
[ "$symbols" = "lv2_descriptor" ] || { echo "expected lv2_descriptor alone" >&2; exit 1; }
