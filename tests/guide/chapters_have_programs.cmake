# SPDX-License-Identifier: GPL-2.0-or-later
# Each page of GUIDE but the first has a program of its name, and the first page names them all.
cmake_minimum_required(VERSION 3.25)

string(REPLACE "," ";" names "${NAMES}")
file(READ ${GUIDE}/index.md index)
file(GLOB pages RELATIVE ${GUIDE} ${GUIDE}/*.md)
list(REMOVE_ITEM pages index.md)
foreach(page IN LISTS pages)
  string(REGEX REPLACE "\\.md$" "" name ${page})
  if(NOT name IN_LIST names)
    message(FATAL_ERROR "the chapter ${page} has no program")
  endif()
  string(FIND "${index}" "(${page})" position)
  if(position EQUAL -1)
    message(FATAL_ERROR "${GUIDE}/index.md does not name ${page}")
  endif()
endforeach()
