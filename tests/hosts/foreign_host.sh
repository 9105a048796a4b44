# Sourced by the tests that load the bundle into a host built elsewhere
# (jalv, Ardour): a bundle built with the sanitizers needs their runtime
# first in the process, which those hosts do not have, so the test skips.
#   skip_if_sanitized BUNDLE_DIR
skip_if_sanitized() {
  local lib
  for lib in "$1"/vantry_dsp.so "$1"/vantry_ui.so; do
    if [ -f "$lib" ] && ldd "$lib" 2>/dev/null | grep -q 'libasan\|libubsan'; then
      echo "SKIP: $lib is built with the sanitizers; a host built without them cannot load it"
      exit 77
    fi
  done
}
