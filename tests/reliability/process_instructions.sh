#!/usr/bin/env bash
# Counts the instructions of AudioProcessor::computeBlock in a second of playing, without a client and with one that
# asks without pause, and prints their ratio. Needs valgrind; ./test builds the program.
set -euo pipefail
program=${1:-build/bin/process_instructions}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
for way in still streaming; do
  valgrind --tool=callgrind --callgrind-out-file="$folder/$way" --toggle-collect='AudioProcessor::computeBlock()' \
    --zero-before=measurement_begins --dump-before=measurement_ends "$program" $way 2>"$folder/$way.log" | grep answers
done
# With what it calls; other threads' work is in the file's total too.
cost() { callgrind_annotate --inclusive=yes "$folder/$1.1" | awk '/AudioProcessor::computeBlock/ { gsub(",", "", $1); print $1; exit }'; }
awk -v still="$(cost still)" -v streaming="$(cost streaming)" \
  'BEGIN { printf "still %d, streaming %d instructions: ratio %.5f\n", still, streaming, streaming / still }'
