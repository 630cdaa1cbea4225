#!/usr/bin/env bash
# The Debian packages (libinvscan0, libinvscan-dev, invscan): built in
# build-deb with Debian's hardening flags, checked by lintian, unpacked into
# an empty root, a host built against them, and run from there. Prints the
# packages' paths last.
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
        -DINVSCAN_BENCH=OFF >/dev/null
fi
echo "building $dir..."
scripts/build-progress.sh $dir -j"$(nproc)"
rm -f $dir/*.deb
(cd $dir && cpack -G DEB >cpack.log) || { cat $dir/cpack.log; exit 1; }
arch=$(dpkg --print-architecture) multiarch=$(dpkg-architecture -qDEB_HOST_MULTIARCH)
version=$(sed -n 's/^project(invscan VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
runtime=$dir/libinvscan${version%%.*}_${version}_$arch.deb
dev=$dir/libinvscan-dev_${version}_$arch.deb
tools=$dir/invscan_${version}_$arch.deb
for deb in "$runtime" "$dev" "$tools"; do
  [ -f "$deb" ] || { echo "package: cpack made no $deb"; ls $dir/*.deb; exit 1; }
done

# lintian: no error and no warning, less these, each for its reason:
#  - package-name-doesnt-match-sonames (libinvscan0): the runtime package
#    holds libinvscan.so.0 with libnimfw.so.0 and libinvsys.so.0, which exist
#    only for it, are built from one source and move to a new soname together;
#  - maintscript-calls-ldconfig (libinvscan0): CPack writes a postinst and a
#    postrm that run ldconfig; the package's ldconfig trigger is what Debian
#    asks for, the extra call is harmless.
# Of lintian's notes (not checked): the catalogue's and the trace's texts are
# kept as hosts know them ("Millenium", "Syncronous", ...), and the
# C++ interface is held by its list of exported names, not a symbols file.
lintian --fail-on error,warning --suppress-tags \
  package-name-doesnt-match-sonames,maintscript-calls-ldconfig "$runtime"
lintian --fail-on error,warning "$dev" "$tools"
mandoc -T lint -W warning doc/invscan.1 doc/invscan.3

# The -dev package and the runtime alone, unpacked into an empty root: the
# example host builds from there with pkg-config and with CMake. Then the
# tools package beside them, and the hosts and invscan scan this machine.
root=$(mktemp -d) work=$(mktemp -d)
trap 'rm -rf "$root" "$work"' EXIT
dpkg -x "$runtime" "$root"
dpkg -x "$dev" "$root"
lib=$root/usr/lib/$multiarch
cp -r "$root/usr/share/doc/libinvscan-dev/examples/host" "$work/src"
PKG_CONFIG_PATH="$lib/pkgconfig" make -s -C "$work/src" host
cmake -S "$work/src" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$root/usr" >/dev/null
cmake --build "$work/cmake" -- --no-print-directory >/dev/null
MANPATH="$root/usr/share/man" man -w 3 invscan >/dev/null ||
  { echo "package: no invscan(3) in the -dev package"; exit 1; }
for doc in libinvscan${version%%.*} libinvscan-dev; do
  [ -f "$root/usr/share/doc/$doc/changelog.gz" ] && [ -f "$root/usr/share/doc/$doc/copyright" ] ||
    { echo "package: $doc has no changelog or copyright"; exit 1; }
done
dpkg -x "$tools" "$root"
[ -f "$root/usr/share/doc/invscan/README.md" ] || { echo "package: no README in the invscan package"; exit 1; }
for host in "$work/src/host" "$work/cmake/host"; do
  LD_LIBRARY_PATH="$lib" NIM_HOMEDIR="$root/usr/lib/invscan" "$host" Memory Processor >"$work/out.txt"
  grep -q '^Memory: 1 rows' "$work/out.txt" && grep -q '^Processor: ' "$work/out.txt" ||
    { echo "package: $host printed:"; cat "$work/out.txt"; exit 1; }
done
"$root/usr/bin/invscan" --hwconfig "$root/etc/invscan/NimHWConfig.xml" scan >"$root/scan.txt"
grep -q '^Processor (group 2' "$root/scan.txt" || { echo "package: the unpacked invscan printed no Processor table"; exit 1; }
echo "package: lintian clean; unpacked into an empty root, the example host built from libinvscan-dev and" \
     "libinvscan${version%%.*} with pkg-config and with CMake, invscan(3) is there, and invscan scanned" \
     "$(grep -c ' (group ' "$root/scan.txt") groups"
echo "$runtime"
echo "$dev"
echo "$tools"
