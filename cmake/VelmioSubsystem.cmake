# velmio_subsystem(name dep...) makes the object library velmio_<name> from the
# sources of the folder <name> (new files are picked up at configure time) and
# remembers its dependencies, so that a test program can link exactly the
# subsystems it needs and nothing that another subsystem's work in progress
# might break.
set(VELMIO_SUBSYSTEM_LIBS "")
function(velmio_subsystem name)
  file(GLOB srcs CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${name}/*.cpp ${PROJECT_SOURCE_DIR}/${name}/*.c)
  if(NOT srcs)
    set(srcs ${PROJECT_SOURCE_DIR}/cmake/empty.cpp)
  endif()
  add_library(velmio_${name} OBJECT ${srcs})
  target_include_directories(velmio_${name} PUBLIC ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}
    ${PROJECT_BINARY_DIR}/generated)
  target_compile_definitions(velmio_${name} PUBLIC VELMIO_BUILDING)
  foreach(dep IN LISTS ARGN)
    target_link_libraries(velmio_${name} PUBLIC velmio_${dep})
  endforeach()
  set_property(GLOBAL PROPERTY VELMIO_DEPS_${name} ${ARGN})
  set(VELMIO_SUBSYSTEM_LIBS ${VELMIO_SUBSYSTEM_LIBS} velmio_${name} PARENT_SCOPE)
endfunction()

# The subsystem and everything it builds on, as object library targets.
function(velmio_closure out)
  set(todo ${ARGN})
  set(seen "")
  while(todo)
    list(POP_FRONT todo item)
    if(NOT item IN_LIST seen)
      list(APPEND seen ${item})
      get_property(deps GLOBAL PROPERTY VELMIO_DEPS_${item})
      list(APPEND todo ${deps})
    endif()
  endwhile()
  list(TRANSFORM seen PREPEND velmio_)
  set(${out} ${seen} PARENT_SCOPE)
endfunction()

# velmio_test(name subsystem...) makes the test program test_<name> from the
# files of tests/<name>, linked with those subsystems and what they build on.
function(velmio_test name)
  file(GLOB srcs CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/${name}/*.cpp)
  if(NOT srcs)
    return()
  endif()
  velmio_closure(libs ${ARGN})
  add_executable(test_${name} ${srcs})
  target_link_libraries(test_${name} PRIVATE ${libs} ${VELMIO_EXTERNAL_LIBS} velmio_test_support
    GTest::gtest_main GTest::gmock)
  gtest_discover_tests(test_${name} DISCOVERY_TIMEOUT 60
    PROPERTIES ENVIRONMENT "VELMIO_SOURCE_DIR=${PROJECT_SOURCE_DIR}\\;VELMIO_BINARY_DIR=${PROJECT_BINARY_DIR}")
endfunction()
