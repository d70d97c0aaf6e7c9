# SPDX-License-Identifier: MIT
# Installs the library with a package configuration, so that `find_package(Tessal)` works.
# Everything an application builds against is in the component `tessal`.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS tessal EXPORT TessalTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT tessal
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT tessal
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tessal
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT TessalTargets NAMESPACE Tessal:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Tessal
        COMPONENT tessal)
configure_package_config_file(cmake/TessalConfig.cmake.in
  "${PROJECT_BINARY_DIR}/TessalConfig.cmake"
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Tessal)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/TessalConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/TessalConfig.cmake" "${PROJECT_BINARY_DIR}/TessalConfigVersion.cmake"
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Tessal COMPONENT tessal)
