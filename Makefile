# The two commands of the README: `make run` and `make test`. Both install what is missing first.
BUILD      ?= build
SANBUILD   ?= build-sanitize
JOBS       ?= 2
PYTHON     := /usr/bin/python3
PACKAGES   := $(shell grep -v '^\s*\#' debian-packages.txt)
CMAKE_ARGS := -G Ninja -DPython3_EXECUTABLE=$(PYTHON)
SUDO       := $(shell [ "$$(id -u)" = 0 ] || echo sudo)

.PHONY: all deps configure build run test sanitize bench format clean

all: build

deps:
	@missing=$$(for p in $(PACKAGES); do \
	    dpkg-query -W -f='$${Status}\n' $$p 2>/dev/null | grep -q 'install ok installed' || echo $$p; \
	  done); \
	if [ -n "$$missing" ]; then \
	  echo "Installing Debian packages:" $$missing; \
	  $(SUDO) env DEBIAN_FRONTEND=noninteractive apt-get update -qq && \
	  $(SUDO) env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $$missing; \
	fi

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

bench: build
	@for b in $(BUILD)/bench/*_bench; do echo "== $$b"; $$b --benchmark_min_time=0.2; done

format:
	git ls-files '*.cpp' '*.hpp' '*.h' '*.c' | xargs clang-format -i

clean:
	rm -rf $(BUILD) $(SANBUILD)
