#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-2.0-or-later
# Whether files_that_name.sh finds a place of any name, and takes nothing else for it.
set -euo pipefail

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
status=0

# expect found|missed <place> <text>
expect() {
  local what=missed
  printf '%s\n' "$3" >"$folder/file"
  [ -z "$("${BASH_SOURCE%/*}/files_that_name.sh" "$folder" "$2")" ] || what=found
  [ "$what" = "$1" ] && return
  printf 'in %s, %s is %s\n' "$3" "$2" "$what"
  status=1
}

expect found /veldra 'set(folder "/veldra")'
expect found /veldra '/veldra/build/src'
expect found /veldra 'Cflags: -I/veldra/include'
expect found /veldra 'Libs: -L/veldra -lveldra'
expect found /veldra 'prefix=/veldra'
expect found /veldra/ 'a;/veldra;b'
expect missed /veldra 'lib/cmake/veldra'
expect missed /veldra '${prefix}/veldra'
expect missed /veldra '../veldra'
expect missed /veldra '/veldra-config.cmake'
expect missed /veldra '/veldra.pc'
expect missed /x '/x86_64-linux-gnu'
expect found '/with blanks/and more' 'prefix=/with blanks/and more/lib'
expect missed '/with blanks/and more' '/with blanks'
expect found '/Größe' '"/Größe/lib"'
expect found '/[a](b)+$^{c}\' '"/[a](b)+$^{c}\/lib"'
expect missed '/a.c' '"/abc"'
exit "$status"
