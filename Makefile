# The two commands of the README: `make run` and `make test`. Both install what is missing first.
BUILD      ?= build
SANBUILD   ?= build-sanitize
FUZZBUILD  ?= build-fuzz
FUZZ_SECONDS ?= 60
# The fuzz campaign's compiler and libFuzzer run-time; `make fuzz` installs them when missing.
FUZZ_PACKAGES := clang libclang-rt-14-dev
JOBS       ?= 2
PYTHON     := /usr/bin/python3
PACKAGES   := $(shell grep -v '^\s*\#' debian-packages.txt)
CMAKE_ARGS := -G Ninja -DPython3_EXECUTABLE=$(PYTHON)
SUDO       := $(shell [ "$$(id -u)" = 0 ] || echo sudo)

.PHONY: all deps fuzz-deps configure build run test sanitize fuzz bench format clean

all: build

# Installs the Debian packages of $(1) that are missing.
define install_missing
	@missing=$$(for p in $(1); do \
	    dpkg-query -W -f='$${Status}\n' $$p 2>/dev/null | grep -q 'install ok installed' || echo $$p; \
	  done); \
	if [ -n "$$missing" ]; then \
	  echo "Installing Debian packages:" $$missing; \
	  $(SUDO) env DEBIAN_FRONTEND=noninteractive apt-get update -qq && \
	  $(SUDO) env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $$missing; \
	fi
endef

deps:
	$(call install_missing,$(PACKAGES))

fuzz-deps:
	$(call install_missing,$(FUZZ_PACKAGES))

$(BUILD)/build.ninja: | deps
	cmake -S . -B $(BUILD) $(CMAKE_ARGS) -DCMAKE_BUILD_TYPE=Release

configure: deps $(BUILD)/build.ninja

build: configure
	cmake --build $(BUILD) -j $(JOBS)

run: build
	$(BUILD)/bin/zentropia

test: build
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

sanitize: deps
	cmake -S . -B $(SANBUILD) $(CMAKE_ARGS) -DCMAKE_BUILD_TYPE=Debug -DZP_SANITIZE=ON
	cmake --build $(SANBUILD) -j $(JOBS)
	cd $(SANBUILD) && ctest --output-on-failure -j $(JOBS)

# A bounded fuzz campaign over the C API (FUZZ_SECONDS, 60 by default) under AddressSanitizer and
# UndefinedBehaviorSanitizer, built with clang in its own directory; prints its figures.
fuzz: deps fuzz-deps
	cmake -S . -B $(FUZZBUILD) $(CMAKE_ARGS) -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DZP_SANITIZE=ON -DZP_FUZZ=ON
	cmake --build $(FUZZBUILD) -j $(JOBS) --target capi_fuzz
	tests/fuzz/run_campaign.sh $(FUZZBUILD)/bin/capi_fuzz $(FUZZ_SECONDS) $(FUZZBUILD)/campaign

bench: build
	@for b in $(BUILD)/bench/*_bench; do echo "== $$b"; $$b --benchmark_min_time=0.2; done

format:
	git ls-files '*.cpp' '*.hpp' '*.h' '*.c' | xargs clang-format -i

clean:
	rm -rf $(BUILD) $(SANBUILD) $(FUZZBUILD)
