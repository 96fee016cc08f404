#!/usr/bin/env bash
# Installs the build tree into a temporary prefix, moves the installed tree elsewhere, and builds
# and runs a C program (pkg-config), a C++ program (find_package, C++17 and C++20), a Fortran
# program and a Python import against the moved tree alone.
# usage: install_test.sh BUILD_DIR TEST_DIR CC FC PYTHON
set -euo pipefail
build=$1 here=$2 cc=$3 fc=$4 python=$5
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --prefix "$work/staged" > "$work/install.log"
mv "$work/staged" "$work/moved"
prefix=$work/moved
mkdir "$work/src" && cp "$here"/consumer/* \
    "$here"/../capi/capi_example.f90 "$work/src/"
cd "$work/src"

echo "== C (pkg-config)"
flags=$(PKG_CONFIG_PATH=$prefix/lib/pkgconfig pkg-config --cflags --libs zentropia)
"$cc" -std=c11 -Wall -Werror consumer.c $flags -o consumer_c
./consumer_c

echo "== C++ (find_package, C++17 and C++20)"
cmake -S . -B cxx -G Ninja -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_BUILD_TYPE=Release > cxx.log
cmake --build cxx > cxx_build.log || { cat cxx_build.log; exit 1; }
cxx/consumer17
cxx/consumer20
readelf -d cxx/consumer17 | grep -q "libzentropia_c.so.[0-9]" || { echo "no versioned NEEDED"; exit 1; }

echo "== Fortran"
"$fc" capi_example.f90 -L"$prefix/lib" -lzentropia_c -Wl,-rpath,"$prefix/lib" -o consumer_f
./consumer_f

echo "== Python"
site=$(cd "$prefix" && ls -d lib/python3*/*-packages)
env -u LD_LIBRARY_PATH PYTHONPATH="$prefix/$site" "$python" - "$prefix" <<'PY'
import os, sys
import zentropia
prefix = os.path.realpath(sys.argv[1])
maps = [line.split()[-1] for line in open("/proc/self/maps") if "zentropia" in line]
assert os.path.realpath(zentropia.__file__).startswith(prefix), zentropia.__file__
assert maps and all(os.path.realpath(m).startswith(prefix) for m in maps if m.endswith(".so") or ".so." in m), maps
h = zentropia.Fluid("IF97", "water").calc("h", "PT", 3e6, 300.0)
assert abs(h / 1000 - 115.331273) < 1e-6, h
print("python", zentropia.__version__, h)
PY

echo "== the tool"
version=$("$prefix/bin/zentropia" --version)
echo "$version"
"$prefix/bin/zentropia" calc h PT 3e6 300
