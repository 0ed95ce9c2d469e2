#!/usr/bin/env bash
# Makes this source tree a part of another CMake project, and looks at what would be built and installed.
# Arguments: the source tree, the compiler, and the generator of CMake.
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cat >"$work/CMakeLists.txt" <<TEXT
cmake_minimum_required(VERSION 3.25)
project(Outer LANGUAGES CXX)
add_subdirectory($1 tessarin)
add_executable(outer outer.cpp)
target_link_libraries(outer PRIVATE Tessarin::tessarin)
get_property(parts DIRECTORY $1 PROPERTY SUBDIRECTORIES)
message(STATUS "parts: \${parts}")
TEXT
echo 'int main() {}' >"$work/outer.cpp"
parts=$(cmake -G "$3" -S "$work" -B "$work/build" -DCMAKE_CXX_COMPILER="$2" | sed -n 's/^-- parts: //p')
case $parts in
  *tessarin/foundation*) ;;
  *) echo "error: the library is not built: $parts" >&2 && exit 1 ;;
esac
case $parts in
  *"$1/tests"* | *"$1/tools"* | *"$1/fuzz"*) echo "error: more than the library is built: $parts" >&2 && exit 1 ;;
esac
cmake --install "$work/build" --prefix "$work/prefix" --component tool >/dev/null
[ ! -e "$work/prefix" ] || { echo "error: the tool is installed" >&2 && exit 1; }
echo "only the library is built"
