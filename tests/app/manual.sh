#!/usr/bin/env bash
# The user manual made at build time:
#   manual.sh CONFIG BUNDLE_RESOURCES APP_RESOURCES ZEL_MAKE_MANUAL TEXTS
# - in both resources folders, the same ZelVantry_Manual.pdf and .html;
# - the PDF is A4 with a cover, an overview, a page per clump of the
#   description and five more (presets, keyboard, mouse, copy and paste
#   with the state), as pdfinfo reads it, and pdftoppm renders every page;
# - the HTML has one id="CODENAME" per parameter and "clump-NAME" per clump;
# - zel-make-manual refuses texts that miss a parameter or name an unknown one.
set -u
config=$1 bundle=$2 app=$3 tool=$4 texts=$5
failed=0
fail() {
  echo "FAIL: $*"
  failed=1
}
command -v pdfinfo >/dev/null || { echo "pdfinfo is missing (poppler-utils)"; exit 1; }

pdf=$bundle/ZelVantry_Manual.pdf html=$bundle/ZelVantry_Manual.html
for f in ZelVantry_Manual.pdf ZelVantry_Manual.html; do
  [ -s "$bundle/$f" ] || fail "$bundle/$f is missing"
  cmp -s "$bundle/$f" "$app/$f" || fail "$app/$f is not the bundle's"
done
[ $failed -eq 0 ] || exit 1

# The description's clumps and code names.
names=$(python3 - "$config" <<'PY'
import plistlib, sys
d = plistlib.load(open(sys.argv[1], "rb"))
print(len(d["clumps"]))
for c in d["clumps"]:
    print("clump-" + c["metadata"]["codesafeName"])
    for p in c["parameters"]:
        print(p["codesafeName"])
PY
) || { echo "cannot read $config"; exit 1; }
clumps=$(head -1 <<<"$names")

info=$(pdfinfo "$pdf" 2>&1) || fail "pdfinfo cannot read the PDF: $info"
pages=$(sed -n 's/^Pages: *//p' <<<"$info")
[ "$pages" = $((clumps + 6)) ] || fail "the PDF has ${pages:-no} pages, not $((clumps + 6)) (6 + $clumps clumps)"
grep -q '^Page size: *595.* x 841.* pts (A4)' <<<"$info" || fail "the PDF is not A4: $(grep 'Page size' <<<"$info")"
grep -q '^Title: *Vantry' <<<"$info" || fail "the PDF has no title"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
if command -v pdftoppm >/dev/null; then
  pdftoppm -r 20 -png "$pdf" "$work/page" 2>"$work/err" || fail "pdftoppm: $(cat "$work/err")"
  rendered=$(ls "$work"/page-*.png 2>/dev/null | wc -l)
  [ "$rendered" = "$pages" ] || fail "pdftoppm rendered $rendered pages of $pages"
fi

while IFS= read -r id; do
  n=$(grep -o "id=\"$id\"" "$html" | wc -l)
  [ "$n" = 1 ] || fail "the HTML has $n anchors id=\"$id\""
done < <(tail -n +2 <<<"$names")
grep -q '<img [^>]*src="data:image/png;base64,' "$html" || fail "the HTML has no pictures"

# Texts that do not match the description stop the tool.
python3 - "$texts" "$work/bad.plist" <<'PY'
import plistlib, sys
d = plistlib.load(open(sys.argv[1], "rb"))
del d["parameters"]["Width"]
d["parameters"]["Resonance"] = "no such parameter"
plistlib.dump(d, open(sys.argv[2], "wb"))
PY
"$tool" --config "$config" --texts "$work/bad.plist" --pdf "$work/bad.pdf" 2>"$work/err"
status=$?
[ $status = 1 ] || fail "texts that miss Width: exit $status, not 1"
grep -q 'parameters.Width: no text' "$work/err" || fail "no error for the missing Width: $(cat "$work/err")"
grep -q 'parameters.Resonance: the description has no such code name' "$work/err" || fail "no error for Resonance"
[ ! -e "$work/bad.pdf" ] || fail "a PDF was written from bad texts"
exit $failed
