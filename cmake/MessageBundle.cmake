# The message bundle "VelmMessages": ICU resource text in messages/VelmMessages,
# compiled with genrb into the directory VelmMessages beside the shared library
# and installed beside it. The library finds it relative to its own module
# file, or in this build directory (compiled in) when run from the build tree.
include(GNUInstallDirs)

if(CMAKE_LIBRARY_OUTPUT_DIRECTORY)
  set(VELMIO_MESSAGE_BASE_DIR ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
else()
  set(VELMIO_MESSAGE_BASE_DIR ${PROJECT_BINARY_DIR})
endif()
set(VELMIO_MESSAGE_DIR ${VELMIO_MESSAGE_BASE_DIR}/VelmMessages)

# One .res file per locale source (root.txt, and translations such as de.txt).
file(GLOB velmio_message_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/messages/VelmMessages/*.txt)
set(velmio_message_outputs "")
# genrb writes the build host's byte order and ICU loads only the running
# host's: a big-endian target (a cross build) gets its bundle swapped.
if(CMAKE_CXX_BYTE_ORDER STREQUAL "BIG_ENDIAN")
  find_program(ICUPKG icupkg PATHS /usr/sbin REQUIRED)
endif()
foreach(source IN LISTS velmio_message_sources)
  get_filename_component(locale ${source} NAME_WE)
  set(output ${VELMIO_MESSAGE_DIR}/${locale}.res)
  set(velmio_swap_${locale} "")
  if(ICUPKG)
    set(velmio_swap_${locale} COMMAND ${ICUPKG} -tb ${output} ${output}.be
      COMMAND ${CMAKE_COMMAND} -E rename ${output}.be ${output})
  endif()
  add_custom_command(OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${VELMIO_MESSAGE_DIR}
    COMMAND ${GENRB} -q -k -e UTF-8 -d ${VELMIO_MESSAGE_DIR} ${source}
    ${velmio_swap_${locale}}
    DEPENDS ${source}
    COMMENT "Compiling message bundle VelmMessages/${locale}.res"
    VERBATIM)
  list(APPEND velmio_message_outputs ${output})
endforeach()

add_custom_target(velmio_messages ALL DEPENDS ${velmio_message_outputs})
add_dependencies(velmio velmio_messages)
add_dependencies(velmio_services velmio_messages)
target_compile_definitions(velmio_services PRIVATE VELMIO_MESSAGE_BUILD_DIR="${VELMIO_MESSAGE_BASE_DIR}")

# Module lookup (dladdr) and the version reader (dlopen) need the dynamic loader.
if(CMAKE_DL_LIBS)
  target_link_libraries(velmio_services PUBLIC ${CMAKE_DL_LIBS})
  target_link_libraries(velmio PRIVATE ${CMAKE_DL_LIBS})
  target_link_libraries(velmio_internal PUBLIC ${CMAKE_DL_LIBS})
endif()

install(FILES ${velmio_message_outputs} DESTINATION ${CMAKE_INSTALL_LIBDIR}/VelmMessages COMPONENT library)
