# cmake -DHEADER=include/sai.h -DOUTPUT=commands.inc -DDESCRIPTIONS=descriptions.inc -P commands.cmake
# Makes the shell's table of commands from the library's header: every exported function with its prototype, its
# parameters, the kind of its result and the first sentence of its comment, every record with its fields, and every
# enumerator with its value's name. DESCRIPTIONS, which can be left out, is what else help and completion need: the
# section of the header that each function is in, the enumeration that a parameter or field takes, the comments of
# fields.
cmake_minimum_required(VERSION 3.25)

file(READ "${HEADER}" text)
string(REPLACE ";" "@" text "${text}")
string(REPLACE "[" "<" text "${text}")
string(REPLACE "]" ">" text "${text}")

set(names "")
set(enumerations "")
set(constants "")
string(REGEX MATCHALL "\nenum [a-z_0-9]+ {[^}]*}" blocks "${text}")
foreach(block IN LISTS blocks)
  string(REGEX REPLACE "\nenum ([a-z_0-9]+) .*" "\\1" enumeration "${block}")
  list(APPEND enumerations "${enumeration}")
  string(REGEX MATCHALL "\n  SAI_[A-Z_0-9]+ = " enumerators "${block}")
  foreach(enumerator IN LISTS enumerators)
    string(REGEX REPLACE "\n  (SAI_[A-Z_0-9]+) = " "\\1" name "${enumerator}")
    string(APPEND names "    {\"${name}\", ${name}},\n")
    string(APPEND constants "    {\"${enumeration}\", \"${name}\"},\n")
  endforeach()
endforeach()

# enumeration_of(OUT TEXT): the enumeration that a comment names for a value, or nothing.
function(enumeration_of out text)
  set(found "")
  string(REGEX MATCHALL "#[a-z_0-9]+" references "${text}")
  foreach(reference IN LISTS references)
    string(SUBSTRING "${reference}" 1 -1 reference)
    if(reference IN_LIST enumerations)
      set(found "${reference}")
    endif()
  endforeach()
  if(text MATCHES "BCM_E_")
    set(found "BCM_E_")
  endif()
  set(${out} "${found}" PARENT_SCOPE)
endfunction()

set(functions "")
set(families "")
set(notes "")
set(family "")
string(REGEX MATCHALL "/\\* --+ [^\n]* --+ \\*/|/\\*\\*([^*]|\\*[^/])*\\*/\nSAI_API [^@]*@" declarations "${text}")
string(REGEX MATCHALL "\nSAI_API [^@]*\\([^@]*@" all "${text}")
set(documented ${declarations})
list(FILTER documented INCLUDE REGEX "SAI_API")
list(LENGTH documented documented)
list(LENGTH all count)
if(NOT count EQUAL documented OR count EQUAL 0)
  message(FATAL_ERROR "${HEADER}: ${count} functions are declared, ${documented} of them with a comment")
endif()
foreach(declaration IN LISTS declarations)
  if(declaration MATCHES "^/\\* --+ ([^\n]*[^- \n]) --+ \\*/$")
    set(family "${CMAKE_MATCH_1}")
    continue()
  endif()
  string(REGEX REPLACE "^(.*)\\*/\nSAI_API (.*)@$" "\\1" comment "${declaration}")
  string(REGEX REPLACE "^(.*)\\*/\nSAI_API (.*)@$" "\\2" prototype "${declaration}")
  string(REGEX REPLACE "[ \n]+" " " prototype "${prototype}")
  string(REGEX REPLACE " SAI_PRINTF$" "" prototype "${prototype}")

  string(REGEX REPLACE "\n \\* ?" " " comment "${comment}")
  string(REGEX REPLACE "^/\\*\\* *" "" comment "${comment}")
  string(REGEX REPLACE "[ ]+" " " comment "${comment}")
  string(REGEX MATCH "^[^.]*(\\.[^ ][^.]*)*\\." summary "${comment}")
  string(REPLACE "\"" "\\\"" summary "${summary}")
  string(REPLACE "#" "" summary "${summary}")

  if(NOT prototype MATCHES "([a-z_0-9]+)\\((.*)\\)$" OR summary STREQUAL "")
    message(FATAL_ERROR "${HEADER}: cannot read this declaration: ${declaration}")
  endif()
  set(name "${CMAKE_MATCH_1}")
  set(arguments "${CMAKE_MATCH_2}")
  set(comment_of_${name} "${comment}")
  set(described "${comment}")  # where the arguments are
  if(comment MATCHES "Arguments [^.]*are those of ([a-z_0-9]+)")
    set(described "${comment_of_${CMAKE_MATCH_1}}")
  endif()
  set(parameters "")
  string(REPLACE "," ";" list "${arguments}")
  foreach(parameter IN LISTS list)
    if(NOT parameter MATCHES "^ *void$" AND parameter MATCHES "([a-z_0-9]+)(<([0-9]+)>)?$")
      set(parameter "${CMAKE_MATCH_1}")
      set(count "${CMAKE_MATCH_3}")
      if(count STREQUAL "" AND comment MATCHES "@param ${parameter} [^@]* 16 bytes")
        set(count 16)
      elseif(count STREQUAL "")
        set(count 0)
      endif()
      set(network_order false)
      if(comment MATCHES "@param ${parameter} [^@]*network (byte )?order")
        set(network_order true)
      endif()
      set(taken false)
      if(comment MATCHES "@param ${parameter} (takes|in:) ")
        set(taken true)
      endif()
      string(APPEND parameters "{\"${parameter}\", ${count}, ${network_order}, ${taken}}, ")
      set(enumeration "")
      if(described MATCHES "@param ${parameter} ([^@]*)")
        enumeration_of(enumeration "${CMAKE_MATCH_1}")
      endif()
      string(REGEX MATCH "(sai_[a-z_0-9]+)\\*? ${parameter}[,)]" type "${prototype}")
      if(type OR enumeration)
        string(APPEND notes
               "    {\"${name}\", \"${parameter}\", \"${CMAKE_MATCH_1}\", \"${enumeration}\", \"\"},\n")
      endif()
    endif()
  endforeach()
  # A negative result is a code of sai_result unless the comment says that it is something else.
  set(result code)
  if(prototype MATCHES "^void ")
    set(result none)
  elseif(prototype MATCHES "^int32_t " AND comment MATCHES "@return (.*)")
    set(returned "${CMAKE_MATCH_1}")
    if(NOT returned MATCHES "^(always )?0" AND NOT returned MATCHES "converted result|sai_result")
      set(result number)
    endif()
  endif()
  string(REPLACE "@" ";" summary "${summary}")
  string(REPLACE "<" "[" prototype "${prototype}")
  string(REPLACE ">" "]" prototype "${prototype}")
  string(APPEND functions "    {\"${name}\", \"${prototype}\", \"${summary}\", Result::${result}, "
         "parameters(&${name}, {${parameters}}), &run<&${name}>},\n")
  string(APPEND families "    {\"${name}\", \"${family}\"},\n")
