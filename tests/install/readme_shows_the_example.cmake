# SPDX-License-Identifier: GPL-2.0-or-later
# The program in README.md is the example, character by character, but for the line of its licence.
cmake_minimum_required(VERSION 3.25)

file(READ ${README} readme)
file(READ ${EXAMPLE} example)
string(REGEX REPLACE "^// SPDX[^\n]*\n//\n" "" example "${example}")
string(FIND "${readme}" "```cpp\n${example}```" position)
if(position EQUAL -1)
  message(FATAL_ERROR "${README} does not show ${EXAMPLE} as it is")
endif()
