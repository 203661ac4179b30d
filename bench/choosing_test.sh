#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-2.0-or-later
# Whether the benchmarks run the works that are asked for, print the sides that these have, and
# refuse what they do not know.
#
#   choosing_test.sh <veldra_bench>
set -euo pipefail

program=$1
status=0

# expect <what> <expected> <actual>
expect() {
  [ "$2" = "$3" ] && return
  printf '%s:\nexpected %s\nhad      %s\n' "$1" "$2" "$3"
  status=1
}

# refused <option>: with one line, and 2.
refused() {
  local text code=0
  text=$("$program" "$1" 2>&1) || code=$?
  expect "the status of $1" 2 "$code"
  expect "the lines of $1" 1 "$(grep -c '^veldra_bench: ' <<<"$text")"
}

# measured <work>: the lines of the table for it.
measured() {
  "$program" "--filter=^$1\$" --materials=50 --rounds=1 | sed '1,/^work .*unit/d'
}

# sides <work>: which of the four sides beside the library have figures, a letter each.
sides() {
  measured "$1" | awk -F'|' '{ print ($2 ~ /[0-9]/ ? "s" : "-") ($3 ~ /[0-9]/ ? "f" : "-") \
                                     ($4 ~ /[0-9]/ ? "s" : "-") ($5 ~ /[0-9]/ ? "o" : "-") }'
}

expect "a choice by its beginning" "all_materials
all_materials_freed" "$("$program" --list '--filter=^all_mat')"
expect "a choice by either of two words" "purge
size_of_material" "$("$program" --list '--filter=^purge$|size_of_mat')"
expect "the lines of a table" "purge" "$(measured purge | cut -d' ' -f1)"
[ "$("$program" --list | wc -l)" -gt 40 ] || { echo "not all works are listed"; status=1; }

expect "what takes long, unasked" "purge_materials
purge_materials_4" "$("$program" --list '--filter=^purge_mat')"
expect "what takes long" "purge_materials_16" "$("$program" --large --list '--filter=_16$')"

expect "the sides of a list" "sfs-" "$(sides all_compositions)"
expect "the sides of a count" "sf--" "$(sides count_by_tags)"
expect "the sides of a copy" "sf--" "$(sides copy_all)"
expect "the sides of a purge in one transaction" "-f-o" "$(sides purge_materials)"
expect "the sides of what is saved over others" "s--o" "$(sides save_overwriting)"
# built_with <what>: the letter of the side that takes it, unless the program is built without.
built_with() {
  [[ $introduction != *"Built without $1"* ]] && echo o || echo -
}

introduction=$("$program" --filter=count_materials --materials=50 --rounds=1)
expect "the sides of a list of materials" "sfs$(built_with SQLiteCpp)" "$(sides all_materials)"
expect "the sides of a load" "sfs$(built_with JSON)" "$(sides load_everything)"

expect "the works that grow" "count_by_tags
count_materials" "$("$program" --growth --list --filter=count | sort)"
expect "the figures of works that grow" "count_by_tags 7
count_materials 7" "$("$program" --growth=100 --materials=50 --rounds=1 --filter=count 2>/dev/null |
  sed '1d; s/ missed$//' | awk '{ print $1, NF - 1 }' | sort)"

refused --filter='('
refused --filter=no_such_work
refused --rounds=0
refused --materials=many
refused --growth=much
refused --no-such-option
exit "$status"
