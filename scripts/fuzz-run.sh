#!/usr/bin/env bash
# Runs every fuzz target of build-fuzz (make fuzz) one after the other, each
# until RUNS executions or SECONDS seconds, whichever comes first, and
# prints each target's executions, time and corpus size. Each corpus starts
# from seeds: real captures of ../shared/fixtures where there are some, and
# the simulated machines' files; seeds are copied into build-fuzz, never
# into the project.
#   scripts/fuzz-run.sh [RUNS] [SECONDS] [TARGET...]   (default 10000000 7200, every target)
set -euo pipefail
cd "$(dirname "$0")/.."
runs=${1:-10000000}
seconds=${2:-7200}
shift $(( $# < 2 ? $# : 2 ))
fixtures=../shared/fixtures
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=($(cd build-fuzz/bin && ls fuzz_*))

# What each target reads, as shell globs of seed files.
seeds() {
  case "$1" in
    fuzz_nodedump|fuzz_header) echo "tests/machines/*/probes/*" ;;
    fuzz_capture) echo "tests/machines/*/machine.txt" ;;
    fuzz_hwconfig) echo "config/*.xml tests/machines/*/config/*.xml" ;;
    fuzz_iostat) echo "$fixtures/iostat/*iostat* $fixtures/solaris-storage/*iostat*" ;;
    fuzz_smbios) echo "$fixtures/smbios/*.dat $fixtures/smbios/*.DMI" ;;
    fuzz_diskscan_parsers) echo "$fixtures/solaris-storage/*mnttab* $fixtures/solaris-storage/*mount* \
      $fixtures/solaris-storage/*zpool* $fixtures/solaris-storage/*metastat* $fixtures/*/*fcinfo*" ;;
    fuzz_zone_lines) echo "$fixtures/zones/*zoneadm* $fixtures/zones/*zonecfg*" ;;
    *) echo "" ;;
  esac
}

# Options a target needs beyond the common ones.
options() {
  case "$1" in
    # Each zoneadm line asks zonecfg about its zone: inputs of a kilobyte
    # reach every path, and longer ones only run the same loop more.
    fuzz_zone_lines) echo "-max_len=1024" ;;
    *) echo "" ;;
  esac
}

printf '%-24s %12s %8s %8s\n' target executions seconds corpus
for t in "${targets[@]}"; do
  corpus=build-fuzz/corpus/$t
  mkdir -p "$corpus"
  for f in $(seeds "$t"); do
    [ -f "$f" ] && cp -n "$f" "$corpus/seed-$(basename "$f")" 2>/dev/null || true
  done
  log=build-fuzz/$t.log
  start=$(date +%s)
  # shellcheck disable=SC2046
  if ! build-fuzz/bin/$t $(options "$t") -runs="$runs" -max_total_time="$seconds" -print_final_stats=1 -rss_limit_mb=2048 \
       -artifact_prefix=build-fuzz/ "$corpus" >"$log" 2>&1; then
    echo "$t: a finding, see $log"; exit 1
  fi
  execs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
  printf '%-24s %12s %8s %8s\n' "$t" "$execs" "$(( $(date +%s) - start ))" "$(ls "$corpus" | wc -l)"
done
