# Shared by the scripts in this folder: paths, messages, and the Wine environment that every step runs in.
# Source it; it changes nothing on the machine.

set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir=$root/build
# KV_DESKTOP is the suffix of the desktop's prefix; tests run on several desktops.
export WINEPREFIX=$build_dir/wine${KV_DESKTOP:-}
export WINEARCH=win32
# No debugger on a crash (the process ends with an error code instead of hanging), and no prompts to download add-ons.
export WINEDLLOVERRIDES="winedbg.exe=d;mscoree,mshtml="
# File names may contain any character; in an ASCII locale, Wine could not create such files.
export LC_ALL=C.UTF-8
export WINEDEBUG=${WINEDEBUG:--all}

say() { printf '%s\n' "$*" >&2; }
die() { printf '%s: %s\n' "$(basename "$0")" "$*" >&2; exit 1; }

# A script's first comment is its help.
case ${1:-} in -h | --help ) sed -n '2,${/^#/!q;s/^# \{0,1\}//p}' "$0"; exit ;; esac

# Runs a step and shows its output only when it fails, with the path of the log.
quietly() {
  local what=$1 log
  shift
  mkdir -p "$build_dir"
  log=$build_dir/$(printf '%s' "$what" | tr -c 'a-zA-Z0-9\n' '-').log
  say "$what ..."
  if ! "$@" >"$log" 2>&1; then
    tail -n 40 "$log" >&2
    die "failed: $what (whole output: ${log#"$root"/})"
  fi
}

# Starts a virtual display and sets DISPLAY; stop_display ends it.
start_display() {
  local geometry=${1:-1280x1024x24} number_file=$build_dir/display.$BASHPID
  mkdir -p "$build_dir"
  : >"$number_file"
  Xvfb -displayfd 3 -screen 0 "$geometry" -nolisten tcp 3>"$number_file" >/dev/null 2>&1 &
  display_pid=$!
  for _ in $(seq 400); do
    [ -s "$number_file" ] && break
    sleep 0.05
  done
  [ -s "$number_file" ] || die "the virtual display did not start; is the package xvfb installed?"
  DISPLAY=:$(cat "$number_file")
  export DISPLAY
  rm -f "$number_file"
}

# Makes all Wine programs of the prefix run on one desktop window of this size, which draws captions and allows moving and
# resizing without a window manager. Without a size, each window is a top-level window of the display.
use_wine_desktop() {
  local size=${1:-} key='HKCU\Software\Wine\Explorer'
  if [ -n "$size" ]; then
    # A desktop of another size that an earlier script has set would open with the first program.
    if grep -qs '^"Desktop"="Bench"' "$WINEPREFIX/user.reg" && ! grep -q "^\"Bench\"=\"$size\"" "$WINEPREFIX/user.reg"; then
      use_wine_desktop
      stop_wine
    fi
    wine reg add "$key" /v Desktop /d Bench /f >/dev/null 2>&1
    wine reg add "$key\Desktops" /v Bench /d "$size" /f >/dev/null 2>&1
    # Start the desktop before any program uses it: otherwise the first program would start it, and it would inherit that
    # program's output. An idle program keeps it open as long as this script runs: otherwise it would close after the last
    # program, together with the next one that is just starting.
    wine explorer "/desktop=Bench,$size" >/dev/null 2>&1 &
    timeout 60 xdotool search --sync --name 'Wine desktop' >/dev/null 2>&1 || die "the Wine desktop did not start"
    exec {desktop_holder}> >(wine cmd >/dev/null 2>&1)
  else
    wine reg delete "$key" /v Desktop /f >/dev/null 2>&1 || true
  fi
}

stop_display() {
  [ -n "${display_pid:-}" ] || return 0
  kill "$display_pid" 2>/dev/null || true
  wait "$display_pid" 2>/dev/null || true
  display_pid=
}

stop_wine() {
  command -v wineserver >/dev/null && [ -d "$WINEPREFIX" ] || return 0
  wineserver -k >/dev/null 2>&1 || true
  wineserver -w >/dev/null 2>&1 || true
}
