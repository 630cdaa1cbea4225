#!/usr/bin/env bash
# Installs what the build needs from Debian packages. Idempotent: when every
# package is present it prints nothing and returns at once.
#   scripts/install-deps.sh            native build and tests
#   scripts/install-deps.sh --m32      also the -m32 toolchain and i386 expat
#   scripts/install-deps.sh --fuzz     also clang with libFuzzer
#   scripts/install-deps.sh --package  also what makes and checks the Debian package
set -euo pipefail

want=(cmake make g++ pkg-config libexpat1-dev libgtest-dev libgmock-dev googletest
      libbenchmark-dev libcli11-dev nlohmann-json3-dev python3 python3-jsonschema locales pci.ids)
m32=0
for arg in "$@"; do
  case "$arg" in
    --m32) m32=1; want+=(g++-multilib) ;;
    --fuzz) want+=(clang libclang-rt-dev) ;;
    --package) want+=(dpkg-dev file lintian mandoc) ;;
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
