#!/usr/bin/env bash
# Creates and removes serial lines made of pseudo-terminal pairs.
#
#   serial_pair.sh plug COMA COMB     creates a line between two COM ports of the Wine prefix (names in lower case: com3 com4)
#   serial_pair.sh unplug COMA        removes that line, even while a program uses it
#   serial_pair.sh unplug-all
source "$(dirname "$0")/common.sh"

# Marker files are named so that Windows programs do not take them for a port ("com3.pid" is one).
state_dir=$build_dir/serial${KV_DESKTOP:-}
devices=$WINEPREFIX/dosdevices

unplug() {
  local port=$1
  [ -f "$state_dir/line-$port.pid" ] || return 0
  kill "$(cat "$state_dir/line-$port.pid")" 2>/dev/null || true
  # socat removes its links when it ends; its process id may remain as a zombie.
  for _ in $(seq 200); do
    [ -L "$state_dir/$port.tty" ] || break
    sleep 0.01
  done
  rm -f "$devices/$port" "$devices/$(cat "$state_dir/line-$port.other")" "$state_dir/line-$port.other"
  # Last: programs that wait for the removal watch this file.
  rm -f "$state_dir/line-$port.pid"
}

plug() {
  local port=$1 other=$2
  unplug "$port"
  mkdir -p "$state_dir"
  setsid socat "pty,raw,echo=0,link=$state_dir/$port.tty" "pty,raw,echo=0,link=$state_dir/$other.tty" \
    </dev/null >/dev/null 2>&1 &
  echo $! >"$state_dir/line-$port.new"
  echo "$other" >"$state_dir/line-$port.other"
  for _ in $(seq 300); do
    [ -e "$state_dir/$port.tty" ] && [ -e "$state_dir/$other.tty" ] && break
    sleep 0.01
  done
  [ -e "$state_dir/$other.tty" ] || die "socat created no pseudo-terminals for $port and $other"
  ln -sfn "$state_dir/$port.tty" "$devices/$port"
  ln -sfn "$state_dir/$other.tty" "$devices/$other"
  # Last: this file shows that the line exists.
  mv "$state_dir/line-$port.new" "$state_dir/line-$port.pid"
}

case ${1:-} in
  plug) plug "${2:?first port}" "${3:?second port}" ;;
  unplug) unplug "${2:?port}" ;;
  unplug-all)
    for file in "$state_dir"/line-*.pid; do
      [ -f "$file" ] || continue
      name=$(basename "$file" .pid)
      unplug "${name#line-}"
    done ;;
  *) die "usage: serial_pair.sh plug COMA COMB | unplug COMA | unplug-all" ;;
esac
