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
    fuzz_hwconfig) echo "config/*.xml tests/machines/*/config/*.xml" ;;
    fuzz_iostat) echo "$fixtures/iostat/*iostat* $fixtures/solaris-storage/*iostat*" ;;
    fuzz_smbios) echo "$fixtures/smbios/*.dat $fixtures/smbios/*.DMI" ;;
    fuzz_diskscan_parsers) echo "$fixtures/solaris-storage/*mnttab* $fixtures/solaris-storage/*mount* \
      $fixtures/solaris-storage/*zpool* $fixtures/solaris-storage/*metastat* $fixtures/*/*fcinfo*" ;;
    fuzz_zone_lines) echo "$fixtures/zones/*zoneadm* $fixtures/zones/*zonecfg*" ;;
    fuzz_machine) echo "tests/machines/*/machine.txt" ;;
    *) echo "" ;;
  esac
}

# Options a target needs beyond the common ones.
options() {
  case "$1" in
    # Each zoneadm line asks zonecfg about its zone: inputs of a kilobyte
    # reach every path, and longer ones only run the same loop more.
    fuzz_zone_lines) echo "-max_len=1024" ;;
    # 4 KiB of "ifconfig -a" hold a dozen interfaces, of a device tree half
    # a dozen PCI nodes: longer captures are read cut there, and a longer
    # input only runs the same loops more (a quarter more executions a second).
    fuzz_network|fuzz_pci) echo "-max_len=4096" ;;
    # Its seventeen thousand features make the entropic schedule's
    # bookkeeping half of each run: without it, twice the executions.
    fuzz_machine) echo "-entropic=0" ;;
    *) echo "" ;;
  esac
}

# The register dumps of ../shared/fixtures/cpuid (AIDA64's "CPUID leaf:
# a-b-c-d" lines under "Logical CPU #n", or cpuid -r's "CPU n:" and
# "leaf subleaf: eax=..." lines) as fuzz_cpuid_decode reads its input: a
# byte of firmware length (none), then 19-byte records of processor, leaf
# selector, subleaf and the four registers.
cpuid_seeds() {
  python3 - "$1" $fixtures/cpuid/*CPUID*.txt $fixtures/cpuid/*cpuid-r*.txt <<'EOF'
import os, re, struct, sys
leaves = [0x0, 0x1, 0x2, 0x4, 0x7, 0xB, 0x1F, 0x40000000, 0x40000001, 0x80000000, 0x80000001, 0x80000002,
          0x80000003, 0x80000004, 0x80000006, 0x80000008, 0x8000001E]
def selector(leaf):
    if leaf in leaves: return leaves.index(leaf)
    return (0x80 if leaf & 0x80000000 else 0) | (leaf & 0x3F)
corpus = sys.argv[1]
for path in sys.argv[2:]:
    if not os.path.isfile(path): continue
    records, cpu, seen = [], -1, {}
    for line in open(path, errors="replace"):
        body = line.strip()
        if ("Logical CPU #" in body and "MSR" not in body) or re.match(r"CPU \d+:$", body):
            cpu, seen = cpu + 1, {}
            continue
        aida = re.match(r"CPUID ([0-9A-Fa-f]{8}): ([0-9A-Fa-f]{8})-([0-9A-Fa-f]{8})-([0-9A-Fa-f]{8})-([0-9A-Fa-f]{8})", body)
        raw = re.match(r"0x([0-9a-f]{8}) 0x([0-9a-f]{2}): eax=0x([0-9a-f]{8}) ebx=0x([0-9a-f]{8}) ecx=0x([0-9a-f]{8}) edx=0x([0-9a-f]{8})", body)
        if cpu < 0 or not (aida or raw): continue
        if aida:
            leaf = int(aida.group(1), 16); sub = seen.get(leaf, 0); seen[leaf] = sub + 1
            regs = [int(aida.group(i), 16) for i in range(2, 6)]
        else:
            leaf, sub = int(raw.group(1), 16), int(raw.group(2), 16)
            regs = [int(raw.group(i), 16) for i in range(3, 7)]
        records.append(struct.pack("<BBB4I", cpu & 7, selector(leaf), sub & 0xFF, *regs))
    if records:
        with open(os.path.join(corpus, "seed-" + os.path.basename(path)), "wb") as out:
            out.write(b"\0" + b"".join(records))
EOF
}

# The targets over the groups' readers (fuzz/FuzzedAnswers.h): each seed is
# a selector byte, naming the reader, then its texts joined by NUL bytes: a
# capture of ../shared/fixtures (its provenance header taken off) at its
# place, or what a simulated machine's machine.txt answers ("run ARGS" or
# "file PATH" and its "> " lines).
answer_seeds() {
  python3 - "$1" "$2" "$fixtures" <<'EOF'
import glob, os, sys
target, corpus, fx = sys.argv[1:4]
IFC, NETSTAT, RESOLV = "run ifconfig -a", "run netstat -rn", "file /etc/resolv.conf"
PHYS, PHYSM, LINK = ("run dladm show-phys -p -o link,media,device", "run dladm show-phys -m -p -o link,slot,address",
                     "run dladm show-link -p -o link,class,over")
DEV, AGGR, MODINFO, INST = "run dladm show-dev", "run dladm show-aggr", "run modinfo", "file /etc/path_to_inst"
# (selector, place, fixture glob) and (selector, machine.txt answers); selector
# None: 7, with the high bit on a Solaris 10 machine (one with show-dev).
specs = {
    "fuzz_network": ([(0, 0, "solaris-network/*ifconfig*"), (1, 0, "solaris-network/*netstat*"),
                      (2, 0, "solaris-network/*resolv.conf*"), (3, 0, "solaris-network/*show-phys*"),
                      (3, 2, "solaris-network/*show-link*"), (4, 0, "solaris-network/*show-dev*"),
                      (4, 1, "solaris-network/*show-aggr*"), (5, 0, "solaris-devices/*modinfo*"),
                      (6, 0, "solaris-devices/*path_to_inst*")],
                     [(0, [IFC, NETSTAT, RESOLV]), (3, [PHYS, PHYSM, LINK, IFC]), (4, [DEV, AGGR, IFC]),
                      (5, [MODINFO, DEV]), (6, [INST, DEV]),
                      (None, [IFC, NETSTAT, RESOLV, PHYS, PHYSM, LINK, DEV, AGGR, MODINFO, INST])]),
    "fuzz_system": ([(0, 0, "solaris-system/*release*"), (1, 0, "solaris-system/*etc_default_init*"),
                     (2, 0, "solaris-system/*pkg*"), (3, 0, "solaris-system/*kbd*"),
                     (4, 0, "solaris-storage/*mnttab*")],
                    [(0, ["file /etc/release"]), (1, ["file /etc/default/init"]),
                     (2, ["file /var/sadm/pkg/SUNWcsr/pkginfo"]),
                     (3, ["run kbd -t -l", "file /etc/default/kbd", "file /usr/share/lib/keytables/type_6/kbd_layouts"]),
                     (4, ["file /etc/mnttab"])]),
    "fuzz_pci": ([(0, 0, "solaris-devices/*prtconf*")],
                 [(0, ["run prtconf -pv", "file /usr/share/hwdata/pci.ids"]),
                  (0x80, ["run prtconf -pv", "file /usr/share/hwdata/pci.ids"])]),
}
if target not in specs: sys.exit(0)
captures, questions = specs[target]
def write(name, selector, texts):
    with open(os.path.join(corpus, "seed-" + name), "wb") as out:
        out.write(bytes([selector]) + b"\0".join(texts))
for selector, place, pattern in captures:
    for path in glob.glob(os.path.join(fx, pattern)):
        data = open(path, "rb").read()
        mark = b"#==== END OF PROVENANCE HEADER ====\n"
        end = data.find(mark)
        write(os.path.basename(path), selector, [b""] * place + [data[end + len(mark):] if end >= 0 else data])
for machine in sorted(glob.glob("tests/machines/*/machine.txt")):
    answers, current = {}, None
    for line in open(machine, "rb").read().decode("utf-8", "replace").split("\n"):
        if line.startswith("> ") or line == ">":
            if current is not None: answers[current].append(line[2:])
        elif line.startswith(("run ", "file ")):
            current = line
            answers[current] = []
        else:
            current = None
    for selector, keys in questions:
        if not answers.get(keys[0]): continue
        if selector is None: selector = 0x87 if DEV in answers else 7
        texts = [("\n".join(answers[k]) + "\n").encode() if k in answers else b"" for k in keys]
        write("%s-%02x" % (machine.split("/")[-2], selector), selector, texts)
EOF
}

