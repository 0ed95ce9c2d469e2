#!/usr/bin/env bash
# Compares text to tree with a textbook parser: flex and GNU Bison on our own grammar, with `new Node` for each reduction.
# One table, from one run. `./dev bench peers` calls it: compare.sh BUILD_DIRECTORY
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
build=$1
grammar=$here/../../tessarin/parser/parse/grammar.yy
ours=$build/bench/peers_ours
work=$build/bench/peers
mkdir -p "$work"

awk -f "$here/grammar.awk" "$grammar" >"$work/peer.y"
awk -f "$here/scanner.awk" "$grammar" >"$work/words"
sed -e "/@WORDS@/{r $work/words
d}" "$here/scanner.l.in" >"$work/peer.l"
(
  cd "$work"
  bison -Wno-conflicts-sr -Wno-conflicts-rr -Wno-other -o peer.tab.cpp --header=peer.tab.hpp peer.y
  flex -o peer.lex.cpp peer.l
  "${CXX:-c++}" -std=c++20 -O3 -I"$here" -I. peer.tab.cpp peer.lex.cpp "$here/peer.cpp" -o peer
)

# instructions PROGRAM... : those of the process.
instructions() {
  valgrind --tool=callgrind --callgrind-out-file=/dev/null "$@" 2>&1 | sed -n 's/.*Collected : //p'
}
# peak PROGRAM... : the peak of the memory of the process, in kB.
peak() {
  /usr/bin/env bash -c '"$@" >/dev/null & pid=$!; high=0
    while kill -0 $pid 2>/dev/null; do now=$(sed -n "s/VmHWM:[^0-9]*\([0-9]*\).*/\1/p" /proc/$pid/status 2>/dev/null || true)
      [ -n "$now" ] && high=$now; sleep 0.005; done; echo "$high"' _ "$@"
}
quotient() { awk -v a="$1" -v b="$2" -v f="${3:-%.2f}" 'BEGIN { printf f, a / b }'; }

echo "| text | textbook, M units/s | ours to parse tree | ours to syntax tree | to parse tree, times the textbook | to syntax tree |"
echo "|---|---|---|---|---|---|"
# row NAME TIMES FILE...
row() {
  local name=$1 times=$2 peer tree syntax
  shift 2
  peer=$("$work/peer" "$times" "$@")
  tree=$("$ours" tree "$times" "$@")
  syntax=$("$ours" syntax "$times" "$@")
  echo "| $name | $peer | $tree | $syntax | $(quotient "$tree" "$peer") | $(quotient "$syntax" "$peer") |"
}
mkdir -p "$work/many"
for i in $(seq 1000); do
  [ -f "$work/many/$i.tsn" ] || "$ours" write 10000 "$i" "$work/many/$i.tsn"
done
for size in 10000 1000000 10000000; do
  [ -f "$work/$size.tsn" ] || "$ours" write "$size" 1 "$work/$size.tsn"
done
row '10 kB' 200 "$work/10000.tsn"
row '1 MB' 8 "$work/1000000.tsn"
row '10 MB' 2 "$work/10000000.tsn"
row '1,000 files of 10 kB' 2 "$work"/many/*.tsn

file=$work/1000000.tsn
units=$(wc -c <"$file")
echo
echo "| 1 MB | instructions a code unit | bytes of peak memory a code unit |"
echo "|---|---|---|"
read_cost=$(instructions "$ours" read 1 "$file")
cost() {
  local name=$1
  shift
  echo "| $name | $(quotient $(($(instructions "$@") - ${base:-0})) "$units" %.0f) | $(quotient $(($(peak "$@") * 1024)) "$units" %.0f) |"
}
base=0 cost "textbook, the whole process" "$work/peer" 1 "$file"
base=$read_cost cost "ours to parse tree, without reading the file" "$ours" tree 1 "$file"
base=$read_cost cost "ours to syntax tree, without reading the file" "$ours" syntax 1 "$file"
base=0 cost "tsn check, the whole process" "$build/tools/tsn/tsn" check -j1 "$file"
