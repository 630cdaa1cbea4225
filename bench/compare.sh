#!/usr/bin/env bash
# A full scan of this machine by invscan beside the tools operators run
# today, measured side by side: each round runs every tool once, in an order
# that turns from round to round, and the table gives the medians and each
# tool's ratio to invscan.
#   bench/compare.sh [ROUNDS]      (default 7; needs a built build/bin/invscan)
# Wall and CPU time and peak resident memory come from GNU time; the
# processes each tool starts are counted in one more run under strace.
# lshw, hwinfo, facter, strace and GNU time are installed from Debian when
# missing.
set -euo pipefail
cd "$(dirname "$0")/.."
rounds=${1:-7}
invscan=build/bin/invscan
[ -x "$invscan" ] || { echo "compare: build first (make build)"; exit 2; }

missing=()
for p in lshw hwinfo facter strace time; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  sudo=""; [ "$(id -u)" -eq 0 ] || sudo="sudo"
  echo "compare: installing ${missing[*]}"
  $sudo apt-get update -qq || true
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

names=(invscan lshw hwinfo facter)
commands=("$invscan scan --format json" "lshw -json" "hwinfo" "facter")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

for ((r = 0; r < rounds; r++)); do
  for ((k = 0; k < ${#names[@]}; k++)); do
    i=$(( (k + r) % ${#names[@]} ))
    # %e wall s, %U user s, %S system s, %M peak resident KiB
    /usr/bin/time -f "${names[$i]} %e %U %S %M" -a -o "$work/times" \
      bash -c "exec ${commands[$i]}" >/dev/null 2>&1 || true
  done
done
for ((i = 0; i < ${#names[@]}; i++)); do
  strace -f -qq -e trace=execve -o "$work/strace" bash -c "exec ${commands[$i]}" >/dev/null 2>&1 || true
  # The first two execs are bash's and the tool's own: not processes it starts.
  echo "${names[$i]} $(( $(grep -c 'execve(' "$work/strace") - 2 ))" >>"$work/spawns"
  if [ "${names[$i]}" = invscan ]; then
    grep 'execve(' "$work/strace" | sed -n '3,$p' | sed -E 's/^[0-9]+ +execve\("([^"]*)".*/\1/' |
      sort | uniq -c | sort -rn >"$work/invscan-spawns"
  fi
done

python3 - "$work/times" "$work/spawns" "$rounds" <<'EOF'
import statistics, sys
times, spawns, rounds = sys.argv[1], sys.argv[2], sys.argv[3]
rows = {}
for line in open(times):
    parts = line.split()
    if len(parts) != 5 or parts[0] not in ("invscan", "lshw", "hwinfo", "facter"):
        continue  # GNU time's own notes ("Command exited with non-zero status")
    name, wall, user, system, rss = parts
    rows.setdefault(name, []).append((float(wall), float(user) + float(system), int(rss)))
spawned = dict(line.split() for line in open(spawns))
base = {k: statistics.median(v[k] for v in rows["invscan"]) for k in range(3)}
print(f"{rounds} paired rounds; medians, and the ratio to invscan")
print(f"{'tool':8} {'wall s':>8} {'x':>6} {'cpu s':>8} {'x':>6} {'peak KiB':>9} {'x':>6} {'spawns':>7}")
for name in ("invscan", "lshw", "hwinfo", "facter"):
    if name not in rows:
        print(f"{name:8} did not run"); continue
    m = [statistics.median(v[k] for v in rows[name]) for k in range(3)]
    r = [m[k] / base[k] if base[k] else float("nan") for k in range(3)]
    print(f"{name:8} {m[0]:8.3f} {r[0]:6.1f} {m[1]:8.3f} {r[1]:6.1f} {m[2]:9d} {r[2]:6.1f} {spawned.get(name, '?'):>7}")
EOF
echo "programs invscan started (count, path):"
cat "$work/invscan-spawns"
