# Front door. Every target installs what is missing, configures when the build
# tree is new, and builds; CMake itself reconfigures when a build file changes.
JOBS ?= $(shell nproc)
CMAKE_FLAGS ?=
CTEST_FLAGS ?= --output-on-failure -j$(JOBS)
SHELL := /bin/bash
# Builds show their progress condensed (a percentage line every few seconds,
# not a line a file), warnings and errors in full.
BUILD = echo "building $(1)$(if $(2), ($(2)))..."; \
        scripts/build-progress.sh $(1) -j$(JOBS) $(if $(2),--target $(2))
# How many tests skipped for want of ../shared/fixtures (CI fails them instead).
SKIPPED = n=$$(grep -c "no real captures" $(1)/Testing/Temporary/LastTest.log 2>/dev/null); \
          [ "$${n:-0}" -eq 0 ] || echo "$$n tests skipped: ../shared/fixtures is absent"

.PHONY: all deps build scan test test32 sanitize tsan solaris-check bench fuzz fuzz-run clean install install-check package

all: build

deps:
	@scripts/install-deps.sh

build/CMakeCache.txt: | deps
	@cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_FLAGS) >/dev/null

build: deps build/CMakeCache.txt
	@$(call BUILD,build)

# Only what a scan needs: the library, the probes and the command line.
scan: deps build/CMakeCache.txt
	@$(call BUILD,build,invscan-cli cpuid diskscan)
	@build/bin/invscan scan

test: build
	@cd build && ctest $(CTEST_FLAGS); status=$$?; cd ..; $(call SKIPPED,build); exit $$status

# Into PREFIX (default /usr/local); DESTDIR is honoured.
PREFIX ?= /usr/local
install: build
	@cmake --install build --prefix $(PREFIX)

# An install into a new prefix, and the example host built against it.
install-check: build
	@scripts/check-install.sh build

# The Debian package, linted, unpacked and run.
package:
	@scripts/package.sh

build32/CMakeCache.txt:
	@scripts/install-deps.sh --m32
	@cmake -S . -B build32 -DINVSCAN_M32=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_FLAGS) >/dev/null

test32: build32/CMakeCache.txt
	@scripts/install-deps.sh --m32
	@$(call BUILD,build32)
	@if [ -f build32/cannot-run-32-bit ]; then \
	  echo "this machine cannot run 32-bit programs: the -m32 build was compiled and linked, its tests not run"; \
	else cd build32 && ctest $(CTEST_FLAGS); fi

build-san/CMakeCache.txt: | deps
	@cmake -S . -B build-san -DINVSCAN_SANITIZE=ON -DINVSCAN_BENCH=OFF -DCMAKE_BUILD_TYPE=Debug $(CMAKE_FLAGS) >/dev/null

sanitize: deps build-san/CMakeCache.txt
	@$(call BUILD,build-san)
	@cd build-san && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1 ctest $(CTEST_FLAGS)

build-tsan/CMakeCache.txt: | deps
	@cmake -S . -B build-tsan -DINVSCAN_TSAN=ON -DINVSCAN_BENCH=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_FLAGS) >/dev/null

# ThreadSanitizer over the host tests (four threads scanning at once) and the
# factory's; TSAN_SCANS scans each thread (a longer run: TSAN_SCANS=2000).
TSAN_SCANS ?= 2
tsan: deps build-tsan/CMakeCache.txt
	@$(call BUILD,build-tsan,test_host test_factory)
	@cd build-tsan && export TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1 INVSCAN_THREAD_SCANS=$(TSAN_SCANS) && \
	  bin/test_host && bin/test_factory

# Every Solaris-built source compiled for i386-pc-solaris2.10 against the real
# Solaris 10 headers in ../shared/solaris10-sysroot, names checked against
# its libraries' exports (skipped without it, but not under CI=true).
solaris-check:
	@scripts/install-deps.sh --solaris
	@scripts/solaris-check.sh

bench: build
	@for b in build/bin/bench_*; do [ -x "$$b" ] && "$$b"; done

fuzz:
	@scripts/install-deps.sh --fuzz
	@cmake -S . -B build-fuzz -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
	  -DINVSCAN_FUZZ=ON -DINVSCAN_TESTS=OFF -DINVSCAN_BENCH=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
	@$(call BUILD,build-fuzz)

# Runs every fuzz target until FUZZ_RUNS executions or FUZZ_TIME seconds.
FUZZ_RUNS ?= 10000000
FUZZ_TIME ?= 7200
fuzz-run: fuzz
	@scripts/fuzz-run.sh $(FUZZ_RUNS) $(FUZZ_TIME)

clean:
	rm -rf build build32 build-san build-tsan build-fuzz
