#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-2.0-or-later
# Configures the project on machines that lack packages, or have old ones: what can be built is, what
# cannot be is told, and what was asked for by name stops with a sentence.
#
#   parts.sh <source tree> <compiler>
set -euo pipefail

source=$1 compiler=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
status=0

wrong() {
  printf '%s\n' "$*"
  sed 's/^/  | /' "$folder/log"
  status=1
}

configure() {
  cmake -G Ninja -S "$source" -B "$folder/build" -DCMAKE_CXX_COMPILER="$compiler" "$@" \
    >"$folder/log" 2>&1
}
# Lines are broken where they are long.
tells() { tr -s ' \n' ' ' <"$folder/log" | grep -qF -- "$1" || wrong "not told: $1"; }
has() { ninja -C "$folder/build" -t targets all | grep "^$1:" >/dev/null; }

# refused <sentence> <option>...
refused() {
  local sentence=$1
  shift
  ! configure "$@" || wrong "configured with $*"
  tells "$sentence"
}

absent=()
for package in CLI11 nlohmann_json fmt libmd utf8proc GTest; do
  absent+=("-DCMAKE_DISABLE_FIND_PACKAGE_$package=ON")
done
configure "${absent[@]}" || wrong "not configured without the program's libraries"
tells "Leaving out the program, which cannot be built without: CLI11, nlohmann_json, fmt, libmd, utf8proc"
tells "Leaving out the kit, which cannot be built without: fmt, libmd, nlohmann_json, utf8proc"
tells "Leaving out the tests, which cannot be built without: GTest"
has veldra || wrong "the library is not built"
! has veldra_tool || wrong "the program is built without its libraries"
! has veldra_kit || wrong "the kit is built without its libraries"

refused "VELDRA_BUILD_TOOLS is ON, and the program cannot be built without: CLI11, nlohmann_json, fmt, libmd, utf8proc" \
  -DVELDRA_BUILD_TOOLS=ON
refused "VELDRA_BUILD_KIT is ON, and the kit cannot be built without: fmt, libmd, nlohmann_json, utf8proc" \
  -DVELDRA_BUILD_TOOLS=OFF -DVELDRA_BUILD_KIT=ON
refused "VELDRA_BUILD_TESTS is ON, and the tests cannot be built without: GTest" \
  -DVELDRA_BUILD_TOOLS=OFF -DVELDRA_BUILD_KIT=OFF -DVELDRA_BUILD_TESTS=ON
refused "VELDRA_BUILD_PYTHON is ON, and the Python module needs the kit" \
  -DVELDRA_BUILD_TESTS=OFF -DVELDRA_BUILD_PYTHON=ON
configure -DVELDRA_BUILD_TESTS=OFF -DVELDRA_BUILD_PYTHON=AUTO || wrong "not configured without program and tests"
! grep -q 'Leaving out' "$folder/log" || wrong "told of what is not wanted"

mkdir -p "$folder/old/odb"
printf '#define SQLITE_VERSION "3.31.1"\n' >"$folder/old/sqlite3.h"
printf '#define LIBODB_VERSION_STR "2.3.0"\n' >"$folder/old/odb/version.hxx"
refused "libodb is 2.3.0, and the library needs 2.4 or later" -DVELDRA_ODB_INCLUDE="$folder/old"
refused 'Found unsuitable version "3.31.1", but required is at least "3.32"' \
  -DSQLite3_INCLUDE_DIR="$folder/old"

rm -r "$folder/build"
configure -DCMAKE_DISABLE_FIND_PACKAGE_pybind11=ON || wrong "not configured without pybind11"
tells "Leaving out the Python module, which cannot be built without: pybind11"
! has veldra_python || wrong "the Python module is built without its libraries"
refused "VELDRA_BUILD_PYTHON is ON, and the Python module cannot be built without: pybind11" \
  -DVELDRA_BUILD_PYTHON=ON

rm -r "$folder/build"
configure -DCMAKE_DISABLE_FIND_PACKAGE_pugixml=ON -DCMAKE_DISABLE_FIND_PACKAGE_xlsxwriter=ON ||
  wrong "not configured without the libraries of formats"
tells "Leaving out the reader of gbXML, which cannot be built without: pugixml"
tells "Leaving out XLSX workbooks, which cannot be built without: xlsxwriter, pugixml"
has veldra_kit || wrong "the kit is not built without the libraries of formats"
refused "VELDRA_BUILD_XLSX is ON, and XLSX workbooks cannot be built without: xlsxwriter, pugixml" \
  -DVELDRA_BUILD_XLSX=ON
exit "$status"
