#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-2.0-or-later
# Installs the library and looks for what a package of it needs: every public header, the library
# under its three names, the CMake package with its version, the pkg-config file.
#
#   installed_files.sh <build folder> <source tree> <version> <whether the kit is built>
set -euo pipefail

build=$1 source=$2 version=$3 has_kit=$4
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cmake --install "$build" --prefix "$folder" >/dev/null

status=0
expect() {
  if [ -z "$(find "$folder" -path "*$1")" ]; then
    echo "not installed: $1"
    status=1
  fi
}

for header in "$source"/include/veldra/*.hpp; do expect "/include/veldra/${header##*/}"; done
expect "/libveldra.so"
expect "/libveldra.so.${version%%.*}"
expect "/libveldra.so.$version"
expect "/cmake/veldra/veldra-config.cmake"
expect "/cmake/veldra/veldra-config-version.cmake"
expect "/pkgconfig/veldra.pc"

library=$(find "$folder" -name "libveldra.so.$version")
if ! readelf --dynamic "$library" | grep -qF "soname: [libveldra.so.${version%%.*}]"; then
  echo "the library does not carry its major version in its name"
  status=1
fi
if [ "$has_kit" = ON ]; then
  for header in "$source"/include/veldra/kit/*; do expect "/include/veldra/kit/${header##*/}"; done
  expect "/libveldra-kit.so"
  expect "/libveldra-kit.so.0"
  expect "/libveldra-kit.so.$version"
  expect "/cmake/veldra/veldra-kit-targets.cmake"
  expect "/pkgconfig/veldra-kit.pc"
  kit=$(find "$folder" -name "libveldra-kit.so.$version")
  if ! readelf --dynamic "$kit" | grep -qF "soname: [libveldra-kit.so.0]"; then
    echo "the kit does not carry the version of its interface in its name"
    status=1
  fi
fi
# The build's folders must not be looked in for libraries, nor named anywhere else.
naming=$("${BASH_SOURCE%/*}/files_that_name.sh" "$folder" "$build" "$source")
if [ -n "$naming" ]; then
  printf 'these files name the source or build folder:\n%s\n' "$naming"
  status=1
fi
exit "$status"
