#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-2.0-or-later
# Installs the library from a build folder, moves the copy to another place, builds the host there
# and runs it. Everything happens in a temporary folder outside the source and build trees.
#
#   build_host.sh cmake|pkg-config <build folder> <host sources> <compiler> [<library>...]
#
# The libraries are what the host links besides, where nothing but the compiler is asked.
set -euo pipefail

way=$1 build=$2 host=$3 compiler=$4
shift 4
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cmake --install "$build" --prefix "$folder/installed" >/dev/null
mv "$folder/installed" "$folder/moved"
cp -r "$host" "$folder/host"

with_cmake() {
  cmake -G Ninja -S "$folder/host" -B "$folder/build" -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_PREFIX_PATH="$folder/moved"
  cmake --build "$folder/build"
}

with_pkg_config() {
  local description libraries package=veldra standard=c++14
  # A host of the kit says so in its sources.
  if grep -qr '<veldra/kit/' "$folder/host"; then package=veldra-kit standard=c++17; fi
  description=$(find "$folder/moved" -name veldra.pc)
  export PKG_CONFIG_PATH=${description%/*}
  libraries=$(pkg-config --variable=libdir veldra)
  mkdir "$folder/build"
  # shellcheck disable=SC2046  # several options are meant
  "$compiler" -std=$standard -Wall -Wextra -Wpedantic -Werror $(pkg-config --cflags $package) \
    "$folder"/host/*.cpp -o "$folder/build/${host##*/}" \
    $(pkg-config --libs $package) "$@" -Wl,-rpath,"$libraries"
}

case "$way" in
  cmake) with_cmake ;;
  pkg-config) with_pkg_config "$@" ;;
  *) echo "unknown way '$way'" >&2; exit 2 ;;
esac
"$folder/build/${host##*/}" "$folder/host.lib"
