# `cpack -G DEB` in the build directory makes one Debian package per install
# component: libvelmio<major> (library), libvelmio-dev (development) and
# velmio (tool), installing under /usr.
set(CPACK_PACKAGE_NAME velmio)
set(CPACK_PACKAGE_VENDOR "VelmIO developers")
set(CPACK_PACKAGE_CONTACT "VelmIO developers <velmio@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Hydrographic survey data input/output library")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}.${PROJECT_VERSION_PATCH})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL library development tool)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
# Run-time dependencies (libxml2, ICU, libstdc++) are read from the binaries.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The command links the library of this build, which no installed package holds yet.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libvelmio${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
# Registers the soname with dpkg and runs ldconfig on install and removal.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "VelmIO shared library and its message bundle")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libvelmio-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS library)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "VelmIO headers, CMake package and pkg-config file")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME velmio)
set(CPACK_COMPONENT_TOOL_DEPENDS library)
set(CPACK_COMPONENT_TOOL_DESCRIPTION "The velmio command: survey lines, times and error codes")

include(CPack)
