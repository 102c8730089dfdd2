# The services tests: a second bundle "VelmTestMessages" beside the test
# program (found relative to the program's own file), and the shared library,
# which the version tests load.
if(TARGET test_services)
  set(velmio_test_bundle_source ${PROJECT_SOURCE_DIR}/tests/services/VelmTestMessages/root.txt)
  set(velmio_test_bundle_swap "")
  if(ICUPKG)  # a big-endian target, as for the library's bundle
    set(velmio_test_bundle_res $<TARGET_FILE_DIR:test_services>/VelmTestMessages/root.res)
    set(velmio_test_bundle_swap COMMAND ${ICUPKG} -tb ${velmio_test_bundle_res} ${velmio_test_bundle_res}.be
      COMMAND ${CMAKE_COMMAND} -E rename ${velmio_test_bundle_res}.be ${velmio_test_bundle_res})
  endif()
  add_custom_command(TARGET test_services POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E make_directory $<TARGET_FILE_DIR:test_services>/VelmTestMessages
    COMMAND ${GENRB} -q -k -e UTF-8 -d $<TARGET_FILE_DIR:test_services>/VelmTestMessages
            ${velmio_test_bundle_source}
    ${velmio_test_bundle_swap}
    VERBATIM)
  set_property(TARGET test_services APPEND PROPERTY LINK_DEPENDS ${velmio_test_bundle_source})
  add_dependencies(test_services velmio velmio_messages)
  target_compile_definitions(test_services PRIVATE
    VELMIO_TEST_SHARED_LIBRARY="$<TARGET_FILE:velmio>"
    VELMIO_TEST_MESSAGE_DIR="${VELMIO_MESSAGE_DIR}"
    VELMIO_TEST_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
endif()
