# Front door: `make demo`, `make test`, `make bench`, `make interop`, `make package`.
# SANITIZE=1 builds with clang, AddressSanitizer and UndefinedBehaviorSanitizer;
# SANITIZE=thread with clang and ThreadSanitizer.
JOBS ?= 2
BUILD_TYPE ?= RelWithDebInfo

ifeq ($(SANITIZE),1)
BUILD_DIR ?= build-sanitize
DEPS_FLAGS := --sanitize
CMAKE_FLAGS += -DCMAKE_CXX_COMPILER=clang++ -DKDBIND_SANITIZE=ON
else ifeq ($(SANITIZE),thread)
BUILD_DIR ?= build-tsan
DEPS_FLAGS := --sanitize
CMAKE_FLAGS += -DCMAKE_CXX_COMPILER=clang++ -DKDBIND_SANITIZE_THREAD=ON
else
BUILD_DIR ?= build
endif

.PHONY: all deps configure build test demo bench interop package clean

all: build

deps:
	@scripts/install-deps.sh $(DEPS_FLAGS)

configure: deps
	@cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=$(BUILD_TYPE) $(CMAKE_FLAGS) >/dev/null

build: configure
	@cmake --build $(BUILD_DIR) -j$(JOBS)

test: build
	@ctest --test-dir $(BUILD_DIR) --output-on-failure -j$(JOBS)

# The demo's text is UTF-8, so it runs under a UTF-8 locale.
demo: build
	@LC_ALL=C.UTF-8 $(BUILD_DIR)/examples/kdbind_demo

bench: deps
	@cmake -S . -B build-bench -DCMAKE_BUILD_TYPE=Release -DKDBIND_BUILD_BENCH=ON -DKDBIND_BUILD_TESTS=OFF >/dev/null
	@cmake --build build-bench -j$(JOBS)
	@for b in build-bench/bench/kdbind_bench_*; do if [ -x "$$b" ]; then "$$b" || exit 1; fi; done

# The Debian package of library, headers, CMake package, pkg-config file and
# kdbind-xsd, from a Release build without tests: build-package/kdbind_*.deb.
package: deps
	@cmake -S . -B build-package -DCMAKE_BUILD_TYPE=Release -DKDBIND_BUILD_TESTS=OFF -DKDBIND_BUILD_EXAMPLES=OFF >/dev/null
	@cmake --build build-package -j$(JOBS)
	@cd build-package && cpack -G DEB
	@ls build-package/kdbind_*.deb

# Fast Infoset written by the tests, read back by an independent Java decoder.
interop: build
	@scripts/interop.sh $(BUILD_DIR)

clean:
	rm -rf build build-sanitize build-tsan build-bench build-package
