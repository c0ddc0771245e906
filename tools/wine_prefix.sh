#!/usr/bin/env bash
# Makes the Wine prefix under build/ on first use: 32-bit, with the fonts that the windows name mapped to installed ones.
source "$(dirname "$0")/common.sh"

ready=$WINEPREFIX/.tarnwick-ready
[ -f "$ready" ] && exit 0

make_prefix() {
  rm -rf "$WINEPREFIX"
  mkdir -p "$WINEPREFIX"
  # No window is shown while the prefix is made, so no display is needed.
  env -u DISPLAY wineboot --init
  local replacements='HKCU\Software\Wine\Fonts\Replacements'
  env -u DISPLAY wine reg add "$replacements" /v "Arial Unicode MS" /d "Liberation Sans" /f
  env -u DISPLAY wine reg add "$replacements" /v "Microsoft Sans Serif" /d "Liberation Sans" /f
  env -u DISPLAY wine reg add "$replacements" /v "Terminal" /d "Liberation Mono" /f
  wineserver -w
}

quietly "making the Wine prefix" make_prefix
touch "$ready"
