# Every target does all it needs on a Debian 12 machine: it installs what is
# missing, configures, builds and runs.
PRESET ?= default
JOBS ?= $(shell nproc)
WINDOWS_WERROR = $(if $(filter ci,$(PRESET)),ON,OFF)
PREFIX ?= /usr/local
FUZZ_SECONDS ?= 60

.PHONY: build demo install test windows bench soak fuzz lint format sanitize clean

build:
	scripts/install-deps build test
	cmake --preset $(PRESET) >/dev/null
	cmake --build --preset $(PRESET) -j $(JOBS)

demo: build
	build/lotrix demo

install: build
	DESTDIR="$(DESTDIR)" cmake --install build --prefix "$(abspath $(PREFIX))"

test: windows build
	ctest --test-dir build -j $(JOBS) --output-on-failure

windows:
	scripts/install-deps build windows
	scripts/fetch-sqlite build/sqlite
	cmake --preset $(PRESET) >/dev/null
	cmake --build --preset $(PRESET) -j $(JOBS) --target lotrix_write_idl
	cmake --preset windows-x86_64 -DLOTRIX_WERROR=$(WINDOWS_WERROR) >/dev/null
	cmake --build --preset windows-x86_64 -j $(JOBS)
	cmake --preset windows-i686 -DLOTRIX_WERROR=$(WINDOWS_WERROR) >/dev/null
	cmake --build --preset windows-i686 -j $(JOBS)
	cp com/README.md build/windows/README.md
	cmake -E copy_directory build/windows/x86_64/com/generated/include build/windows/include

bench:
	scripts/install-deps build test bench
	cmake --preset bench >/dev/null
	cmake --build --preset bench -j $(JOBS)
	scripts/bench build/bench

# Ten minutes at most.
soak:
	scripts/install-deps build test
	cmake --preset soak >/dev/null
	cmake --build --preset soak -j $(JOBS)
	timeout --kill-after=15 580 soak/run build/soak

sanitize:
	scripts/install-deps build test
	cmake --preset sanitize >/dev/null
	cmake --build --preset sanitize -j $(JOBS)
	ctest --test-dir build/sanitize -j $(JOBS) --output-on-failure

fuzz:
	scripts/install-deps build fuzz
	cmake --preset fuzz >/dev/null
	cmake --build --preset fuzz -j $(JOBS)
	scripts/fuzz build/fuzz $(FUZZ_SECONDS)

lint:
	scripts/install-deps build test bench lint
	scripts/lint

format:
	scripts/install-deps lint
	git ls-files -z '*.h' '*.cpp' | xargs -0 clang-format -i

clean:
	rm -rf build
