# What `cmake --install` gives: headers, library, CMake package and pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS veldra EXPORT veldra-targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/veldra DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/veldra)
install(EXPORT veldra-targets NAMESPACE veldra:: DESTINATION ${package})
configure_package_config_file(cmake/veldra-config.cmake.in veldra-config.cmake
                              INSTALL_DESTINATION ${package})
write_basic_package_version_file(veldra-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/veldra-config.cmake
              ${PROJECT_BINARY_DIR}/veldra-config-version.cmake
        DESTINATION ${package})

configure_file(cmake/veldra.pc.in veldra.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/veldra.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
