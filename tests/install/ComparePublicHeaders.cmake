include("${CMAKE_CURRENT_LIST_DIR}/CompareLists.cmake")

file(REMOVE_RECURSE "${PREFIX}")
execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${PREFIX}"
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(GLOB_RECURSE headers RELATIVE "${PREFIX}/${INCLUDE_DIR}" "${PREFIX}/${INCLUDE_DIR}/*")
file(REMOVE_RECURSE "${PREFIX}")
compare_lists("public headers" "${LIST}" "${headers}")
