#!/usr/bin/env bash
# build-progress.sh DIR [cmake --build options...]: builds DIR and shows its
# progress condensed, one "DIR: 45% (80 s)" line every few seconds
# (PROGRESS_EVERY, default 5) instead of a line a file; warnings, errors and
# whatever else the build says come through whole. Exit status is the build's.
set -uo pipefail
dir=$1; shift
every=${PROGRESS_EVERY:-5}
start=$SECONDS last=$SECONDS pct=
cmake --build "$dir" "$@" -- --no-print-directory 2>&1 | {
  while IFS= read -r line; do
    if [[ $line =~ ^\[\ *([0-9]+)%\]\  ]]; then
      pct=${BASH_REMATCH[1]}
      if (( SECONDS - last >= every )); then
        echo "  $dir: $pct% ($((SECONDS - start)) s)"
        last=$SECONDS
      fi
    else
      printf '%s\n' "$line"
    fi
  done
}
status=${PIPESTATUS[0]}
[ "$status" -ne 0 ] || (( SECONDS - start < every )) || echo "  $dir: built in $((SECONDS - start)) s"
exit "$status"
