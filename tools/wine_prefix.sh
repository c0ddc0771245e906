#!/usr/bin/env bash
# Makes the Wine prefix under build/ on first use: 32-bit, with the fonts that the windows name. A prefix that stands gets
# its fonts and settings anew whenever this script has changed.
source "$(dirname "$0")/common.sh"

ready=$WINEPREFIX/.tarnwick-ready
version=$(cksum <"$0")
[ "$(cat "$ready" 2>/dev/null)" = "$version" ] && exit 0

# Programs that still run would keep the fonts that they started with.
stop_wine

make_prefix() {
  rm -rf "$WINEPREFIX"
  mkdir -p "$WINEPREFIX"
  # No window is shown while the prefix is made, so no display is needed.
  env -u DISPLAY wineboot --init
  wineserver -w
}

# Wine as Debian packages it does not find its own fonts: without them every face becomes the same substitute, dialog units
# come out too small, and captions show letters where their buttons should be.
copy_fonts() {
  local font target=$WINEPREFIX/drive_c/windows/Fonts
  mkdir -p "$target"
  for font in tahoma.ttf tahomabd.ttf ms_sans_serif.ttf system.ttf marlett.ttf vgasys.fon sserife.fon; do
    cp -f "/usr/share/wine/fonts/$font" "$target/"
  done
}

# Faces that no package brings become their nearest kin; scripts that a face lacks come from the fonts linked to it.
map_fonts() {
  local face other faces='HKCU\Software\Wine\Fonts\Replacements'
  local links='HKLM\Software\Microsoft\Windows NT\CurrentVersion\FontLink\SystemLink'
  local others=(
    'LiberationSans-Regular.ttf,Liberation Sans'   # Greek
    'DejaVuSans.ttf,DejaVu Sans'                   # Arabic
    'wqy-microhei.ttc,WenQuanYi Micro Hei'         # Chinese, Japanese, Korean
    'Lohit-Devanagari.ttf,Lohit Devanagari'        # Hindi
  )
  while IFS='=' read -r face other; do
    env -u DISPLAY wine reg add "$faces" /v "$face" /d "$other" /f
  done <<'END'
Arial=Liberation Sans
Arial Unicode MS=Liberation Sans
Microsoft Sans Serif=Tahoma
Terminal=Liberation Mono
END
  # A bold face is looked up under a name of its own.
  for face in 'Tahoma' 'Tahoma Bold' 'MS Sans Serif' 'Microsoft Sans Serif' 'System' 'Liberation Sans' \
    'Liberation Sans Bold' 'Arial' 'Arial Unicode MS'; do
    env -u DISPLAY wine reg add "$links" /v "$face" /t REG_MULTI_SZ /s '|' /d "$(IFS='|'; echo "${others[*]}")" /f
  done
  wineserver -w
}

# Wine draws common controls in a visual style whether a manifest asks for it or not, and not in the system's colours. The
# programs ask for none (docs/decisions/no-themes.md), so Windows shows them the classic controls; so does this prefix.
leave_styles() {
  env -u DISPLAY wine reg add 'HKCU\Software\Microsoft\Windows\CurrentVersion\ThemeManager' /v ThemeActive /d 0 /f
  wineserver -w
}

[ -f "$ready" ] || quietly "making the Wine prefix" make_prefix
quietly "giving the Wine prefix its fonts and settings" eval 'copy_fonts && map_fonts && leave_styles'
printf '%s\n' "$version" >"$ready"
