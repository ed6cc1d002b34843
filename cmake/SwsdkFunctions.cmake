# swsdk_functions(OUT): the names of the functions that the Chip SDK's interface headers declare, including record
# initializers, read from the headers so that no list has to be kept up to date.
function(swsdk_functions out)
  file(GLOB headers CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/swsdk/include/bcm/*.h"
       "${PROJECT_SOURCE_DIR}/swsdk/include/soc/*.h" "${PROJECT_SOURCE_DIR}/swsdk/include/appl/diag/*.h")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${headers})
  set(functions "")
  foreach(header IN LISTS headers)
    file(STRINGS "${header}" lines REGEX "^(int|void|cmd_result_t) [a-z0-9_A-Z]+\\(")
    foreach(line IN LISTS lines)
      string(REGEX REPLACE "^[a-z_]+ ([a-z0-9_A-Z]+)\\(.*" "\\1" function "${line}")
      list(APPEND functions "${function}")
    endforeach()
  endforeach()
  set(${out} "${functions}" PARENT_SCOPE)
endfunction()
