# SPDX-License-Identifier: GPL-2.0-or-later
# Generates the object-relational mapping from the headers that describe it.
#
#   veldra_generate_mapping(<variable for the sources> <header>...)
#
# The mapping compiler tells of no dependencies, so every header counts as one.
find_program(VELDRA_ODB odb REQUIRED DOC "The compiler of the object-relational mapping")

function(veldra_generate_mapping sources)
  set(directory ${CMAKE_CURRENT_BINARY_DIR}/generated)
  file(MAKE_DIRECTORY ${directory}/store)
  # The folder of the checkout may have a name that would be a pattern.
  string(REGEX REPLACE "([[?*])" "[\\1]" source "${PROJECT_SOURCE_DIR}")
  file(GLOB headers CONFIGURE_DEPENDS "${source}/include/veldra/*.hpp" "${source}/src/*/*.hpp")
  set(changelog ${CMAKE_CURRENT_SOURCE_DIR}/store/changelog.xml)
  set(generated)
  foreach(name IN LISTS ARGN)
    set(schema)
    if(name STREQUAL mapping)
      # The changelog of the source tree is only read: while the mapping agrees with it, nothing is
      # written at all, and a mapping that does not agree stops the build.
      set(schema --generate-schema --schema-format embedded --changelog-in ${changelog}
          --changelog-out ${directory}/changelog.xml)
    endif()
    set(outputs ${directory}/store/${name}-odb.cpp ${directory}/store/${name}-odb.hpp
        ${directory}/store/${name}-odb.ipp)
    add_custom_command(
      OUTPUT ${outputs}
      COMMAND
        ${VELDRA_ODB} --database sqlite --std c++14 --generate-query --generate-prepared
        --session-type veldra::Session ${schema}
        --hxx-prologue "#include \"store/traits.hpp\""
        --hxx-prologue "#include \"store/session.hpp\""
        --hxx-suffix .hpp --ixx-suffix .ipp --cxx-suffix .cpp --include-prefix store
        --output-dir ${directory}/store
        -I ${PROJECT_SOURCE_DIR}/include -I ${CMAKE_CURRENT_SOURCE_DIR}
        ${CMAKE_CURRENT_SOURCE_DIR}/store/${name}.hpp
      DEPENDS ${headers} ${changelog}
      COMMENT "Generating the mapping of ${name}.hpp"
      VERBATIM)
    list(APPEND generated ${outputs})
  endforeach()
  set(${sources} ${generated} PARENT_SCOPE)
endfunction()
