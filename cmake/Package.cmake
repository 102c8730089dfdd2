# `cpack -G DEB` in the build directory makes one Debian package per install
# component: libvelmio<major> (library), libvelmio-dev (development), velmio
# (tool) and, when the Python package is built, python3-velmio, installing
# under /usr. Configure with -DCMAKE_INSTALL_PREFIX=/usr for packages: the
# install paths (the multiarch library folder, Debian's dist-packages) are
# chosen for the prefix at configure time.
set(CPACK_PACKAGE_NAME velmio)
set(CPACK_PACKAGE_VENDOR "VelmIO developers")
set(CPACK_PACKAGE_CONTACT "VelmIO developers <velmio@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Hydrographic survey data input/output library")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}.${PROJECT_VERSION_PATCH})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL library development tool)
if(TARGET velmio_python)
  list(APPEND CPACK_COMPONENTS_ALL python)
  # The extension is built for one interpreter version (its file name says which).
  get_directory_property(velmio_py_major DIRECTORY python DEFINITION Python3_VERSION_MAJOR)
  get_directory_property(velmio_py_minor DIRECTORY python DEFINITION Python3_VERSION_MINOR)
  math(EXPR velmio_py_next "${velmio_py_minor} + 1")
endif()
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  message(STATUS "Debian packages: configure with -DCMAKE_INSTALL_PREFIX=/usr to make them "
                 "(this build installs into ${CMAKE_INSTALL_PREFIX})")
endif()

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

# The extension's run-time dependencies are read from it; numpy is imported.
set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-velmio)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
  "python3 (>= ${velmio_py_major}.${velmio_py_minor}~), python3 (<< ${velmio_py_major}.${velmio_py_next}), python3-numpy")
# xarray, dask (with pandas) and matplotlib are imported only by the parts that use them.
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "python3-xarray, python3-dask, python3-pandas, python3-matplotlib")
set(CPACK_COMPONENT_PYTHON_DEPENDS library)
set(CPACK_COMPONENT_PYTHON_DESCRIPTION "The velmio Python package: survey lines as numpy arrays and xarray datasets")

include(CPack)
