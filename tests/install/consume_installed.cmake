# Builds the programs of examples/ against an installed VelmIO, once through
# find_package(VelmIO) and once through pkg-config, and runs them. The C++
# example must find the message bundle inside the installed prefix, not in
# the build tree the library was made in.
#
#   cmake -DWORK=<fresh dir> -DEXAMPLES=<source>/examples -DLIBDIR=lib
#         [-DBUILD_DIR=<build>] [-DPREFIX=<installed prefix>] -P consume_installed.cmake
# With BUILD_DIR the build is first installed into WORK/prefix; without it,
# PREFIX names an existing installation (e.g. /usr after installing the
# Debian packages).
cmake_minimum_required(VERSION 3.16)

function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "${what} failed (${rc}):\n${out}\n${err}")
  endif()
  set(output "${out}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
if(BUILD_DIR)
  set(PREFIX ${WORK}/prefix)
  run("install" ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX})
endif()
file(REAL_PATH ${PREFIX}/${LIBDIR} libdir)
set(bundle ${libdir}/VelmMessages)

file(GLOB sources ${EXAMPLES}/*.c ${EXAMPLES}/*.cpp)
list(LENGTH sources count)
if(count LESS 2)
  message(FATAL_ERROR "no examples in ${EXAMPLES}")
endif()

# Runs every example program of a folder in a line directory of its own.
function(run_examples dir how)
  foreach(src IN LISTS sources)
    get_filename_component(name ${src} NAME_WE)
    set(data ${WORK}/${how}-${name})
    file(MAKE_DIRECTORY ${data})
    run("${how} example ${name}" ${dir}/example_${name} ${data})
    if(name STREQUAL "data_file")
      string(FIND "${output}" "5000046: The sensor's data file was not found" said)
      string(FIND "${output}" "messages from ${bundle}\n" where)
      if(said EQUAL -1 OR where EQUAL -1)
        message(FATAL_ERROR "${how} example ${name} did not explain 5000046 from ${bundle}:\n${output}")
      endif()
    endif()
  endforeach()
endfunction()

# find_package(VelmIO)
run("configure with find_package" ${CMAKE_COMMAND} -S ${EXAMPLES} -B ${WORK}/cmake
    -DCMAKE_PREFIX_PATH=${PREFIX} -DCMAKE_C_COMPILER=${CC} -DCMAKE_CXX_COMPILER=${CXX}
    "-DCMAKE_C_FLAGS=${FLAGS}" "-DCMAKE_CXX_FLAGS=${FLAGS}" -DCMAKE_BUILD_TYPE=Release)
run("build with find_package" ${CMAKE_COMMAND} --build ${WORK}/cmake)
run_examples(${WORK}/cmake find_package)

# pkg-config, straight to the compiler
set(ENV{PKG_CONFIG_PATH} ${libdir}/pkgconfig)
run("pkg-config" pkg-config --cflags --libs velmio)
string(STRIP "${output}" pc_flags)
separate_arguments(pc_flags UNIX_COMMAND "${pc_flags}")
separate_arguments(extra UNIX_COMMAND "${FLAGS}")
file(MAKE_DIRECTORY ${WORK}/pkg-config)
foreach(src IN LISTS sources)
  get_filename_component(name ${src} NAME_WE)
  get_filename_component(ext ${src} EXT)
  if(ext STREQUAL ".c")
    set(compile ${CC} -std=c99)
  else()
    set(compile ${CXX} -std=c++17)
  endif()
  run("pkg-config build of ${name}" ${compile} ${extra} ${src} -o ${WORK}/pkg-config/example_${name}
      ${pc_flags} -Wl,-rpath,${libdir})
endforeach()
run_examples(${WORK}/pkg-config pkg-config)

# The installed command finds the library and the bundle too.
if(EXISTS ${PREFIX}/bin/velmio)
  run("velmio explain" ${PREFIX}/bin/velmio explain 5000046)
  if(NOT output MATCHES "The sensor's data file was not found")
    message(FATAL_ERROR "the installed velmio did not explain 5000046:\n${output}")
  endif()
endif()
message(STATUS "examples built and run against ${PREFIX} with find_package and pkg-config")
