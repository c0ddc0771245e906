#!/usr/bin/env bash
# Installs the Debian packages for building, running and testing; with --lint also those for ./lint, with --host also those
# for tools/sanitize. Returns quickly when all are installed.
source "$(dirname "$0")/common.sh"

packages=(
  cmake ninja-build g++-mingw-w64-i686-posix googletest  # toolchain and test library
  wine wine64 wine32:i386                                # runs the programs
  xvfb xdotool imagemagick x11-utils                     # display, mouse, screenshots
  socat                                                  # pseudo-terminal pairs as serial lines
  fp-utils                                               # chmcmd, the help compiler
  python3                                                # artwork and small build steps
  cmark-gfm                                              # the package's pages
  fonts-dejavu-core fonts-liberation fonts-wine          # text in the windows
  fonts-wqy-microhei fonts-lohit-deva                    # Chinese, Japanese, Korean; Hindi
  fontforge-nox                                          # merges fonts, for Arabic and Hindi
)

# One version of the tools, so that findings are the same on all machines; Debian 12 and 13 both have it.
if [ "${1:-}" = --lint ]; then
  packages+=(git clang-19 clang-format-19 clang-tidy-19 llvm-19 cppcheck shellcheck flake8)
fi

# The compiler for this machine with its sanitizers, and headers with Windows' types.
if [ "${1:-}" = --host ]; then
  packages+=(g++-multilib libwine-dev gcovr locales)
fi

missing() {
  local package status
  for package in "${packages[@]}"; do
    status=$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null || true)
    [ "$status" = "install ok installed" ] || printf '%s\n' "$package"
  done
}

mapfile -t wanted < <(missing)
[ ${#wanted[@]} -eq 0 ] && exit 0

command -v apt-get >/dev/null || die "apt-get not found; install these packages by hand: ${wanted[*]}"
if [ "$(id -u)" -eq 0 ]; then
  as_root=()
elif command -v sudo >/dev/null; then
  as_root=(sudo)
else
  die "packages are missing, and this is neither root nor is sudo installed; install as root: ${wanted[*]}"
fi

dpkg --print-foreign-architectures | grep -qx i386 || "${as_root[@]}" dpkg --add-architecture i386 ||
  die "could not add the i386 architecture (32-bit Wine needs it)"

export DEBIAN_FRONTEND=noninteractive
install_with() { "${as_root[@]}" apt-get "$@" install -y --no-install-recommends "${wanted[@]}"; }

# A failed update is not fatal, because a partly refreshed index may suffice: the install decides.
update() { "${as_root[@]}" apt-get update || say "apt-get update reported errors; continuing"; }

# When the i386 index of the security suite is broken, amd64 and i386 versions of shared libraries differ and nothing can be
# installed. A temporary preferences file that lowers the priority of that suite gives both the same version.
install_without_security_suite() {
  local preferences
  preferences=$(mktemp)
  printf 'Package: *\nPin: release l=Debian-Security\nPin-Priority: 90\n' >"$preferences"
  chmod 644 "$preferences"
  install_with -o Dir::Etc::preferences="$preferences"
  local result=$?
  rm -f "$preferences"
  return $result
}

install_all() { update; install_with || install_without_security_suite; }
quietly "installing packages" install_all

mapfile -t wanted < <(missing)
[ ${#wanted[@]} -eq 0 ] || die "still missing after the install: ${wanted[*]}"
