#!/usr/bin/env bash
# The Debian package: built in build-deb with Debian's hardening flags,
# checked by lintian, unpacked into an empty folder and run from there.
# Prints the package's path last.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh --package
dir=build-deb
if [ ! -f $dir/CMakeCache.txt ]; then
  export DEB_BUILD_MAINT_OPTIONS=hardening=+all
  CFLAGS="$(dpkg-buildflags --get CFLAGS) $(dpkg-buildflags --get CPPFLAGS)" \
  CXXFLAGS="$(dpkg-buildflags --get CXXFLAGS) $(dpkg-buildflags --get CPPFLAGS)" \
  LDFLAGS="$(dpkg-buildflags --get LDFLAGS)" \
  cmake -S . -B $dir -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_INSTALL_PREFIX=/usr \
        -DINVSCAN_CONFIG_DIR=/etc/invscan -DINVSCAN_PACKAGE=ON -DINVSCAN_TESTS=OFF \
        -DINVSCAN_BENCH=OFF -DCMAKE_RULE_MESSAGES=OFF >/dev/null
fi
echo "building $dir..."
cmake --build $dir -j"$(nproc)" -- --no-print-directory | { grep -v '] Built target' || true; }
rm -f $dir/invscan_*.deb
(cd $dir && cpack -G DEB >cpack.log) || { cat $dir/cpack.log; exit 1; }
deb=$(ls $dir/invscan_*.deb)

# lintian: no error and no warning, less these, each for its reason:
#  - package-name-doesnt-match-sonames, link-to-shared-library-in-wrong-package:
#    one package of the whole, on purpose: the libraries, their headers and
#    development links, and the command line that uses them;
#  - maintscript-calls-ldconfig: CPack writes a postinst and a postrm that run
#    ldconfig; the package's ldconfig trigger is what Debian asks for, the
#    extra call is harmless.
# Of lintian's notes (not checked): the catalogue's and the trace's texts are
# kept as the design spells them ("Millenium", "Syncronous", ...), and the
# C++ interface is held by its list of exported names, not a symbols file.
lintian --fail-on error,warning --suppress-tags \
  package-name-doesnt-match-sonames,link-to-shared-library-in-wrong-package,maintscript-calls-ldconfig \
  "$deb"
mandoc -T lint -W warning doc/invscan.1

# Unpacked into an empty folder, it scans this machine.
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
dpkg -x "$deb" "$root"
LD_LIBRARY_PATH="$root/usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)" \
  "$root/usr/bin/invscan" --hwconfig "$root/etc/invscan/NimHWConfig.xml" scan >"$root/scan.txt"
grep -q '^Processor (group 2' "$root/scan.txt" || { echo "package: the unpacked invscan printed no Processor table"; exit 1; }
echo "package: unpacked, invscan scanned $(grep -c ' (group ' "$root/scan.txt") groups"
echo "$deb"
