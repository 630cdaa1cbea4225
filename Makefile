# Front door. Every target installs what is missing, configures and builds.
JOBS ?= $(shell nproc)
CMAKE_FLAGS ?=
CTEST_FLAGS ?= --output-on-failure -j$(JOBS)

.PHONY: all deps build scan test test32 sanitize bench fuzz fuzz-run clean

all: build

deps:
	@scripts/install-deps.sh

build: deps
	@cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_FLAGS) >/dev/null
	@cmake --build build -j$(JOBS)

scan: build
	build/bin/invscan scan

test: build
	cd build && ctest $(CTEST_FLAGS)

test32:
	@scripts/install-deps.sh --m32
	@cmake -S . -B build32 -DINVSCAN_M32=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_FLAGS) >/dev/null
	@cmake --build build32 -j$(JOBS)
	cd build32 && ctest $(CTEST_FLAGS)

sanitize: deps
	@cmake -S . -B build-san -DINVSCAN_SANITIZE=ON -DINVSCAN_BENCH=OFF -DCMAKE_BUILD_TYPE=Debug $(CMAKE_FLAGS) >/dev/null
	@cmake --build build-san -j$(JOBS)
	cd build-san && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1 ctest $(CTEST_FLAGS)

bench: build
	@for b in build/bin/bench_*; do [ -x "$$b" ] && "$$b"; done

fuzz:
	@scripts/install-deps.sh --fuzz
	@cmake -S . -B build-fuzz -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
	  -DINVSCAN_FUZZ=ON -DINVSCAN_TESTS=OFF -DINVSCAN_BENCH=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
	@cmake --build build-fuzz -j$(JOBS)

# Runs every fuzz target for FUZZ_TIME seconds each, one after the other.
FUZZ_TIME ?= 300
fuzz-run: fuzz
	@for f in build-fuzz/bin/fuzz_*; do \
	  mkdir -p build-fuzz/corpus/$$(basename $$f); \
	  $$f -max_total_time=$(FUZZ_TIME) -print_final_stats=1 build-fuzz/corpus/$$(basename $$f) || exit 1; \
	done

clean:
	rm -rf build build32 build-san build-fuzz
