#!/usr/bin/env bash
# Fails when a program or library has an empty entry in its run path: the
# loader searches the current folder for it, for every library, at every
# start (slow, and a planted library would be loaded).
#   scripts/check-runpaths.sh FILE...
set -euo pipefail
status=0
for file in "$@"; do
  path=$(readelf -d "$file" | sed -n 's/.*(RUNPATH).*\[\(.*\)\]/\1/p; s/.*(RPATH).*\[\(.*\)\]/\1/p')
  if [ -n "$path" ] && [[ ":$path:" == *::* ]]; then
    echo "$file: run path '$path' has an empty entry"
    status=1
  fi
done
[ $status -ne 0 ] || echo "no empty run path entry in $# files"
exit $status
