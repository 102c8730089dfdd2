# Compares the built library with the committed ABI baseline. Added functions
# and classes pass; removed or changed functions, and changed public types
# (sizes, members, virtual tables), fail.
#   cmake -DLIBRARY=... -DBASELINE=abi/libvelmio.abi.gz -DSUPPRESSIONS=... -DWORK=... -P check_abi.cmake
file(MAKE_DIRECTORY ${WORK})
execute_process(COMMAND gzip -dc ${BASELINE} OUTPUT_FILE ${WORK}/baseline.abi RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "cannot read ${BASELINE}")
endif()
execute_process(COMMAND abidiff --no-added-syms --suppressions ${SUPPRESSIONS} ${WORK}/baseline.abi ${LIBRARY}
  RESULT_VARIABLE rc OUTPUT_VARIABLE report ERROR_VARIABLE report)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "${report}\nThe library's interface differs from abi/libvelmio.abi.gz (abidiff ${rc}). "
                      "If that is meant, run scripts/update-abi-baseline.sh and commit the baseline with the change.")
endif()
