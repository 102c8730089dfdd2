# A record of the parts of the build that depend on something optional, so
# that configure ends with one list saying which are off and why.
set_property(GLOBAL PROPERTY VELMIO_OPTIONAL_PARTS "")

# velmio_optional_part(<part> ON|OFF <why>)
function(velmio_optional_part part enabled why)
  if(enabled)
    set(line "  ${part}: on")
  else()
    set(line "  ${part}: off (${why})")
  endif()
  set_property(GLOBAL APPEND PROPERTY VELMIO_OPTIONAL_PARTS "${line}")
endfunction()

function(velmio_report_optional_parts)
  get_property(lines GLOBAL PROPERTY VELMIO_OPTIONAL_PARTS)
  message(STATUS "VelmIO optional parts:")
  foreach(line IN LISTS lines)
    message(STATUS "${line}")
  endforeach()
endfunction()
