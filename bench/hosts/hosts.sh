#!/usr/bin/env bash
# Our editor beside other LV2 editors in a real host: jalv on a private Xvfb
# display with a private JACK server (dummy driver), rounds interleaved, one
# table of medians with each figure against the baseline (a plug-in without
# its own editor: eg-amp with jalv's generic slider).
#
#   hosts.sh [-n RUNS] [--host jalv.gtk3] [--host jalv.qt5] [--idle S]
#            [--out DIR] [--bundle DIR]... [--plugin 'LABEL URI']...
#            [--only LABEL,...] BUNDLE_DIR
#
# --bundle puts another of our bundles (another product's) on LV2_PATH,
# --plugin adds a plug-in to the list below, --only keeps the listed labels.
#
# Hosts: jalv.gtk3 and jalv.qt5 (when installed) unless --host is given;
# jalv.qt5 embeds X11 editors only with libqt5x11extras5, otherwise it shows
# its generic sliders: every line says which it showed (ui=own|generic).
# BUNDLE_DIR is our built vantry.lv2; it goes on LV2_PATH before
# /usr/lib/lv2. Every run starts the host, then:
#   map     ms until the host's top-level window is viewable (jalv builds the
#           plug-in's editor before it shows its window)
#   paint   ms until the window's picture is within 1 % of its pixels of the
#           settled picture (visually complete)
#   settle  ms until the settled picture (unchanged for 1 s) first appeared
#   mem     VmHWM of the host process (peak resident memory), MiB
#   cpu     host CPU over the idle window (all threads), % of one core
#   cs/s    host context switches per second over the idle window (wake-ups)
# Frames are captured with xwd (~40 ms apart), so differences under ~40 ms
# in the times are noise. Raw lines: DIR/runs.txt; table: DIR/table.md.
set -u
here=$(cd "$(dirname "$0")" && pwd)

runs=5 idle=10 out='' hosts=() bundles=() extra=() only=''
while [ $# -gt 0 ]; do
  case "$1" in
    -n) runs=$2; shift 2 ;;
    --host) hosts+=("$2"); shift 2 ;;
    --idle) idle=$2; shift 2 ;;
    --out) out=$2; shift 2 ;;
    --bundle) bundles+=("$2"); shift 2 ;;
    --plugin) extra+=("$2"); shift 2 ;;
    --only) only=",$2,"; shift 2 ;;
    -h|--help) sed -n '2,27p' "$0"; exit 0 ;;
    -*) echo "hosts.sh: unknown option $1" >&2; exit 2 ;;
    *) bundle=$1; shift ;;
  esac
