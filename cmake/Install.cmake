# What `cmake --install` puts where, in three components that cpack turns into
# Debian packages: "library" (the shared library and its message bundle),
# "development" (headers, the link name, the CMake and pkg-config files) and
# "tool" (the velmio command). Paths are relative to the prefix, so that the
# same build installs into a temporary prefix or, packaged, into /usr.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(VELMIO_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/VelmIO)

install(TARGETS velmio EXPORT VelmIOTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT library
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(DIRECTORY include/velmio DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(FILES ${PROJECT_BINARY_DIR}/generated/velmio/version.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/velmio COMPONENT development)

# The command finds the library beside it in any prefix.
file(RELATIVE_PATH VELMIO_BIN_TO_LIBDIR ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
set_target_properties(velmio_tool PROPERTIES INSTALL_RPATH "$ORIGIN/${VELMIO_BIN_TO_LIBDIR}")
install(TARGETS velmio_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)

install(EXPORT VelmIOTargets NAMESPACE VelmIO:: DESTINATION ${VELMIO_CMAKE_DIR} COMPONENT development)
configure_package_config_file(cmake/VelmIOConfig.cmake.in ${PROJECT_BINARY_DIR}/VelmIOConfig.cmake
  INSTALL_DESTINATION ${VELMIO_CMAKE_DIR})
# A program built against 1.x runs with any later 1.x: the soname changes
# with the major version only.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VelmIOConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VelmIOConfig.cmake ${PROJECT_BINARY_DIR}/VelmIOConfigVersion.cmake
  DESTINATION ${VELMIO_CMAKE_DIR} COMPONENT development)

# pkg-config finds the prefix from the file's own place, so the file stays
# right wherever the tree is installed or packaged.
file(RELATIVE_PATH VELMIO_PC_TO_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" VELMIO_PC_TO_PREFIX "${VELMIO_PC_TO_PREFIX}")
configure_file(cmake/velmio.pc.in ${PROJECT_BINARY_DIR}/velmio.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/velmio.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
