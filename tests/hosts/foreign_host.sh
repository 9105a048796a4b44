# Sourced by the tests that load the bundle into a host built elsewhere
# (jalv, Ardour): a bundle built with the sanitizers needs their runtime
# first in the process, which those hosts do not have, so the test skips.
#   skip_if_sanitized BUNDLE_DIR
#   is_sanitized BUNDLE_DIR     (status 0 when any of its libraries is)
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
