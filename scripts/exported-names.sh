#!/usr/bin/env bash
# The names a shared library shows a host, one a line: a class for all its
# members, vtable and typeinfo; a function or variable by its own name.
#   scripts/exported-names.sh LIBRARY             prints them
#   scripts/exported-names.sh LIBRARY EXPECTED    compares with a list, 1 on a difference
set -euo pipefail
library=$1
names() {
  # __odr_asan.NAME: AddressSanitizer's one-definition markers of NAME.
  nm -D --defined-only "$library" | awk '$2 != "A" && $3 !~ /^__odr_asan/ { print $3 }' | c++filt |
    sed -E 's/^(vtable|typeinfo name|typeinfo|VTT|guard variable|non-virtual thunk to|virtual thunk to) for //;
            s/^(non-virtual thunk to|virtual thunk to) //; s/\(.*//; s/::.*//' | LC_ALL=C sort -u
}
if [ $# -lt 2 ]; then names; exit 0; fi
expected=$2
if ! diff <(grep -v '^#\|^$' "$expected" | LC_ALL=C sort -u) <(names) > /tmp/exported-names.$$; then
  echo "$library shows other names than $expected lists (< missing, > not designed to be shown):"
  cat /tmp/exported-names.$$
  rm -f /tmp/exported-names.$$
  exit 1
fi
rm -f /tmp/exported-names.$$
echo "$library shows the $(grep -vc '^#\|^$' "$expected") names of $expected"
