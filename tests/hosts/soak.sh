#!/usr/bin/env bash
# Long open/close and instantiate/run/cleanup cycles of Vantry in zel-lv2-host
# under an Xvfb of its own, with a private HOME. Not part of ctest (minutes
# long); run by hand after changes to the editor's or the plug-in's life
# cycle:
#   soak.sh BUILD ui-rss [N]        N (1000) UI open/close cycles, the resident size
#                                   printed at cycles 1, 10, 100, 200, 500, N
#   soak.sh BUILD ui-valgrind [N]   N (20) UI cycles under valgrind memcheck
#   soak.sh BUILD dsp-valgrind [N]  N (100) instantiate/activate/run/cleanup
#                                   cycles under valgrind memcheck
# Exit status: the host's (or valgrind's 99 on an error or a definite leak).
set -u
build=$(realpath "$1")
mode=$2
host=$build/bin/zel-lv2-host
bundle=$build/vantry.lv2
work=$(mktemp -d)
. "$(cd "$(dirname "$0")" && pwd)/../app/lv2host/xvfb.sh"
export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_CACHE_HOME=$work/cache XDG_DATA_HOME=$work/data
mkdir -p "$HOME"
uri=https://www.zel-audio.example/plugins/vantry#stereo
memcheck=(valgrind --suppressions="$(cd "$(dirname "$0")" && pwd)/../sanitizers/valgrind.supp" --error-exitcode=99 --leak-check=full --show-leak-kinds=definite
          --errors-for-leak-kinds=definite --num-callers=30)
case $mode in
ui-rss)
  n=${3:-1000}
  { echo "plugin $uri"
    for i in $(seq "$n"); do
      printf 'ui\nidle 1\nclose-ui\n'
      case $i in 1 | 10 | 100 | 200 | 500 | "$n") echo "print cycle $i" && echo print-memory ;; esac
    done
    echo "expect-x-errors 0"; } >"$work/s.lv2s"
  "$host" --timeout 3000 --bundle "$bundle" "$work/s.lv2s" | grep -v "^ui "
  exit "${PIPESTATUS[0]}" ;;
ui-valgrind)
  { echo "plugin $uri"
    for _ in $(seq "${3:-20}"); do printf 'ui\nidle 1\nclose-ui\n'; done
    echo "expect-x-errors 0"; } >"$work/s.lv2s"
  "${memcheck[@]}" "$host" --timeout 3000 --bundle "$bundle" "$work/s.lv2s" >/dev/null ;;
dsp-valgrind)
  { for _ in $(seq "${3:-100}"); do printf 'plugin %s\nsignal sine 440\nrun 4096\n' "$uri"; done; } >"$work/s.lv2s"
  "${memcheck[@]}" "$host" --timeout 3000 --bundle "$bundle" "$work/s.lv2s" >/dev/null ;;
*) echo "usage: soak.sh BUILD ui-rss|ui-valgrind|dsp-valgrind [N]" >&2; exit 2 ;;
esac