endforeach()

# A record with a field of another form, such as a pointer, is left out; code that needs it does not compile.
set(records "")
string(REGEX MATCHALL "\ntypedef struct[^{;@]*{[^}]*}[^@]*@" structures "${text}")
string(REGEX MATCHALL "\ntypedef struct" all "${text}")
list(LENGTH structures count)
list(LENGTH all declared)
if(NOT count EQUAL declared)
  message(FATAL_ERROR "${HEADER}: ${declared} records are declared, only ${count} of them can be read")
endif()
foreach(structure IN LISTS structures)
  string(REGEX REPLACE "^.*} *([a-z_0-9]+)@$" "\\1" record "${structure}")
  string(REGEX REPLACE "^[^{]*{(.*)}[^}]*$" "\\1" rest "${structure}")
  string(REGEX REPLACE "/\\*\\*? ([^*]|\\*[^/])*\\*/" "" rest "${rest}")
  set(fields "")
  while(rest MATCHES "^[ \n]*([a-z_0-9]+) ([a-z_0-9]+)(<[A-Z_0-9]+>)?@( */\\*\\*<([^*]|\\*[^/])*\\*/)?")
    set(type "${CMAKE_MATCH_1}")
    set(name "${CMAKE_MATCH_2}")
    set(comment "${CMAKE_MATCH_4}")
    string(LENGTH "${CMAKE_MATCH_0}" length)
    string(SUBSTRING "${rest}" ${length} -1 rest)
    string(REGEX REPLACE "^ */\\*\\*< *| *\\*/$" "" about "${comment}")
    string(REGEX REPLACE "[ \n]+\\*? +" " " about "${about}")
    string(REGEX REPLACE "[ \n*]+" " " comment "${comment}")
    set(form "")
    if(type STREQUAL uint32_t AND comment MATCHES "network byte order")
      set(form ", Form::network_ip4")
    elseif(type STREQUAL uint32_t AND comment MATCHES "IPv4 ([a-z]+ )?(address|mask)")
      set(form ", Form::ip4")
    endif()
    enumeration_of(enumeration "${about}")
    string(REPLACE "#" "" about "${about}")
    string(REPLACE "@" ";" about "${about}")
    string(REPLACE "\"" "\\\"" about "${about}")
    if(about)
      string(APPEND notes "    {\"${record}\", \"${name}\", \"\", \"${enumeration}\", \"${about}\"},\n")
    endif()
    string(APPEND fields "      field<&${record}::${name}${form}>(\"${name}\"),\n")
  endwhile()
  if(rest MATCHES "^[ \n]*$")
    string(APPEND records "template <>\nstd::span<const Field> fields<${record}>() {\n  static constexpr Field list[] = {\n"
           "${fields}  };\n  return list;\n}\n\n")
  endif()
endforeach()

file(CONFIGURE OUTPUT "${OUTPUT}" @ONLY CONTENT
"// Made from the header by commands.cmake.
@records@namespace {

constexpr Name names[] = {
@names@};

const Function function_table[] = {
@functions@};

}  // namespace
")

if(DEFINED DESCRIPTIONS)
  file(CONFIGURE OUTPUT "${DESCRIPTIONS}" @ONLY CONTENT
"// Made from the header by commands.cmake.
namespace {

constexpr Of families_of_functions[] = {
@families@};

constexpr Of constants_of_enumerations[] = {
@constants@};

constexpr Note notes[] = {
@notes@};

}  // namespace
")
endif()
