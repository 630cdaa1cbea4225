#!/usr/bin/env bash
# Compiles every source a Solaris build builds (the libraries, both probes,
# the command line and its replay) for i386-pc-solaris2.10 against the real
# Solaris 10 headers in ../shared/solaris10-sysroot, to objects, with
# warnings as errors; then fails when an object needs a name that the
# target's libraries do not export on Solaris 10. Last, it plants an
# O_CLOEXEC and a strndup in a copy of a library source and checks that each
# is caught, so the check cannot pass by checking nothing.
#
#   scripts/solaris-check.sh [OUT]     objects and logs in OUT (default build-solaris)
#
# Without ../shared/solaris10-sysroot it skips (and fails under CI=true).
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
sysroot_dir=$root/../shared/solaris10-sysroot
out=${1:-$root/build-solaris}

if [ ! -f "$sysroot_dir/sysroot.tar.xz" ]; then
  if [ "${CI:-}" = "true" ]; then
    echo "solaris-check: $sysroot_dir is absent: CI cannot check the Solaris build" >&2
    exit 1
  fi
  echo "solaris-check: skipped: no ../shared/solaris10-sysroot beside the repository"
  exit 0
fi

mkdir -p "$out"
out=$(cd "$out" && pwd)
sysroot=$out/sysroot
# The sysroot and the target's C++ configuration, made once per archive.
if [ ! -f "$sysroot/.unpacked" ] || [ "$sysroot_dir/sysroot.tar.xz" -nt "$sysroot/.unpacked" ]; then
  rm -rf "$sysroot" && mkdir -p "$sysroot"
  tar -xJf "$sysroot_dir/sysroot.tar.xz" -C "$sysroot"
  touch "$sysroot/.unpacked"
