#!/usr/bin/env bash
# Runs ./dev in a small repository of its own, where the programs that it calls are stand-ins that tell how they are called.
# Argument: the script.
set -euo pipefail
script=$1

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/bin" "$work/tree/build/release/tools/tsn" "$work/elsewhere"
cp "$script" "$work/tree/dev"
export PATH=$work/bin:$PATH HOME=$work

stand_in() { printf '#!/bin/sh\n%s\n' "$2" >"$1" && chmod +x "$1"; }
stand_in "$work/bin/dpkg-query" 'echo install ok installed'
stand_in "$work/bin/cmake" 'echo "cmake ${CCACHE_DISABLE:+without cache }$*" >&2'
stand_in "$work/bin/ctest" 'echo "ctest $*"'
stand_in "$work/bin/ccache" 'echo "$CACHE"'
stand_in "$work/bin/clang-format" 'exit 0'
stand_in "$work/tree/build/release/tools/tsn/tsn" 'echo "$PWD: $*"'
export CACHE=$work/cache

failed=0
# expect WHAT STATUS PATTERN COMMAND...: the status, and a pattern that the output matches as a whole line.
expect() {
  local what=$1 status=0 output
  output=$("${@:4}" 2>&1) || status=$?
  if [ "$status" -ne "$2" ] || ! grep -qxE -e "$3" <<<"$output"; then
    printf 'error: %s: status %s\n%s\n' "$what" "$status" "$output" >&2
    failed=1
  fi
}
dev=$work/tree/dev

cd "$work/elsewhere"
expect "paths are meant from the folder of the caller" 0 "$work/elsewhere: check a b.tsn" "$dev" run check 'a b.tsn'
expect "a preset without a name" 2 'error: --preset wants the name of a preset.*' "$dev" test --preset
expect "an option in the place of the name" 2 'error: --preset wants the name of a preset.*' "$dev" test --preset --quick
expect "the quick tests" 0 'ctest --test-dir build/asan .* -LE large -R X' "$dev" test --preset asan --quick -R X
expect "a cache that can be written" 0 'cmake --build build/release.*' "$dev" build
CACHE=/proc/no expect "a cache that cannot be written" 0 'cmake without cache --build build/release.*' "$dev" build

cd "$work/tree"
git init -q
git -c user.name=x -c user.email=x@x.invalid commit -q --allow-empty -m first
printf '/build/\n' >.gitignore
touch a.cpp README.md
git add .gitignore a.cpp README.md dev
expect "nothing but sources" 0 '' ./dev format --check
head -c 1000001 /dev/zero >large.txt
touch default.profraw
expect "what is not tracked" 0 '' ./dev format --check
git add large.txt default.profraw
expect "a large file" 1 'error: large.txt has 1000001 bytes; .*' ./dev format --check
expect "an unknown kind" 1 'error: default.profraw is of a kind that the tree does not use.*' ./dev format --check

[ $failed -eq 0 ] && echo "./dev does what it says"
exit $failed
