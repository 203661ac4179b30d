#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-2.0-or-later
# What a librarian of an architect's office does, from a new library to pictures on the wall.
#
#   examples/catalogue/demo.sh PROGRAM [FOLDER]
#
# PROGRAM is the built program `veldra`; the files lie in FOLDER afterwards, a new temporary one by
# default.
set -euo pipefail

[ $# -ge 1 ] || { sed -n '4s/^# *//p' "$0" >&2; exit 2; }
program=$(realpath "$1")
catalogue=$(cd "$(dirname "$0")" && pwd)
folder=${2:-$(mktemp -d)}
mkdir -p "$folder"
cd "$folder"
rm -f office.lib site.lib office.json office-materials.csv build-ups.svg site.svg

step() { printf '\n== %s\n' "$*"; }
run() { printf '$ veldra %s\n' "$*"; "$program" "$@"; }

step "A millimetre library from the catalogue"
run create office.lib --unit mm --guid "Office catalogue" --locale de_AT --region AT
"$program" import office.lib "$catalogue"/*.json "$catalogue"/*.idf "$catalogue"/*.epJSON
run info office.lib

step "Searching and showing"
run list office.lib materials --type Wood --search '%platte%'
run list office.lib compositions --type roof
run show office.lib composition "AW-05 Zweischalige Wand mit Klinker"
run where-used office.lib material "Linoleum / Linoleum"

step "Drawing three build-ups"
run draw office.lib "AW-05 Zweischalige Wand mit Klinker" "DE-07 Bodenplatte auf XPS" \
  "DA-12 Gründach extensiv" -o build-ups.svg

step "A selection for a site that works in inches"
run create site.lib --unit in
run copy office.lib site.lib "composition:AW-09 Holzrahmenwand mit Lärchenschalung" \
  "composition:DA-15 Steildach mit Zwischensparrendämmung"
run show site.lib composition "AW-09 Holzrahmenwand mit Lärchenschalung"
run draw site.lib "AW-09 Holzrahmenwand mit Lärchenschalung" -o site.svg

step "The same again changes nothing"
"$program" import office.lib "$catalogue"/*.json

step "Changing and purging"
run remove office.lib compositions "DE-09 Bodenplatte Bestand, innen gedämmt"
# One of these is in use and stays, which the exit status 3 tells.
run remove office.lib materials "PVC-Belag / PVC flooring" \
  "Stahlbeton 1 % / Reinforced concrete, 1 % steel" || [ $? -eq 3 ]
run purge office.lib types layers tags properties
run export office.lib -o office.json
run export office.lib --format csv -o office-materials.csv

step "Checking"
run check office.lib
run check site.lib

step "All of it lies in $folder"
ls -l
