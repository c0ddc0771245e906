#!/usr/bin/env bash
# Compares Tarnwick with alternatives on the same stream of 93 records a second: processor use, memory, start time.
#
#   benchmarks/run side_by_side [SECONDS]            Tarnwick, a script with a canvas, and the native plotter in the
#                                                    variable SERIALPLOT, if it is set
#   benchmarks/run side_by_side requests [SECONDS]   the requests to Wine's server for each tick and record of Tarnwick
#
# Run it on an idle machine. Called by benchmarks/run.
source "$(dirname "$0")/../tools/common.sh"

here=$root/benchmarks/side_by_side
records_a_second=93
ticks_a_second=20
work=$(mktemp -d)

finish() {
  end_process "${camera:-}"
  end_process "${viewer:-}"
  rm -f "$WINEPREFIX/dosdevices/com3"
  stop_wine
  stop_display
  rm -rf "$work"
}
trap finish EXIT

end_process() { [ -z "$1" ] || { kill "$1" && wait "$1"; } 2>/dev/null || true; }

install_viewers() {
  local packages=(python3-serial python3-tk) as_root=()
  dpkg -s "${packages[@]}" >/dev/null 2>&1 && return
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y --no-install-recommends "${packages[@]}"
}

# The Wine server of this prefix: its working folder is named after the prefix's device and inode.
server_process() {
  local folder process
  folder=server-$(stat -c %D "$WINEPREFIX")-$(printf '%x' "$(stat -c %i "$WINEPREFIX")")
  for process in $(pgrep -x wineserver || pgrep wineserver); do
    [[ $(readlink "/proc/$process/cwd") == */$folder ]] && echo "$process" && return
  done
  die "no Wine server of this prefix found"
}

now_ms() { date +%s%3N; }
ticks() { awk '{ print $14 + $15 }' "/proc/$1/stat"; }
pss() { awk '/^Pss:/ { print $2 }' "/proc/$1/smaps_rollup"; }

start_camera() {
  end_process "${camera:-}"
  /usr/bin/python3 "$here/stream_records.py" "$1" $records_a_second 3600 >/dev/null &
  camera=$!
  for _ in $(seq 100); do
    [ -L "$1" ] && return
    sleep 0.05
  done
  die "the camera did not start"
}

wait_for_window() { timeout 20 xdotool search --sync --onlyvisible --name "$1" >/dev/null || die "no window \"$1\""; }

# report NAME PROCESS START_MS [SERVER]: prints the processor time of both during the measurement, in percent of a core.
report() {
  local name=$1 process=$2 start=$3 server=${4:-} before server_before=0 after server_after=0
  before=$(ticks "$process")
  [ -z "$server" ] || server_before=$(ticks "$server")
  sleep "$seconds"
  after=$(ticks "$process")
  [ -z "$server" ] || server_after=$(ticks "$server")
  awk -v name="$name" -v own=$((after - before)) -v other=$((server_after - server_before)) -v seconds="$seconds" \
    -v hertz="$(getconf CLK_TCK)" -v pss="$(pss "$process")" -v start="$start" 'BEGIN {
      share = 100 / hertz / seconds
      printf "%-14s %5.2f %% + %5.2f %% = %5.2f %% of a core   %5.1f MB   window after %4d ms\n", name,
        own * share, other * share, (own + other) * share, pss / 1024, start
    }'
}

# Starts the tool on the stream and presses its button; sets camera, viewer and start_ms.
start_tarnwick() {
  local x y started
  start_camera "$work/camera"
  ln -sfn "$work/camera" "$WINEPREFIX/dosdevices/com3"
  started=$(now_ms)
  wine "$build_dir/release/app/tarnwick.exe" &
  viewer=$!
  wait_for_window '^Tarnwick$'
  start_ms=$(($(now_ms) - started))
  for _ in 1 2 3; do
    # The scan's only read may end in a gap of the stream; then press again, as a user would.
    read -r x y < <(wine "$build_dir/release/tools/uidriver.exe" button 2>/dev/null | tr -d '\r')
    xdotool mousemove "$x" "$y" sleep 0.3 click 1 mousemove 2 2
    timeout 10 wine "$build_dir/release/tools/uidriver.exe" points >/dev/null 2>&1 && return
  done
  die "Tarnwick found no camera"
}

compare() {
  seconds=${1:-30}
  use_wine_desktop 1280x1024
  echo "                process   Wine's server"
  start_tarnwick
  sleep 2
  report Tarnwick "$viewer" "$start_ms" "$(server_process)"
  wine "$build_dir/release/tools/uidriver.exe" close >/dev/null 2>&1
  viewer=
  start_native 'canvas script' 'canvas viewer' /usr/bin/python3 "$here/canvas_viewer.py" "$work/camera"
  [ -z "${SERIALPLOT:-}" ] ||
    start_native 'native plotter' SerialPlot "$SERIALPLOT" --config "$here/plotter.ini" --port "$work/camera" \
      --baudrate 38400 --open
}

start_native() {
  local name=$1 title=$2 started
  shift 2
  start_camera "$work/camera"
  started=$(now_ms)
  "$@" >/dev/null 2>&1 &
  viewer=$!
  wait_for_window "$title"
  start_ms=$(($(now_ms) - started))
  sleep 2
  report "$name" "$viewer" "$start_ms"
  end_process "$viewer"
  viewer=
}

# With tracing, Wine's server writes a line for each request: "thread: name( arguments )".
count_requests() {
  local seconds=${1:-10} from to
  wineserver -f -d 2>"$work/requests" &
  use_wine_desktop 1280x1024
  start_tarnwick
  sleep 2
  from=$(wc -l <"$work/requests")
  sleep "$seconds"
  to=$(wc -l <"$work/requests")
  sed -n "$((from + 1)),${to}p" "$work/requests" >"$work/measured"
  awk -v seconds="$seconds" -v ticks=$ticks_a_second -v records=$records_a_second '
    $2 ~ /^[a-z_]+\($/ {
      thread[$1] += 1 / seconds
      request[$1 " " $2] += 1 / seconds
    }
    END {
      for (id in thread) printf "%s all: %.0f a second, %.1f a tick, %.1f a record\n", id, thread[id],
        thread[id] / ticks, thread[id] / records
      for (name in request) if (request[name] >= 1) printf "%s) %.0f a second\n", name, request[name]
    }' "$work/measured" | sort
}

quietly "installing the alternatives" install_viewers
quietly "configuring" cmake --preset release
quietly "building" cmake --build --preset release
start_display 1280x1024x24
stop_wine
case ${1:-} in
  requests) count_requests "${@:2}" ;;
  *) compare "$@" ;;
esac
