# SPDX-License-Identifier: GPL-2.0-or-later
# What `cmake --install` gives, all of it or, with --component, a part: `runtime` is what a host that
# is built needs to run, `development` what building one needs, `tools` the program, and
# `documentation` the pages and the sources of the examples. CMake package and pkg-config file can be
# moved together with the library, and installed under another prefix than the configured one.
# The kit has components of its own, `kit-runtime` and `kit-development`, which need those of the
# library.
include(CMakePackageConfigHelpers)

install(TARGETS veldra EXPORT veldra-targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime
                NAMELINK_COMPONENT development
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/veldra DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
        PATTERN kit EXCLUDE)
if(VELDRA_HAS_KIT)
  install(TARGETS veldra_kit EXPORT veldra-kit-targets
          LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT kit-runtime
                  NAMELINK_COMPONENT kit-development
          INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(DIRECTORY include/veldra/kit DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/veldra
          COMPONENT kit-development)
endif()

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/veldra)
install(EXPORT veldra-targets NAMESPACE veldra:: DESTINATION ${package}
        COMPONENT development)
if(VELDRA_HAS_KIT)
  # Found by the package of the library, for those who ask for the component `kit`.
  install(EXPORT veldra-kit-targets NAMESPACE veldra:: DESTINATION ${package}
          COMPONENT kit-development)
endif()
configure_package_config_file(cmake/veldra-config.cmake.in
                              ${PROJECT_BINARY_DIR}/veldra-config.cmake
                              INSTALL_DESTINATION ${package})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/veldra-config-version.cmake
                                 VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/veldra-config.cmake
              ${PROJECT_BINARY_DIR}/veldra-config-version.cmake
        DESTINATION ${package} COMPONENT development)

set(prefix ${CMAKE_INSTALL_PREFIX})
file(RELATIVE_PATH VELDRA_PREFIX_FROM_PKGCONFIG ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${prefix})
file(RELATIVE_PATH VELDRA_LIBDIR_FROM_PREFIX ${prefix} ${CMAKE_INSTALL_FULL_LIBDIR})
file(RELATIVE_PATH VELDRA_INCLUDEDIR_FROM_PREFIX ${prefix} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
configure_file(cmake/veldra.pc.in ${PROJECT_BINARY_DIR}/veldra.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/veldra.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT development)
if(VELDRA_HAS_KIT)
  configure_file(cmake/veldra-kit.pc.in ${PROJECT_BINARY_DIR}/veldra-kit.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/veldra-kit.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
          COMPONENT kit-development)
endif()

# A project that has veldra within itself installs pages of its own.
if(NOT PROJECT_IS_TOP_LEVEL)
  return()
endif()
install(FILES README.md CHANGELOG.md CONTRIBUTING.md LICENSE
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation)
install(DIRECTORY docs examples LICENSES DESTINATION ${CMAKE_INSTALL_DOCDIR}
        COMPONENT documentation USE_SOURCE_PERMISSIONS)
# Made by scripts/docs, if it has run.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/build/docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/html
        COMPONENT documentation OPTIONAL)
