#!/usr/bin/env bash
# Takes screenshots of each sample's window at several sizes, and of the panel in German and Arabic, in build/samples.
# With --docs, takes one screenshot of each, in docs/.
source "$(dirname "$0")/common.sh"

shots=$build_dir/samples
sizes="default small large german"
[ "${1:-}" != --docs ] || { shots=$root/docs; sizes=default; }

"$root/tools/install_packages.sh"
"$root/tools/wine_prefix.sh"
cd "$root"
quietly "configuring" cmake --preset release
quietly "building the samples" cmake --build --preset release --target first_panel instrument_panel million_rows sensor_recorder track_export speedometer
mkdir -p "$shots"

finish() {
  [ -z "${sensor:-}" ] || kill "$sensor"
  tools/serial_pair.sh unplug-all
  use_wine_desktop
  stop_wine
  stop_display
}
trap finish EXIT

readonly left=40 top=40

# Stores the position at which a window will open.
remember() {
  local position=$1 width=$2 height=$3
  wine reg add 'HKCU\Software\korvel\WindowPositions' /v "$position" /f \
    /d "$left,$top,$((left + width)),$((top + height))" >/dev/null 2>&1
}

colors() { identify -format %k "$1" 2>/dev/null || echo 0; }

# A sensor on COM3: one number to a line, twenty a second.
play_sensor() {
  tools/serial_pair.sh plug com3 com4
  for ((i = 0; ; ++i)); do
    awk -v i="$i" 'BEGIN { srand(i); printf "%.2f\n", 21.5 + 2 * sin(i / 140) + sin(i / 35) * sin(i / 300) + 0.2 * rand() }'
    sleep 0.05
  done >"$build_dir/serial/com4.tty"
}

# What the screenshot shows at work: the recorder's last minute. The chart has the focus at first.
operate() {
  [ "$1" != first_panel ] || sleep 50
  [ "$1" = sensor_recorder ] || return 0
  xdotool key --delay 200 Tab Tab space
  sleep 60
  xdotool key --delay 200 shift+Tab shift+Tab plus plus plus plus plus plus
}

# take SAMPLE POSITION WIDTH HEIGHT NAME: a screenshot of the sample's window when it is drawn.
take() {
  local sample=$1 position=$2 width=$3 height=$4 shot=$shots/$5.png pid seen=0
  remember "$position" "$width" "$height"
  wine "$build_dir/release/samples/$sample.exe" >/dev/null 2>&1 &
  pid=$!
  for _ in $(seq 60); do
    sleep 0.5
    import -window root -crop "${width}x$height+$left+$top" +repage "$shot"
    [ "$(colors "$shot")" -ge 8 ] || continue
    seen=$((seen + 1))
    [ "$seen" -ne 1 ] || operate "$sample"
    [ "$seen" -lt 5 ] || break
  done
  kill "$pid" 2>/dev/null || true
  wait "$pid" 2>/dev/null || true
  [ "$seen" -ge 5 ] || die "$sample showed no window"
  say "screenshot: ${shot#"$root"/}"
}

speak() {
  wine reg add 'HKCU\Software\korvel\Configuration\instrument_panel' /v LanguageCode /t REG_DWORD /d "$1" /f >/dev/null 2>&1
}

start_display 1280x1024x24
play_sensor &
sensor=$!
use_wine_desktop 1280x1024
for size in $sizes; do
  speak 0
  case $size in
    default )
      take instrument_panel Samples.InstrumentPanel 620 470 sample-instrument-panel
      take million_rows Samples.Readings 540 440 sample-million-rows
      take sensor_recorder Samples.SensorRecorder 620 380 sample-sensor-recorder
      take track_export Samples.Track 500 180 sample-track-export
      take first_panel Samples.FirstPanel 548 271 sample-first-panel
      take speedometer Samples.Speedometer 300 320 sample-speedometer
      ;;
    small )
      take instrument_panel Samples.InstrumentPanel 460 380 panel-small
      take million_rows Samples.Readings 400 360 rows-small
      take track_export Samples.Track 400 190 track-small
      ;;
    large )
      take instrument_panel Samples.InstrumentPanel 1150 900 panel-large
      take million_rows Samples.Readings 1100 900 rows-large
      take track_export Samples.Track 1000 400 track-large
      ;;
    german )
      speak 1
      take instrument_panel Samples.InstrumentPanel 620 470 panel-german
      speak 15
      take instrument_panel Samples.InstrumentPanel 620 470 panel-arabic
      speak 0
      ;;
  esac
done
