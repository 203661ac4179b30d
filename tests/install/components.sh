#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-2.0-or-later
# Installs each component on its own: each has what is its own, no file is in two of them, and
# together they are what is installed without naming one.
#
#   components.sh <build folder> <source tree> <whether the program is built> <whether the kit is> \
#                 <whether the Python module is>
set -euo pipefail

build=$1 source=$2 has_tools=$3 has_kit=$4 has_python=$5
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
status=0

# install_part <name> [<component>]: the files are listed in <name>.
install_part() {
  cmake --install "$build" --prefix "$folder/tree" ${2:+--component "$2"} >/dev/null
  (cd "$folder/tree" && find . -type f -o -type l) | LC_ALL=C sort >"$folder/$1"
  (cd "$folder/tree" && find . -type f -name '*.sh' ! -executable) >>"$folder/not-executable"
  rm -r "$folder/tree"
}

# expect <component> <pattern>
expect() {
  grep -qE "$2" "$folder/$1" && return
  printf 'the component %s has no %s\n' "$1" "$2"
  status=1
}

components=(runtime development documentation)
[ "$has_tools" != ON ] || components+=(tools)
[ "$has_kit" != ON ] || components+=(kit-runtime kit-development)
[ "$has_python" != ON ] || components+=(python)
for component in "${components[@]}"; do install_part "$component" "$component"; done
install_part everything

expect runtime '/libveldra\.so\.[0-9]+$'
expect runtime '/libveldra\.so\.[0-9.]+\.[0-9]+$'
expect development '/libveldra\.so$'
for header in "$source"/include/veldra/*.hpp; do expect development "/include/veldra/${header##*/}$"; done
expect development '/veldra-config\.cmake$'
expect development '/veldra-targets\.cmake$'
expect development '/pkgconfig/veldra\.pc$'
for page in README.md CHANGELOG.md LICENSE docs/file-format.md docs/images/cavity-wall.svg \
  examples/hello/hello.cpp examples/catalogue/demo.sh; do
  expect documentation "/doc/.*/$page$"
done
if [ "$has_tools" = ON ]; then
  for file in /bin/veldra /man1/veldra.1 /bash-completion/completions/veldra \
    /zsh/[a-z-]*/_veldra /fish/vendor_completions.d/veldra.fish; do
    expect tools "$file$"
  done
fi

if [ "$has_kit" = ON ]; then
  expect kit-runtime '/libveldra-kit\.so\.0$'
  expect kit-runtime '/libveldra-kit\.so\.[0-9.]+\.[0-9]+$'
  expect kit-development '/libveldra-kit\.so$'
  for header in "$source"/include/veldra/kit/*; do
    expect kit-development "/include/veldra/kit/${header##*/}$"
  done
  expect kit-development '/veldra-kit-targets\.cmake$'
  expect kit-development '/pkgconfig/veldra-kit\.pc$'
fi

if [ "$has_python" = ON ]; then
  expect python '/veldra/_veldra\..*\.so$'
  for file in "$source"/python/veldra/*; do
    [ ! -f "$file" ] || expect python "/veldra/${file##*/}$"
  done
fi

(cd "$folder" && cat "${components[@]}") | LC_ALL=C sort >"$folder/together"
if ! diff -u --label "without naming a component" --label "by component" \
  "$folder/everything" "$folder/together"; then
  status=1
fi
if [ -s "$folder/not-executable" ]; then
  echo "these scripts cannot be run:"
  sort -u "$folder/not-executable"
  status=1
fi
exit "$status"
