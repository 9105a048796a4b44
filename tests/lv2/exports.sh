#!/bin/sh
# A library of the bundle shows hosts its descriptor function and nothing
# else.   exports.sh LIBRARY [SYMBOL]   (SYMBOL: lv2_descriptor by default)
set -u
expected=${2:-lv2_descriptor}
symbols=$(nm -D --defined-only "$1" | awk '{print $NF}') || exit 1
echo "$symbols"
[ "$symbols" = "$expected" ] || { echo "expected $expected alone" >&2; exit 1; }
