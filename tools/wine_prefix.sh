#!/usr/bin/env bash
# Creates the Wine prefix under build/ on first use: 32-bit, with the fonts that the programs use. When this script has
# changed, it updates fonts and settings of an existing prefix.
source "$(dirname "$0")/common.sh"

ready=$WINEPREFIX/.tarnwick-ready
version=$(cksum <"$0")
[ "$(cat "$ready" 2>/dev/null)" = "$version" ] && exit 0

# Running programs would keep their old fonts.
stop_wine

make_prefix() {
  rm -rf "$WINEPREFIX"
  mkdir -p "$WINEPREFIX"
  # No window is shown, so no display is needed.
  env -u DISPLAY wineboot --init
}

# Debian's Wine does not find its own fonts: without them every font is replaced by the same one, dialog units are too small,
# and captions show letters instead of buttons.
copy_fonts() {
  local font target=$WINEPREFIX/drive_c/windows/Fonts
  mkdir -p "$target"
  for font in tahoma.ttf tahomabd.ttf ms_sans_serif.ttf system.ttf marlett.ttf vgasys.fon sserife.fon; do
    cp -f "/usr/share/wine/fonts/$font" "$target/"
  done
}

# Wine shapes Arabic and Devanagari only if the font itself contains them, as Windows' Arial and Arial Unicode MS do.
# Therefore this merges a font: Liberation Sans, Arabic and direction marks from DejaVu Sans, and Devanagari from Lohit.
make_face() {
  local style=$1 arabic=$2 fonts=/usr/share/fonts/truetype work
  work=$(mktemp -d)
  fontforge -lang=ff -c '
    Open($2)
    Select(0u0600, 0u06ff); SelectMore(0ufb50, 0ufdff); SelectMore(0ufe70, 0ufefc)
    SelectMore(0u200b, 0u200f); SelectMore(0u202a, 0u202e); SelectMore(0u2066, 0u2069)
    SelectInvert(); DetachAndRemoveGlyphs(); Save($4 + "/arabic.sfd"); Close()
    Open($3); SelectAll(); ScaleToEm(2048); Save($4 + "/devanagari.sfd"); Close()
    Open($1); MergeFonts($4 + "/arabic.sfd"); MergeFonts($4 + "/devanagari.sfd")
    SetFontNames("TestBedSans-" + $5, "Test Bed Sans", "Test Bed Sans " + $5, $5)
    Generate($6)' "$fonts/liberation/LiberationSans-$style.ttf" "$fonts/dejavu/$arabic.ttf" \
    "$fonts/lohit-devanagari/Lohit-Devanagari.ttf" "$work" "$style" "$WINEPREFIX/drive_c/windows/Fonts/testbed_$style.ttf"
  rm -r "$work"
}

# A REG_MULTI_SZ value for a registry script: bytes in hexadecimal.
multi_text() { printf '%s\0' "$@" '' | od -An -v -tx1 | tr -s ' \n' ',' | sed 's/^,/hex(7):/; s/,$//'; }

# Fonts that no package provides are replaced by similar ones; scripts that a font lacks come from the fonts linked to it.
# Wine themes common controls even if no manifest requests it, and ignores the system's colors. The programs request no
# themes (docs/decisions/no-themes.md), so Windows draws classic controls; this prefix does, too.
settings() {
  local face links
  links=$(multi_text 'LiberationSans-Regular.ttf,Liberation Sans' 'DejaVuSans.ttf,DejaVu Sans' \
    'wqy-microhei.ttc,WenQuanYi Micro Hei' 'Lohit-Devanagari.ttf,Lohit Devanagari')  # Greek, Arabic, Far East, Hindi
  cat <<'END'
REGEDIT4

[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\ThemeManager]
"ThemeActive"="0"

[HKEY_CURRENT_USER\Software\Wine\Fonts\Replacements]
"Arial"="Test Bed Sans"
"Arial Unicode MS"="Test Bed Sans"
"Microsoft Sans Serif"="Tahoma"
"Terminal"="Liberation Mono"

[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows NT\CurrentVersion\FontLink\SystemLink]
END
  # Bold fonts are looked up under separate names.
  for face in 'Tahoma' 'Tahoma Bold' 'MS Sans Serif' 'Microsoft Sans Serif' 'System' 'Liberation Sans' \
    'Liberation Sans Bold' 'Test Bed Sans' 'Test Bed Sans Regular' 'Test Bed Sans Bold' 'Arial' 'Arial Unicode MS'; do
    printf '"%s"=%s\n' "$face" "$links"
  done
}

give_settings() {
  copy_fonts && make_face Regular DejaVuSans && make_face Bold DejaVuSans-Bold &&
    settings >"$build_dir/settings.reg" && env -u DISPLAY wine reg import "$build_dir/settings.reg" && stop_wine
}

[ -f "$ready" ] || quietly "creating the Wine prefix" make_prefix
quietly "installing fonts and settings of the Wine prefix" give_settings
printf '%s\n' "$version" >"$ready"
