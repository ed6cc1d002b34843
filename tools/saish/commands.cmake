# cmake -DHEADER=include/sai.h -DOUTPUT=commands.inc -P commands.cmake
# Makes the shell's table of commands from the library's header: every exported function with its prototype, its
# parameters, the kind of its result and the first sentence of its comment, and every enumerator with its value's name.
cmake_minimum_required(VERSION 3.25)

file(READ "${HEADER}" text)
string(REPLACE ";" "@" text "${text}")
string(REPLACE "[" "<" text "${text}")
string(REPLACE "]" ">" text "${text}")

set(functions "")
string(REGEX MATCHALL "/\\*\\*([^*]|\\*[^/])*\\*/\nSAI_API [^@]*@" declarations "${text}")
string(REGEX MATCHALL "\nSAI_API [^@]*\\([^@]*@" all "${text}")
list(LENGTH declarations documented)
list(LENGTH all count)
if(NOT count EQUAL documented OR count EQUAL 0)
  message(FATAL_ERROR "${HEADER}: ${count} functions are declared, ${documented} of them with a comment")
endif()
foreach(declaration IN LISTS declarations)
  string(REGEX REPLACE "^(.*)\\*/\nSAI_API (.*)@$" "\\1" comment "${declaration}")
  string(REGEX REPLACE "^(.*)\\*/\nSAI_API (.*)@$" "\\2" prototype "${declaration}")
  string(REGEX REPLACE "[ \n]+" " " prototype "${prototype}")
  string(REGEX REPLACE " SAI_PRINTF$" "" prototype "${prototype}")

  string(REGEX REPLACE "\n \\* ?" " " comment "${comment}")
  string(REGEX REPLACE "^/\\*\\* *" "" comment "${comment}")
  string(REGEX MATCH "^[^.]*(\\.[^ ][^.]*)*\\." summary "${comment}")
  string(REPLACE "\"" "\\\"" summary "${summary}")
  string(REGEX REPLACE "[ ]+" " " summary "${summary}")
  string(REPLACE "#" "" summary "${summary}")

  if(NOT prototype MATCHES "([a-z_0-9]+)\\((.*)\\)$" OR summary STREQUAL "")
    message(FATAL_ERROR "${HEADER}: cannot read this declaration: ${declaration}")
  endif()
  set(name "${CMAKE_MATCH_1}")
  set(parameters "")
  string(REPLACE "," ";" list "${CMAKE_MATCH_2}")
  foreach(parameter IN LISTS list)
    if(NOT parameter MATCHES "^ *void$" AND parameter MATCHES "([a-z_0-9]+)$")
      string(APPEND parameters "\"${CMAKE_MATCH_1}\", ")
    endif()
  endforeach()
  # A negative result is a code of sai_result unless the comment says that something else comes.
  set(result code)
  if(prototype MATCHES "^void ")
    set(result none)
  elseif(prototype MATCHES "^int32_t " AND comment MATCHES "@return (.*)")
    set(returned "${CMAKE_MATCH_1}")
    if(NOT returned MATCHES "^(always )?0" AND NOT returned MATCHES "converted result|sai_result")
      set(result number)
    endif()
  endif()
  string(APPEND functions "    {\"${name}\", \"${prototype}\", \"${summary}\", Result::${result}, "
         "parameters(&${name}, {${parameters}}), &run<&${name}>},\n")
endforeach()

set(names "")
string(REGEX MATCHALL "\n  (SAI_[A-Z_0-9]+) = " enumerators "${text}")
foreach(enumerator IN LISTS enumerators)
  string(REGEX REPLACE "\n  (SAI_[A-Z_0-9]+) = " "\\1" name "${enumerator}")
  string(APPEND names "    {\"${name}\", ${name}},\n")
endforeach()

file(CONFIGURE OUTPUT "${OUTPUT}" @ONLY CONTENT
"// Made from sai.h.
constexpr Name names[] = {
@names@};

const Function function_table[] = {
@functions@};
")
