#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-2.0-or-later
# Prints the text files in a folder that name one of the places, which are absolute paths, or
# something that lies in one.
#
#   files_that_name.sh <folder> <place>...
#
# A place may have any name: of /veldra, neither lib/cmake/veldra nor /veldra-config.cmake is one.
set -euo pipefail

folder=$1
shift

for place in "$@"; do
  # What has no meaning in a pattern needs no escape, and letters must not have one.
  escaped=$(printf '%s' "${place%/}" | LC_ALL=C sed 's/[^A-Za-z0-9_/]/\\&/g')
  LC_ALL=C grep -rIlP "((?<![\w.~}+-])|(?<=-[IL]))$escaped(?![\w.~+-])" "$folder" || [ $? -eq 1 ]
done | sort -u
