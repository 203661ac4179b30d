#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-2.0-or-later
# Builds a project that has veldra as a sub-project, and runs its program.
#
#   subproject.sh <source tree> <project> <compiler>
set -euo pipefail

source=$1 project=$2 compiler=$3
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cmake -G Ninja -S "$project" -B "$folder/build" -DVELDRA_SOURCE="$source" \
  -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER="$compiler"
cmake --build "$folder/build" --target host
"$folder/build/host" "$folder/host.lib"
