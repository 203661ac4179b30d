# SPDX-License-Identifier: GPL-2.0-or-later
# PAGE shows SOURCE, character by character but for the line of its licence, and after it the output
# of PROGRAM, which runs in the empty FOLDER. A program that reads a file is given the library that
# the program FIRST makes.
cmake_minimum_required(VERSION 3.25)

# read_text(<file> <variable>): a list of CMake would end at brackets.
function(read_text file variable)
  file(READ ${file} text)
  string(REPLACE "\r\n" "\n" text "${text}")
  set(${variable} "${text}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
set(arguments "")
set(language cpp)
if(SOURCE MATCHES "\\.c$")
  execute_process(COMMAND ${FIRST} WORKING_DIRECTORY ${FOLDER} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  set(arguments office.lib)
  set(language c)
endif()
execute_process(COMMAND ${PROGRAM} ${arguments} WORKING_DIRECTORY ${FOLDER}
                OUTPUT_VARIABLE output RESULT_VARIABLE status)
if(NOT status EQUAL 0 OR output STREQUAL "")
  message(FATAL_ERROR "${PROGRAM} has ended with ${status} and printed '${output}'")
endif()

read_text(${PAGE} page)
read_text(${SOURCE} source)
string(FIND "${source}" "\n" end)
math(EXPR begin "${end} + 1")
string(SUBSTRING "${source}" ${begin} -1 source)
string(FIND "${page}" "```${language}\n${source}```\n\nIt prints:\n\n```text\n${output}```\n" position)
if(position EQUAL -1)
  message(FATAL_ERROR "${PAGE} does not show ${SOURCE} with its output as it is:\n${output}")
endif()
