#!/usr/bin/env bash
# Type-checks the Solaris side on this machine: the seam's Solaris
# implementation and the probes' Solaris platform files, compiled as on
# Solaris (__sun) in the target's 32-bit mode, against our own declarations
# and the Solaris prototypes in scripts/solaris-check/include. Nothing is
# linked. Fails on any error or warning.
set -euo pipefail
cd "$(dirname "$0")/.."
# Every seam source but the Linux one is built on Solaris, and the probes'
# Solaris platform files.
sources=($(ls src/common/sys/*.cpp | grep -v Linux) src/probes/*/platform_solaris.cpp)
status=0
for source in "${sources[@]}"; do
  if ! g++ -std=c++17 -m32 -D__sun -fsyntax-only -Wall -Wextra -Wpedantic -Wshadow -Werror -Wno-unused-parameter \
       -isystem scripts/solaris-check/include -Isrc "$source"; then
    echo "solaris-check: $source does not compile for Solaris" >&2
    status=1
  fi
done
[ "$status" -eq 0 ] && echo "solaris-check: ${#sources[@]} Solaris sources type-check"
exit "$status"
