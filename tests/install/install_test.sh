#!/usr/bin/env bash
# Installs into an empty prefix, and builds and runs the example program with nothing but what is there: once through
# CMake, once through pkg-config. Arguments: the build directory, the compiler, and the generator of CMake, for the default
# one may not be installed.
set -euo pipefail
build=$1
compiler=$2
generator=$3

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --prefix "$work/first" >/dev/null
mv "$work/first" "$work/prefix" # nothing may depend on where it was put at first
prefix=$work/prefix
examples=$prefix/share/doc/tessarin/examples
library=$(dirname "$(find "$prefix" -name libtessarin.so)")

fail() {
  echo "error: $1" >&2
  exit 1
}

# The library and its tool.
readelf -d "$library/libtessarin.so" | grep -q 'SONAME.*libtessarin\.so\.[0-9]*\.[0-9]*\]' || fail "the SONAME has no version"
"$prefix/bin/tsn" check "$examples/library" | grep -q ' 0 errors, 0 warnings' || fail "the installed tool finds faults in the examples"
for file in share/man/man1/tsn.1 share/bash-completion/completions/tsn share/doc/tessarin/README.md; do
  [ -s "$prefix/$file" ] || fail "$file is missing"
done

# The program, in an environment that knows nothing of this build.
run() { env -i PATH=/usr/bin:/bin HOME="$work" "$@"; }
cp -r "$examples/program" "$work/program"
run cmake -G "$generator" -S "$work/program" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$compiler" >/dev/null
run cmake --build "$work/cmake" >/dev/null
# shellcheck disable=SC2046 # the flags are words
run "$compiler" -std=c++20 "$work/program/states.cpp" -o "$work/states" \
  $(run PKG_CONFIG_PATH="$library/pkgconfig" pkg-config --cflags --libs tessarin)

model=$examples/library/control/pid.tsn
cat >"$work/expected" <<'TEXT'
integral  29:9
filtered  30:12
TEXT
run "$work/cmake/states" "$model" | diff "$work/expected" - || fail "the program that CMake has built"
run LD_LIBRARY_PATH="$library" "$work/states" "$model" | diff "$work/expected" - || fail "the program that pkg-config has built"
echo "installed, linked and run"
