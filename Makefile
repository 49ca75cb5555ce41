# The words one types. Each does its own set-up: on a Debian 12 machine with git, make and a package mirror nothing
# else is needed. JOBS=n sets how many compilers run at once; CHMON_NO_SETUP=1 leaves the machine's packages alone.

JOBS ?= $(shell nproc)
PREFIX ?= /usr/local

.PHONY: help run test bench fuzz soak mutate lint format install plugin coverage clean

help:
	@echo "make run      build the program and show it at work on the example device"
	@echo "make test     every test: with g++, then with clang++ and sanitizers"
	@echo "make bench    measure speed, against the peers too"
	@echo "make fuzz     look for crashing inputs            make soak    the long forms of the tests"
	@echo "make mutate   200 small faults in the plug-in: do its tests notice?"
	@echo "make lint     format, clang-tidy, may-use table   make format  rewrite sources in our format"
	@echo "make plugin   the plug-in alone, needs a compiler and cmake only"
	@echo "make coverage line and branch coverage of the tests"
	@echo "make install  into PREFIX ($(PREFIX))             make clean   remove build/"

run:
	@tools/setup build
	@tools/build release
	@tools/demo build/release

# The fast runs come first, so that a plain mistake shows early; the last line is ctest's summary.
test:
	@tools/setup build test
	@tools/build --test dev asan-ubsan

bench:
	@tools/setup build bench
	@tools/build bench
	@bench/run build/bench

fuzz:
	@tools/setup build fuzz
	@tools/build fuzz
	@fuzz/run build/fuzz

soak:
	@tools/setup build test
	@tools/build dev asan-ubsan
	@tests/soak build/asan-ubsan build/dev

mutate:
	@tools/setup build test
	@cmake -S . -B build/mutate -G Ninja -DCMAKE_BUILD_TYPE=Debug "-DCHMON_ONLY=oc-chmon;tests/plugin"
	@cmake --build build/mutate -j $(JOBS)
	@nice tools/mutate build/mutate

coverage:
	@tools/setup build test coverage
	@rm -rf build/coverage/profiles
	@tools/build --test coverage
	@tools/coverage build/coverage

lint:
	@tools/setup build test bench lint
	@tools/lint

format:
	@tools/setup lint
	@tools/sources | xargs -r clang-format-14 -i

plugin:
	@tools/setup plugin
	@cmake -S . -B build/plugin -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE=-O2 -DCHMON_ONLY=oc-chmon
	@cmake --build build/plugin -j $(JOBS)
	@ls -l build/plugin/lib/liboc-chmon.so

install:
	@tools/setup build
	@tools/build release
	@cmake --install build/release --prefix "$(DESTDIR)$(PREFIX)"

clean:
	rm -rf build

export JOBS
