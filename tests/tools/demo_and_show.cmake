# Writes the demo line with the velmio command and checks what show reports.
file(REMOVE_RECURSE ${WORK})
set(line ${WORK}/Project/Boat/2004-123/Line001)
separate_arguments(emulator UNIX_COMMAND "${EMULATOR}")
execute_process(COMMAND ${emulator} ${TOOL} demo --line ${line} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "demo failed (${rc}): ${out}${err}")
endif()
execute_process(COMMAND ${emulator} ${TOOL} show ${line} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "show failed (${rc}): ${out}${err}")
endif()
foreach(expected
    "project Project, vessel Boat, day 2004-123, line Line001"
    "Navigation +300 fixes +2  2004-123 12:00:00 \\.\\. 2004-123 12:04:59"
    "Gyro +3000 records +2 .* value 43\\.000 \\.\\. 47\\.000 deg"
    "Tide +5 records"
    "ObservedDepths +150 pings +2 .*15150 beams"
    "TPE +150 pings"
    "Svp +1 casts")
  if(NOT out MATCHES "${expected}")
    message(FATAL_ERROR "show output lacks '${expected}':\n${out}")
  endif()
endforeach()
file(REMOVE_RECURSE ${WORK})
