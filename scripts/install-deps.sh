#!/usr/bin/env bash
# Installs what the build needs from Debian packages. Idempotent: when every
# package is present it prints nothing and returns at once.
#   scripts/install-deps.sh            native build and tests
#   scripts/install-deps.sh --m32      also the -m32 toolchain and i386 expat
#   scripts/install-deps.sh --fuzz     also clang with libFuzzer
#   scripts/install-deps.sh --package  also what makes and checks the Debian package
#   scripts/install-deps.sh --solaris  also what compiles for the Solaris 10 target here
# On a system without Debian's package tools (Solaris) it installs nothing
# and says what the build needs.
set -euo pipefail

if ! command -v dpkg-query >/dev/null 2>&1 || ! command -v apt-get >/dev/null 2>&1; then
  if [ "$(uname -s)" = "SunOS" ]; then
    cat >&2 <<'EOF_SOLARIS'
install-deps: no Debian package tools here; this script installs nothing on Solaris.
  The build needs: GCC with g++ 7 or later (C++17), GNU make, CMake 3.24 or later, and expat
  (Solaris 11: pkg install developer/gcc developer/build/gnu-make developer/build/cmake library/expat;
  Solaris 10: the same from OpenCSW or your own builds, under /opt/csw or /usr/local).
  Tests also need GoogleTest, CLI11 and nlohmann-json; the command line needs CLI11 and nlohmann-json.
  The PCI id database is read from /usr/share/hwdata/pci.ids (Solaris 11:
  pkg install system/data/hardware-registry), /usr/share/misc/pci.ids or /usr/share/pci.ids.
EOF_SOLARIS
  else
    echo "install-deps: no apt-get/dpkg-query here: install cmake, make, g++, pkg-config, expat, GoogleTest," \
         "Google Benchmark, CLI11, nlohmann-json and python3 yourself" >&2
  fi
  exit 0
fi

want=(cmake make g++ pkg-config libexpat1-dev libgtest-dev libgmock-dev googletest
      libbenchmark-dev libcli11-dev nlohmann-json3-dev python3 python3-jsonschema locales pci.ids)
m32=0
for arg in "$@"; do
  case "$arg" in
    --m32) m32=1; want+=(g++-multilib) ;;
    --fuzz) want+=(clang libclang-rt-dev) ;;
    --package) want+=(dpkg-dev file lintian mandoc) ;;
    --solaris) want+=(clang g++-multilib binutils xz-utils) ;;
    *) echo "install-deps: unknown option $arg" >&2; exit 2 ;;
  esac
done

missing=()
for p in "${want[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done

sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
updated=0
if [ ${#missing[@]} -gt 0 ]; then
  echo "install-deps: installing ${missing[*]}"
  $sudo apt-get update -qq || echo "install-deps: apt-get update reported errors; going on with the lists it has" >&2
  updated=1
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

# A comma-decimal locale: tests prove that numbers print with a point anyway.
if ! locale -a 2>/dev/null | grep -qix 'de_DE.utf8'; then
  $sudo localedef -i de_DE -f UTF-8 de_DE.UTF-8 || echo "install-deps: could not build de_DE.UTF-8; locale tests will skip" >&2
fi

# i386 expat for the -m32 build. A multiarch install often conflicts with the
# amd64 package's version, so unpack the i386 packages into a private prefix.
if [ "$m32" -eq 1 ]; then
  root="$(cd "$(dirname "$0")/.." && pwd)/build32/i386-root"
  if [ ! -e "$root/usr/include/expat.h" ]; then
    grep -qx i386 <(dpkg --print-foreign-architectures) || { $sudo dpkg --add-architecture i386; updated=0; }
    [ "$updated" -eq 1 ] || $sudo apt-get update -qq || echo "install-deps: apt-get update reported errors; going on with the lists it has" >&2
    tmp=$(mktemp -d)
    (cd "$tmp" && apt-get download -qq libexpat1:i386 libexpat1-dev:i386)
    mkdir -p "$root"
    for deb in "$tmp"/*.deb; do dpkg -x "$deb" "$root"; done
    rm -rf "$tmp"
  fi
fi
