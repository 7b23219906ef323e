# The front door: `make run` starts the workshop, `make test` builds and runs every test.
# Each build folder is configured from its preset in CMakePresets.json (normal, asan,
# bench, fuzz, package), so the Makefile and `cmake --preset` cannot drift apart.
JOBS        ?= $(shell nproc)
BUILD       ?= build
ASAN_BUILD  ?= build-asan
BENCH_BUILD ?= build-bench
FUZZ_BUILD  ?= build-fuzz
PACKAGE_BUILD ?= build-package
FUZZ_SECONDS ?= 60

PACKAGES       := cmake g++ make pkg-config ccache qt6-base-dev libgtest-dev libgmock-dev libbenchmark-dev \
                  srecord binutils xvfb time help2man desktop-file-utils appstream \
                  libgettextpo-dev libpugixml-dev gettext translate-toolkit clang-format
FUZZ_PACKAGES  := clang libclang-rt-14-dev
RUN_PACKAGES   := fonts-noto-cjk
SCREENSHOT_PACKAGES := xvfb xauth
PACKAGE_PACKAGES := dpkg-dev file
TIDY_PACKAGES  := clang-tidy

.PHONY: all deps deps-fuzz build test test-normal test-asan bench fuzz tidy run screenshots package clean

all: build

deps:
	@scripts/install-deps.sh $(PACKAGES)

deps-fuzz: deps
	@scripts/install-deps.sh $(FUZZ_PACKAGES)

build: deps
	cmake --preset normal -B $(BUILD)
	cmake --build $(BUILD) -j$(JOBS)

test: deps test-normal test-asan

test-normal:
	cmake --preset normal -B $(BUILD)
	cmake --build $(BUILD) -j$(JOBS)
	ctest --test-dir $(BUILD) --output-on-failure -j$(JOBS)

test-asan:
	cmake --preset asan -B $(ASAN_BUILD)
	cmake --build $(ASAN_BUILD) -j$(JOBS)
	ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	  ctest --test-dir $(ASAN_BUILD) --output-on-failure -j$(JOBS)

bench: deps
	cmake --preset bench -B $(BENCH_BUILD)
	cmake --build $(BENCH_BUILD) -j$(JOBS)
	bench/run.sh $(BENCH_BUILD)

fuzz: deps-fuzz
	cmake --preset fuzz -B $(FUZZ_BUILD)
	cmake --build $(FUZZ_BUILD) -j$(JOBS)
	fuzz/run.sh $(FUZZ_BUILD) $(FUZZ_SECONDS)

# clang-tidy (.clang-tidy) over src/ and tests/ of the normal build, bench/ and fuzz/ of
# their own build folders (configured only); fails on any finding.
tidy: deps-fuzz
	@scripts/install-deps.sh $(TIDY_PACKAGES)
	cmake --preset normal -B $(BUILD)
	cmake --build $(BUILD) -j$(JOBS)
	cmake --preset bench -B $(BENCH_BUILD) > /dev/null
	cmake --preset fuzz -B $(FUZZ_BUILD) > /dev/null
	TIDY_JOBS=$(JOBS) scripts/tidy.sh $(BUILD):src,tests $(BENCH_BUILD):bench $(FUZZ_BUILD):fuzz

run: deps
	@scripts/install-deps.sh $(RUN_PACKAGES)
	cmake --preset normal -B $(BUILD)
	cmake --build $(BUILD) -j$(JOBS) --target zevran zevran-cli
	@test -f $(BUILD)/demo/demo.bin || $(BUILD)/bin/zevran-cli make-demo $(BUILD)/demo
	$(BUILD)/bin/zevran $(BUILD)/demo/demo.bin

screenshots: deps
	@scripts/install-deps.sh $(RUN_PACKAGES) $(SCREENSHOT_PACKAGES)
	cmake --preset normal -B $(BUILD)
	cmake --build $(BUILD) -j$(JOBS) --target zevran zevran-cli
	@test -f $(BUILD)/demo/demo.bin || $(BUILD)/bin/zevran-cli make-demo $(BUILD)/demo
	xvfb-run -a -s "-screen 0 1280x800x24" $(BUILD)/bin/zevran --screenshots $(BUILD)/screenshots $(BUILD)/demo/demo.bin
	@echo "Screenshots in $(BUILD)/screenshots/"

# A Debian package of the installed layout, built without the tests: $(BUILD)/zevran_VERSION_ARCH.deb.
package: deps
	@scripts/install-deps.sh $(PACKAGE_PACKAGES)
	cmake --preset package -B $(PACKAGE_BUILD)
	cmake --build $(PACKAGE_BUILD) -j$(JOBS)
	cpack --config $(PACKAGE_BUILD)/CPackConfig.cmake -B $(CURDIR)/$(BUILD)
	@ls $(BUILD)/zevran_*.deb

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(BENCH_BUILD) $(FUZZ_BUILD) $(PACKAGE_BUILD)
