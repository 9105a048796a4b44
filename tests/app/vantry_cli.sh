#!/usr/bin/env bash
# The standalone app's command line: --render writes the picture at the
# asked scale; bad options and unreadable descriptions exit 2; no display
# and no --render is an error that points at --render; --help lists every
# mode and option in one place.
#   vantry_cli.sh VANTRY
set -u
vantry=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0
fail() { echo "FAIL: $*"; failed=1; }

# status WANT ARGS...: runs vantry and checks its exit status.
status() {
  local want=$1
  shift
  (cd "$work" && env -u DISPLAY -u XDG_CONFIG_HOME HOME="$work/home" "$vantry" "$@" >"$work/out" 2>"$work/err")
  local got=$?
  [ "$got" = "$want" ] || fail "vantry $* exited $got, expected $want: $(cat "$work/err")"
}

# The PNG's width and height from its header.
png_size() { od -An -tu1 -j16 -N8 "$1" | awk '{print $1*16777216+$2*65536+$3*256+$4, $5*16777216+$6*65536+$7*256+$8}'; }

status 0 --render one.png
[ "$(png_size "$work/one.png")" = "480 380" ] || fail "one.png is $(png_size "$work/one.png")"
status 0 --render two.png --scale 2 --theme dark --channels 1 1
[ "$(png_size "$work/two.png")" = "960 760" ] || fail "two.png is $(png_size "$work/two.png")"
cmp -s "$work/one.png" "$work/two.png" && fail "different options drew the same picture"

status 2 --bogus
status 2 --theme blue
status 2 --scale 0 --render x.png
status 2 --channels 2
status 2 --render x.png --watch
status 2 --config "$work/missing.plist" --render x.png
grep -q "cannot read the description" "$work/err" || fail "no reason given for the missing description"
echo "not a property list" >"$work/bad.plist"
status 2 --config "$work/bad.plist" --render x.png
status 2 --connect-in
status 2 --connect-out
status 2 --session ""
status 2 --mono --bogus
status 1
grep -q -- "--render" "$work/err" || fail "no display: the message does not point at --render"
[ -e "$work/home/.config/vantry" ] && fail "a run that could not open a window touched the session"

status 0 --help
for word in --render --watch process --no-audio --mono --no-connect --connect-in --connect-out --session \
  --stats --scale --theme --config --channels session.plist JACK; do
  grep -q -- "$word" "$work/out" || fail "--help does not mention $word"
done
exit $failed