done
[ -n "${bundle:-}" ] && [ -f "$bundle/manifest.ttl" ] || { echo "hosts.sh: give the built vantry.lv2 folder" >&2; exit 2; }
if [ ${#hosts[@]} -eq 0 ]; then
  hosts=(jalv.gtk3)
  command -v jalv.qt5 >/dev/null && hosts+=(jalv.qt5)
fi
for tool in Xvfb jackd jack_wait jalv.gtk3 lv2ls xdotool xwd convert compare; do
  command -v "$tool" >/dev/null || { echo "hosts.sh: $tool is not installed" >&2; exit 2; }
done

work=$(mktemp -d -t vantry-hosts.XXXXXX)
[ -n "$out" ] || out=$work/out
mkdir -p "$out"
out=$(cd "$out" && pwd)
: >"$out/runs.txt"

# A private home, display and JACK server: nothing shared with anyone else.
export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data \
  XDG_CACHE_HOME=$work/cache XDG_RUNTIME_DIR=$work/runtime
mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME" "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"
mkdir -p "$work/lv2"
ln -s "$(cd "$bundle" && pwd)" "$work/lv2/vantry.lv2"
for b in ${bundles[@]+"${bundles[@]}"}; do
  ln -s "$(cd "$b" && pwd)" "$work/lv2/$(basename "$b")"
done
export LV2_PATH=$work/lv2:/usr/lib/lv2
export JACK_DEFAULT_SERVER=vantry-bench-$$ JACK_NO_AUDIO_RESERVATION=1

xpid='' jpid='' hpid=''
stop() {  # stop PID: TERM, then KILL after 5 s
  [ -n "$1" ] && kill -0 "$1" 2>/dev/null || return 0
  kill -TERM "$1" 2>/dev/null
  for _ in $(seq 50); do kill -0 "$1" 2>/dev/null || break; sleep 0.1; done
  kill -KILL "$1" 2>/dev/null
  wait "$1" 2>/dev/null
}
cleanup() { stop "$hpid"; stop "$jpid"; stop "$xpid"; rm -rf "$work"; }
trap cleanup EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

Xvfb -displayfd 3 -screen 0 1920x1080x24 -nolisten tcp -noreset 3>"$work/display" 2>"$work/xvfb.log" </dev/null &
xpid=$!
for _ in $(seq 100); do [ -s "$work/display" ] && break; sleep 0.05; done
[ -s "$work/display" ] || { echo "hosts.sh: Xvfb did not start" >&2; cat "$work/xvfb.log" >&2; exit 1; }
export DISPLAY=:$(head -n1 "$work/display")
jackd -n "$JACK_DEFAULT_SERVER" --no-realtime -d dummy -r 48000 -p 1024 >"$work/jackd.log" 2>&1 </dev/null &
jpid=$!
timeout 15 jack_wait -s "$JACK_DEFAULT_SERVER" -w -t 10 >/dev/null 2>&1 ||
  { echo "hosts.sh: jackd did not start" >&2; cat "$work/jackd.log" >&2; exit 1; }

# The plug-ins: LABEL URI (LSP's parametric equaliser is looked up by name).
lsp=$(lv2ls | grep -i 'lsp-plug.in/plugins/lv2/para_equalizer_x16_stereo$' | head -n1)
[ -n "$lsp" ] || lsp=$(lv2ls | grep -i 'para' | grep -i stereo | head -n1)
plugins=(
  "baseline http://lv2plug.in/plugins/eg-amp"
  "vantry https://www.zel-audio.example/plugins/vantry#stereo"
  "x42-fil4 http://gareus.org/oss/lv2/fil4#stereo"
  "lsp-peq $lsp"
  "zam-eq2 urn:zamaudio:ZamEQ2"
  "df-room urn:dragonfly:room"
  ${extra[@]+"${extra[@]}"}
)
if [ -n "$only" ]; then
  kept=()
  for p in "${plugins[@]}"; do [[ $only == *",${p%% *},"* ]] && kept+=("$p"); done
  plugins=("${kept[@]}")
fi
for p in "${plugins[@]}"; do
  lv2ls | grep -qxF "${p#* }" || echo "hosts.sh: ${p%% *} (${p#* }) is not installed: its runs will fail" >&2
done

hz=$(getconf CLK_TCK)
now_ms() { local t=${EPOCHREALTIME/./}; echo $((t / 1000)); }
ticks() { local s; s=$(cat "/proc/$1/stat" 2>/dev/null) || return 0; s=${s##*) }; set -- $s; echo $((${12} + ${13})); }
switches() { cat /proc/"$1"/task/*/status 2>/dev/null | awk '/_ctxt_switches/ { s += $2 } END { print s + 0 }'; }

# measure HOST LABEL URI RUN: one line of key=value on stdout.
measure() {
  local host=$1 label=$2 uri=$3 run=$4 t0 t top='' status=ok map=NA paint=NA settle=NA
  local f="$work/frames" last='' last_t=0 h cpu=NA cs=NA hwm=NA
  rm -rf "$f"
  mkdir -p "$f"
  t0=$(now_ms)
  "$host" "$uri" >"$work/host.log" 2>&1 </dev/null &
  hpid=$!
  while :; do
    top=$(xdotool search --onlyvisible --maxdepth 1 --pid "$hpid" 2>/dev/null | head -n1)
    t=$(now_ms)
    [ -n "$top" ] && { map=$((t - t0)); break; }
    kill -0 "$hpid" 2>/dev/null || { status=died; break; }
    [ $((t - t0)) -lt 30000 ] || { status=no-window; break; }
    sleep 0.025
  done
  # Every distinct picture of the host's window until one has held for 1 s.
  while [ "$status" = ok ]; do
    t=$(now_ms)
    xwd -silent -id "$top" >"$work/frame.xwd" 2>/dev/null
    h=$(md5sum <"$work/frame.xwd")
    if [ "$h" != "$last" ]; then
      last=$h last_t=$t
      mv "$work/frame.xwd" "$f/$(printf '%06d' $((t - t0))).xwd"
    elif [ $((t - last_t)) -ge 1000 ]; then
      settle=$((last_t - t0))
      break
    fi
    kill -0 "$hpid" 2>/dev/null || { status=died; break; }
    [ $((t - t0)) -lt 30000 ] || { status=unstable; break; }
    sleep 0.025
  done
  if [ "$status" = ok ]; then
    local c0 c1 s0 s1 i0 i1
    c0=$(ticks "$hpid") s0=$(switches "$hpid") i0=$(now_ms)
    sleep "$idle"
    c1=$(ticks "$hpid") s1=$(switches "$hpid") i1=$(now_ms)
    if [ -n "$c0" ] && [ -n "$c1" ]; then
      cpu=$(awk -v c=$((c1 - c0)) -v hz="$hz" -v e=$((i1 - i0)) 'BEGIN { printf "%.2f", 100 * c * 1000 / hz / e }')
      cs=$(awk -v d=$((s1 - s0)) -v e=$((i1 - i0)) 'BEGIN { printf "%.1f", d * 1000 / e }')
      hwm=$(awk '$1 == "VmHWM:" { printf "%.1f", $2 / 1024 }' "/proc/$hpid/status")
    else
      status=died
    fi
  fi
  stop "$hpid"
  hpid=''
  # jalv names the editor it embeds ("UI: URI"; "UI: None" or no line for
  # its generic sliders).
  local ui=generic
  grep -qE '^UI: +[a-z]+:' "$work/host.log" && ui=own
  # Visually complete: the first picture within 1 % of the settled one.
  if [ "$status" = ok ]; then
    local shots final npx ae
    shots=("$f"/*.xwd)
    final=${shots[${#shots[@]} - 1]}
    convert "xwd:$final" "$work/final.ppm" 2>/dev/null
    npx=$(convert "$work/final.ppm" -format '%[fx:w*h]' info:)
    for s in "${shots[@]}"; do
      ae=$(compare -metric AE "xwd:$s" "$work/final.ppm" null: 2>&1 >/dev/null)
      if awk -v a="${ae%% *}" -v n="$npx" 'BEGIN { exit !(a + 0 <= n / 100) }'; then
        s=${s##*/}
        paint=$((10#${s%.xwd}))
        break
      fi
    done
    [ "$(convert "$work/final.ppm" -format '%k' info:)" -gt 1 ] || status=blank
  fi
  echo "host=$host label=$label run=$run status=$status ui=$ui map=$map paint=$paint settle=$settle mem=$hwm cpu=$cpu cs=$cs"
}

# Rounds: w (warm-up: first loads from disk, caches; left out), then 1..runs,
# each round every host and every plug-in in the same order.
for run in w $(seq "$runs"); do
  for host in "${hosts[@]}"; do
    for p in "${plugins[@]}"; do
      line=$(measure "$host" "${p%% *}" "${p#* }" "$run")
      echo "$line" >&2
      [ "$run" = w ] || echo "$line" >>"$out/runs.txt"
    done
  done
done

"$here/table.sh" "$out/runs.txt" | tee "$out/table.md"
