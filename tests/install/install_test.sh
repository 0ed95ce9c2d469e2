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

# The programs, in an environment that knows nothing of this build: those of the examples, and those of docs/library.md. Of
# the document, a block ```cpp NAME is a program, a block ```text behind it says how it is called and what it prints, and a
# block ```tsn NAME is a file that the programs read.
run() { env -i PATH=/usr/bin:/bin HOME="$work" "$@"; }
cp -r "$examples/program" "$work/program"
mkdir "$work/guide"
awk -v directory="$work/guide/" '
  !inside && /^```(cpp|tsn) ./ { file = directory $2 ($1 == "```cpp" ? ".cpp" : ""); name = $2; inside = 1; next }
  !inside && /^```text$/ { file = directory name ".expected"; inside = 1; next }
  inside && /^```$/ { close(file); inside = 0; next }
  inside && sub(/^\$ /, "") { print >(directory name ".call"); next }
  inside { print >file }' "$prefix/share/doc/tessarin/docs/library.md"
programs=$(cd "$work/guide" && ls -- *.cpp | sed 's/\.cpp$//')
[ "$(wc -w <<<"$programs")" -ge 8 ] || fail "docs/library.md has lost programs"
cat >"$work/CMakeLists.txt" <<'TEXT'
cmake_minimum_required(VERSION 3.25)
project(Users LANGUAGES CXX)
find_package(Tessarin 0.1 REQUIRED)
find_package(Threads REQUIRED)
add_subdirectory(program)
# The header is compiled once for all of them.
foreach(program IN LISTS PROGRAMS)
  add_executable(${program} guide/${program}.cpp)
  target_link_libraries(${program} PRIVATE Tessarin::tessarin Threads::Threads)
  target_compile_options(${program} PRIVATE -Wall -Wextra -Werror)
  if(first)
    target_precompile_headers(${program} REUSE_FROM ${first})
  else()
    target_precompile_headers(${program} PRIVATE <tessarin/tessarin.hpp>)
    set(first ${program})
  endif()
endforeach()
TEXT
run cmake -G "$generator" -S "$work" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$compiler" \
  "-DPROGRAMS=${programs//$'\n'/;}" >/dev/null
run cmake --build "$work/cmake" >"$work/log" || { cat "$work/log" >&2; fail "a program does not build"; }
# shellcheck disable=SC2046 # the flags are words
run "$compiler" -std=c++20 "$work/program/states.cpp" -o "$work/states" \
  $(run PKG_CONFIG_PATH="$library/pkgconfig" pkg-config --cflags --libs tessarin)

for program in $programs; do
  read -r _ arguments <"$work/guide/$program.call"
  # shellcheck disable=SC2086 # the arguments are words
  (cd "$work/guide" && run "$work/cmake/$program" $arguments) >"$work/out" || true
  diff -bB "$work/guide/$program.expected" "$work/out" || fail "the program $program of docs/library.md"
done

model=$examples/library/control/pid.tsn
cat >"$work/expected" <<'TEXT'
integral  29:9
filtered  30:14
TEXT
run "$work/cmake/program/states" "$model" | diff "$work/expected" - || fail "the program that CMake has built"
run LD_LIBRARY_PATH="$library" "$work/states" "$model" | diff "$work/expected" - || fail "the program that pkg-config has built"
run "$work/cmake/program/inline_parameters" "$examples/library/electrical/ladder.tsn" >"$work/ladder.tsn"
grep -q 'for k = 1 : 4' "$work/ladder.tsn" || fail "a constant parameter is not inlined"
"$prefix/bin/tsn" check "$work/ladder.tsn" >/dev/null || fail "what is inlined does not read back"
run "$work/cmake/program/structure_graph" "$examples/library/mechanical/spring_damper.tsn" |
  grep -qF '"B.t" -> "F.t" [label="t"];' || fail "a branch is not drawn"
echo "installed, linked and run"
