#!/usr/bin/env bash
# A full scan of this machine by invscan beside the tools operators run
# today, measured side by side: each round runs every tool once, in an order
# that turns from round to round, and the table gives the medians and each
# tool's ratio to invscan.
#   bench/compare.sh [ROUNDS]      (default 7; needs a built build/bin/invscan)
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

# The processes each tool starts, counted in one run under strace.
for ((i = 0; i < ${#names[@]}; i++)); do
  strace -f -qq -e trace=execve -o "$work/strace" bash -c "exec ${commands[$i]}" >/dev/null 2>&1 || true
  # The first two execs are bash's and the tool's own: not processes it starts.
  echo "${names[$i]} $(( $(grep -c 'execve(' "$work/strace") - 2 ))" >>"$work/spawns"
  if [ "${names[$i]}" = invscan ]; then
    grep 'execve(' "$work/strace" | sed -n '3,$p' | sed -E 's/^[0-9]+ +execve\("([^"]*)".*/\1/' |
      sort | uniq -c | sort -rn >"$work/invscan-spawns"
  fi
done

# Wall and CPU time (the tool's and its children's) of a run started from
# here, to the microsecond; peak resident memory from GNU time in a second
# run, as the kernel counts a process's peak from before its exec: started
# from this script's Python it would read the Python's.
python3 - "$work/spawns" "$rounds" "${names[@]}" -- "${commands[@]}" <<'EOF'
import os, shlex, statistics, subprocess, sys, time
spawns, rounds = sys.argv[1], int(sys.argv[2])
peak = os.path.join(os.path.dirname(spawns), "peak")
cut = sys.argv.index("--")
names, commands = sys.argv[3:cut], [shlex.split(c) for c in sys.argv[cut + 1:]]
rows = {n: [] for n in names}
for r in range(rounds):
    for k in range(len(names)):
        i = (k + r) % len(names)
        start = time.perf_counter()
        child = subprocess.Popen(commands[i], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        _, _, usage = os.wait4(child.pid, 0)
        wall = time.perf_counter() - start
        subprocess.run(["/usr/bin/time", "-f", "%M", "-o", peak, *commands[i]],
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        rss = int(open(peak).read().split()[-1])
        rows[names[i]].append((wall * 1000, (usage.ru_utime + usage.ru_stime) * 1000, rss))
spawned = dict(line.split() for line in open(spawns))
base = [statistics.median(v[k] for v in rows[names[0]]) for k in range(3)]
print(f"{rounds} paired rounds; medians, and each tool's ratio to {names[0]}")
print(f"{'tool':8} {'wall ms':>8} {'x':>6} {'cpu ms':>8} {'x':>6} {'peak KiB':>9} {'x':>6} {'spawns':>7}")
for name in names:
    m = [statistics.median(v[k] for v in rows[name]) for k in range(3)]
    r = [m[k] / base[k] if base[k] else float("nan") for k in range(3)]
    print(f"{name:8} {m[0]:8.1f} {r[0]:6.1f} {m[1]:8.1f} {r[1]:6.1f} {m[2]:9.0f} {r[2]:6.1f} {spawned.get(name, '?'):>7}")
# The aims: a fifth of lshw's wall time, a twentieth of facter's, 4.5 MiB.
wall = {n: statistics.median(v[0] for v in rows[n]) for n in names}
aims = [("wall time at most 1/5 of lshw's", wall["lshw"] / wall[names[0]] >= 5),
        ("wall time at most 1/20 of facter's", wall["facter"] / wall[names[0]] >= 20),
        ("peak memory at most 4608 KiB", base[2] <= 4608)]
for text, met in aims:
    print(f"{names[0]} {text}: {'met' if met else 'MISSED'}")
EOF
echo "programs invscan started (count, path):"
cat "$work/invscan-spawns"
