# Sourced by the tests that load the bundle into a host built elsewhere
# (jalv, Ardour): a bundle built with the sanitizers needs their runtime
# first in the process, which those hosts do not have, so the test skips.
#   skip_if_sanitized BUNDLE_DIR
#   is_sanitized BUNDLE_DIR     (status 0 when any of its libraries is)
#   private_host BUNDLE_DIR JACK_SERVER
#                               a temporary $work with its own HOME and XDG
#                               folders, the bundle alone on LV2_PATH, a JACK
#                               server name of the test's own (JACK frees a
#                               dead server's entry only under the same
#                               name); `pids` are killed and $work removed
#                               on exit; `fail` marks the test failed.
is_sanitized() {
  local lib
  for lib in "$1"/*.so; do
    [ -f "$lib" ] && ldd "$lib" 2>/dev/null | grep -q 'libasan\|libubsan' && return 0
  done
  return 1
}
skip_if_sanitized() {
  if is_sanitized "$1"; then
    echo "SKIP: $1 is built with the sanitizers; a host built without them cannot load it"
    exit 77
  fi
}

private_host() {
  work=$(mktemp -d)
  export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data XDG_CACHE_HOME=$work/cache
  mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME" "$work/lv2"
  cp -r "$1" "$work/lv2/$(basename "$1")"
  export LV2_PATH=$work/lv2 JACK_DEFAULT_SERVER=$2 JACK_NO_AUDIO_RESERVATION=1
  pids=()
  failed=0
  fail() { echo "FAIL: $*"; failed=1; }
  trap private_host_cleanup EXIT
}
private_host_cleanup() {
  for p in "${pids[@]}"; do kill "$p" 2>/dev/null; done
  wait 2>/dev/null
  rm -rf "$work"
}
