#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-2.0-or-later
# Builds the host with each compiler that is there, in each C++, and runs it.
#
#   try.sh <include folder> <libveldra.so> <compiler>...
set -euo pipefail

include=$1 library=$2
shift 2
here=$(dirname -- "$(readlink -f -- "$0")")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

tried=0
for compiler in "$@"; do
  command -v "$compiler" >/dev/null || continue
  for standard in c++14 c++17 c++20; do
    "$compiler" "-std=$standard" -Wall -Wextra -Wpedantic -Werror "-I$include" "$here/host.cpp" "$library" \
      "-Wl,-rpath,${library%/*}" -o "$folder/host"
    mkdir "$folder/$compiler-$standard"
    "$folder/host" "$folder/$compiler-$standard" ||
      { echo "with $compiler in $standard"; exit 1; }
    tried=$((tried + 1))
  done
done
[ "$tried" -gt 0 ]
