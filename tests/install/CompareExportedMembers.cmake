include("${CMAKE_CURRENT_LIST_DIR}/CompareLists.cmake")

execute_process(COMMAND "${NM}" -D -C --defined-only --format=posix "${LIBRARY}"
  OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "\n" ";" lines "${output}")
set(members)
foreach(line IN LISTS lines)
  # Name, kind, value, size; a constructor and a destructor stand twice, whole-object and base.
  if(line MATCHES "^(.*) [A-Za-z] [0-9a-f]+( [0-9a-f]+)?$")
    list(APPEND members "${CMAKE_MATCH_1}")
  endif()
endforeach()
list(REMOVE_DUPLICATES members)
compare_lists("exported members" "${LIST}" "${members}")
