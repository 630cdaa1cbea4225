#!/usr/bin/env bash
# Writes the link map of libinvscan: its designed names global, everything
# else local. The same text is a mapfile for the Solaris link editor (-M) and
# a version script for GNU ld (--version-script), so both systems export the
# same names.
#   scripts/mapfile.sh NAMES OUTPUT OBJECT...
# NAMES is src/invscan/exported-names.txt: a class stands for all its
# members, vtable and typeinfo; a function or variable for itself. A symbol
# is global when its demangled name starts with a listed name.
set -euo pipefail
names=$1 output=$2
shift 2
python3 - "$names" "$output" "$@" <<'PY'
import re, subprocess, sys
names_file, output, objects = sys.argv[1], sys.argv[2], sys.argv[3:]
designed = {l.strip() for l in open(names_file) if l.strip() and not l.startswith('#')}
symbols = set()
for obj in objects:
    out = subprocess.run(['nm', '-P', '--defined-only', obj], capture_output=True, text=True, check=True).stdout
    for line in out.splitlines():
        parts = line.split()
        if len(parts) >= 2 and parts[1] in 'TDBRVWu' and not parts[0].startswith('__odr_asan'):
            symbols.add(parts[0])
symbols = sorted(symbols)
demangled = subprocess.run(['c++filt'], input='\n'.join(symbols), capture_output=True, text=True,
                           check=True).stdout.splitlines()
prefix = re.compile(r'^(?:vtable|typeinfo name|typeinfo|VTT|guard variable|non-virtual thunk to|virtual thunk to) for ')
def owner(name):
    name = prefix.sub('', name)
    name = re.sub(r'^(?:non-virtual thunk to|virtual thunk to) ', '', name)
    return name.split('(')[0].split('::')[0]
chosen = [s for s, d in zip(symbols, demangled) if owner(d) in designed]
with open(output + '.tmp', 'w') as f:
    f.write('{\n  global:\n')
    for s in chosen:
        f.write(f'    {s};\n')
    f.write('  local:\n    *;\n};\n')
import os
os.replace(output + '.tmp', output)
PY
