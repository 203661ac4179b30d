# SPDX-License-Identifier: GPL-2.0-or-later
# What `cmake --install` gives: headers, library, CMake package and pkg-config file. Both can be
# moved together with the library, and installed under another prefix than the configured one.
include(CMakePackageConfigHelpers)

install(TARGETS veldra EXPORT veldra-targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/veldra DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/veldra)
install(EXPORT veldra-targets NAMESPACE veldra:: DESTINATION ${package})
configure_package_config_file(cmake/veldra-config.cmake.in
                              ${PROJECT_BINARY_DIR}/veldra-config.cmake
                              INSTALL_DESTINATION ${package})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/veldra-config-version.cmake
                                 VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/veldra-config.cmake
              ${PROJECT_BINARY_DIR}/veldra-config-version.cmake
        DESTINATION ${package})

set(prefix ${CMAKE_INSTALL_PREFIX})
file(RELATIVE_PATH VELDRA_PREFIX_FROM_PKGCONFIG ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${prefix})
file(RELATIVE_PATH VELDRA_LIBDIR_FROM_PREFIX ${prefix} ${CMAKE_INSTALL_FULL_LIBDIR})
file(RELATIVE_PATH VELDRA_INCLUDEDIR_FROM_PREFIX ${prefix} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
configure_file(cmake/veldra.pc.in ${PROJECT_BINARY_DIR}/veldra.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/veldra.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
