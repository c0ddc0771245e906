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

# Wine shapes Arabic and Devanagari only when the face itself has them, as Windows' Arial and Arial Unicode MS do. So this
# makes such a face: Liberation Sans, with Arabic and the marks of direction from DejaVu Sans, and Devanagari from Lohit.
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

# A list of texts as a registry script has it: their bytes in hexadecimal.
multi_text() { printf '%s\0' "$@" '' | od -An -v -tx1 | tr -s ' \n' ',' | sed 's/^,/hex(7):/; s/,$//'; }

# Faces that no package brings become their nearest kin; scripts that a face lacks come from the fonts linked to it.
# Wine draws common controls in a visual style whether a manifest asks for it or not, and not in the system's colours. The
# programs ask for none (docs/decisions/no-themes.md), so Windows shows them the classic controls; so does this prefix.
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
  # A bold face is looked up under a name of its own.
  for face in 'Tahoma' 'Tahoma Bold' 'MS Sans Serif' 'Microsoft Sans Serif' 'System' 'Liberation Sans' \
    'Liberation Sans Bold' 'Test Bed Sans' 'Test Bed Sans Bold' 'Arial' 'Arial Unicode MS'; do
    printf '"%s"=%s\n' "$face" "$links"
  done
}

give_settings() {
  copy_fonts && make_face Regular DejaVuSans && make_face Bold DejaVuSans-Bold &&
    settings >"$build_dir/settings.reg" && env -u DISPLAY wine reg import "$build_dir/settings.reg" && stop_wine
}

[ -f "$ready" ] || quietly "making the Wine prefix" make_prefix
quietly "giving the Wine prefix its fonts and settings" give_settings
printf '%s\n' "$version" >"$ready"
