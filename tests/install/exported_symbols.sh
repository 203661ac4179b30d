#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-2.0-or-later
# Compares what a shared library exports with the committed list, and shows what differs.
#
#   exported_symbols.sh <libveldra.so|libveldra-kit.so> [--update]
#
# --update writes the list anew, for a change of the interface that is meant: lines that go break
# hosts that were built before.
set -euo pipefail

library=$1
name=$(basename -- "$library")
case "${name%%.so*}" in
  libveldra) list=exported_symbols.txt ;;
  libveldra-kit) list=exported_kit_symbols.txt ;;
  *) echo "no list for $name" >&2; exit 2 ;;
esac
list=$(dirname -- "$(readlink -f -- "$0")")/$list

exported() {
  nm --dynamic --defined-only --format=posix "$library" | cut -d' ' -f1 | c++filt | LC_ALL=C sort -u
}

if [ "${2:-}" = --update ]; then
  exported >"$list"
elif ! diff -u --label "expected ($list)" --label "exported ($library)" "$list" <(exported); then
  echo "The exported symbols have changed. If that is meant: $0 $library --update" >&2
  exit 1
fi