fi
cxxhost=$(ls -d /usr/include/x86_64-linux-gnu/c++/*/32 2>/dev/null | sort -V | tail -1)
[ -n "$cxxhost" ] || { echo "solaris-check: no i386 libstdc++ configuration (g++-multilib)" >&2; exit 1; }
cxxversion=$(basename "$(dirname "$cxxhost")")
if [ ! -f "$out/cxxconfig/bits/c++config.h" ]; then
  bash "$sysroot_dir/make-libstdcxx-config.sh" "$cxxhost" "$out/cxxconfig" >/dev/null
fi
# Headers of our Debian dependencies, which read the same on every system.
deps=$out/deps
mkdir -p "$deps" "$out/generated"
for h in expat.h expat_external.h; do cp -f "/usr/include/$h" "$deps/"; done
ln -sfn /usr/include/nlohmann "$deps/nlohmann"
ln -sfn /usr/include/CLI "$deps/CLI"
printf '#define QVRB_BUILD_DATE "00/00/00"\n#define QVRB_BUILD_TIME "00:00:00"\n' >"$out/generated/BuildStampValues.h"
printf '#define INVSCAN_VERSION_MAJOR 0\n#define INVSCAN_VERSION_MINOR 0\n#define INVSCAN_VERSION_PATCH 0\n' \
  >"$out/generated/InvscanVersion.h"

# The macros g++ predefines for C++ on Solaris, in place of clang's own
# (whose _FILE_OFFSET_BITS=64 <sys/swap.h> refuses on 32-bit).
flags=(--target=i386-pc-solaris2.10 "--sysroot=$sysroot" -std=c++17 -fPIC -O1
       -U_XOPEN_SOURCE -D_XOPEN_SOURCE=600 -U__STDC_VERSION__ -D__STDC_VERSION__=199901L
       -U_FILE_OFFSET_BITS -Wno-builtin-macro-redefined
       -nostdinc++ -isystem "$out/cxxconfig" -isystem "/usr/include/c++/$cxxversion"
       -isystem "$sysroot/usr/include-fixed" -isystem "$deps" -isystem "$root/scripts/solaris-check/libm"
       -Wall -Wextra -Wpedantic -Wshadow -Wformat=2 -Wno-unused-parameter -Werror
       -DINVSCAN_VERSION=\"0.0.0\" -I"$root/src" -I"$out/generated")
export CLANG_FLAGS_FILE=$out/flags
printf '%s\n' "${flags[@]}" >"$CLANG_FLAGS_FILE"

compile() {  # SOURCE OBJECT LOG
  mapfile -t f <"$CLANG_FLAGS_FILE"
  clang++ "${f[@]}" -c -o "$2" "$1" >"$3" 2>&1
}
export -f compile

# Every source under src/ is built on Solaris: the Linux seam and the Linux
# probe platforms compile to nothing there (README: Linux-only sources).
mapfile -t sources < <(find src -name '*.cpp' | sort)
rm -rf "$out/obj" && mkdir -p "$out/obj"
printf '%s\n' "${sources[@]}" | xargs -P "$(nproc)" -I{} bash -c \
  'o="$0/obj/$(echo {} | tr / _).o"; compile {} "$o" "${o%.o}.log" || echo "{}" >>"$0/failed"' "$out"
status=0
if [ -s "$out/failed" ]; then
  while read -r source; do
    echo "solaris-check: $source does not compile for Solaris 10:" >&2
    grep -E 'error|warning' "$out/obj/$(echo "$source" | tr / _).log" | head -5 >&2
  done <"$out/failed"
  rm -f "$out/failed"
  status=1
fi

# The names each object needs from outside our own objects, against what
# Solaris 10's libraries export (a node of 5.11 is too new; private nodes
# are not ours to call). The C++ run-time, libgcc's helpers and expat are
# linked from the compiler and our dependencies, not the system.
exports=$sysroot/usr/lib/exports.txt
check_exports() {  # OBJECT...: prints "object name" for each missing name
  python3 - "$exports" "$root/scripts/solaris-check/libm/math.h" "$@" <<'PY'
import os, re, subprocess, sys
exports, private = {}, set()
for line in open(sys.argv[1]):
    if line.startswith('#') or not line.strip():
        continue
    lib, name, node, release = line.rstrip('\n').split('\t')
    if release == 'private':
        private.add(name)
    elif release != '5.11':
        exports.setdefault(name, lib)
# Solaris 10's libm: the C99 functions the check's math.h declares.
for name in re.findall(r'\b([a-z][a-z0-9]*)\(', open(sys.argv[2]).read()):
    exports.setdefault(name, 'libm')
objects = sys.argv[3:]
defined, needed = set(), []
for obj in objects:
    for line in subprocess.run(['nm', '-P', obj], capture_output=True, text=True, check=True).stdout.splitlines():
        parts = line.split()
        if len(parts) < 2:
            continue
        name, kind = parts[0], parts[1]
        if kind in ('U', 'w'):
            if kind == 'U':
                needed.append((obj, name))
        else:
            defined.add(name)
runtime = ('_Z', '__cxa_', '__gxx_personality', '_Unwind_', '__dynamic_cast', '_GLOBAL_OFFSET_TABLE_',
           '__udivdi3', '__umoddi3', '__divdi3', '__moddi3', '__popcount', '__tls_get_addr', '___tls_get_addr',
           'XML_', '__dso_handle')
# A private name is one the system's own headers call for us (fputwc is
# __fputwc_xpg5 in X/Open mode, isalpha reads __ctype_mask, assert calls
# __assert_c99): allowed only where no source of ours names it.
ours = ''.join(open(os.path.join(d, f), errors='replace').read()
               for d, _, files in os.walk('src') for f in files if f.endswith(('.cpp', '.h')))
for name in private:
    if name not in exports and not re.search(r'\b' + re.escape(name) + r'\b', ours):
        exports[name] = 'libc (through its headers)'
bad = sorted({(o, n) for o, n in needed if n not in defined and n not in exports and not n.startswith(runtime)})
for o, n in bad:
    print(o.rsplit('/', 1)[-1][:-2].replace('_', '/', 0), n)
sys.exit(1 if bad else 0)
PY
}
if [ "$status" -eq 0 ]; then
  if ! missing=$(check_exports "$out"/obj/*.o); then
    echo "solaris-check: names Solaris 10 does not export:" >&2
    echo "$missing" | sed 's/^/  /' >&2
    status=1
  fi
fi
[ "$status" -eq 0 ] || exit 1
echo "solaris-check: ${#sources[@]} sources compile for i386-pc-solaris2.10 and need only names Solaris 10 exports"

# The check must catch what it is for: a planted O_CLOEXEC fails to compile,
# a planted strndup (declared by hand, as a careless fix would) fails the
# export check.
plant=src/framework/utils.cpp
mkdir -p "$out/plant/src/framework"
cp "$plant" "$out/plant/$plant"
printf '\n#include <fcntl.h>\nint plantedOpen(const char* p) { return open(p, O_RDONLY | O_CLOEXEC); }\n' \
  >>"$out/plant/$plant"
if compile "$out/plant/$plant" "$out/plant/cloexec.o" "$out/plant/cloexec.log"; then
  echo "solaris-check: a planted O_CLOEXEC compiled: the check is broken" >&2
  exit 1
fi
cp "$plant" "$out/plant/$plant"
printf '\nextern "C" char* strndup(const char*, unsigned);\nchar* plantedCopy(const char* s) { return strndup(s, 4); }\n' \
  >>"$out/plant/$plant"
compile "$out/plant/$plant" "$out/plant/strndup.o" "$out/plant/strndup.log" || {
  echo "solaris-check: the planted strndup did not compile:" >&2; cat "$out/plant/strndup.log" >&2; exit 1; }
if check_exports "$out/plant/strndup.o" >/dev/null; then
  echo "solaris-check: a planted strndup passed the export check: the check is broken" >&2
  exit 1
fi
echo "solaris-check: a planted O_CLOEXEC and a planted strndup are both caught"
