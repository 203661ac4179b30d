# SPDX-License-Identifier: GPL-2.0-or-later
# PROGRAM imports the JSON that PAGE shows, without a finding, and exports what it says.
cmake_minimum_required(VERSION 3.25)

file(READ ${PAGE} page)
string(REGEX MATCH "```json\n([^`]*)```" found "${page}")
if(NOT found)
  message(FATAL_ERROR "${PAGE} shows no JSON")
endif()
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
file(WRITE ${FOLDER}/example.json "${CMAKE_MATCH_1}")
execute_process(COMMAND ${PROGRAM} import --strict example.lib example.json
                WORKING_DIRECTORY ${FOLDER} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${PROGRAM} export example.lib WORKING_DIRECTORY ${FOLDER}
                OUTPUT_VARIABLE exported COMMAND_ERROR_IS_FATAL ANY)
string(JSON thickness GET "${exported}" compositions 0 layers 0 thickness)
string(JSON locale GET "${exported}" library locale)
if(NOT thickness EQUAL 240 OR NOT locale STREQUAL "de_CH")
  message(FATAL_ERROR "the export says something else: ${exported}")
endif()