# The simulated machines' files as captures: the format line first and the
# end line last, as the capture reader requires of a capture.
capture_seeds() {
  for f in tests/machines/*/machine.txt; do
    name=$(basename "$(dirname "$f")")
    { echo "invscan-machine 1"; cat "$f"; echo "end-of-capture"; } >"$1/seed-$name"
  done
}

# Recording the allocation stack of every block is a quarter of a target's
# time (fuzz_machine's first 30,000 runs: 2,307 a second with the stacks,
# 3,000 without); a finding is run again from its artifact with them on.
export ASAN_OPTIONS=${ASAN_OPTIONS:-malloc_context_size=0}

printf '%-24s %12s %8s %8s\n' target executions seconds corpus
for t in "${targets[@]}"; do
  corpus=build-fuzz/corpus/$t
  mkdir -p "$corpus"
  for f in $(seeds "$t"); do
    # Named by the path: the simulated machines' files share one name.
    name=$(echo "${f#"$fixtures"/}" | tr / _)
    [ -f "$f" ] && cp -n "$f" "$corpus/seed-$name" 2>/dev/null || true
  done
  [ "$t" != fuzz_cpuid_decode ] || [ ! -d "$fixtures/cpuid" ] || cpuid_seeds "$corpus"
  answer_seeds "$t" "$corpus"
  [ "$t" != fuzz_capture ] || capture_seeds "$corpus"
  log=build-fuzz/$t.log
  start=$(date +%s)
  # shellcheck disable=SC2046
  # -reload=0: one process owns each corpus, and re-reading it (a stat of every
  # file it ever kept, each second) took most of a long run's time.
  if ! build-fuzz/bin/$t $(options "$t") -reload=0 -runs="$runs" -max_total_time="$seconds" -print_final_stats=1 -rss_limit_mb=2048 \
       -artifact_prefix=build-fuzz/ "$corpus" >"$log" 2>&1; then
    echo "$t: a finding, see $log"; exit 1
  fi
  execs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
  printf '%-24s %12s %8s %8s\n' "$t" "$execs" "$(( $(date +%s) - start ))" "$(ls "$corpus" | wc -l)"
done
