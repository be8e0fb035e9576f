# Every text that the library throws stands in docs/errors.md, where clients look it up by its kind.
#
# A text is a literal of several words in a statement that throws, makes an error, or names what will be thrown. Of a
# text that is put together each part must be there.
#
# Script argument: SOURCE_DIR.
cmake_minimum_required(VERSION 3.25)

# Lists know semicolons and brackets only.
function(read_plain file result)
  file(READ "${file}" text)
  string(REPLACE "[" "(" text "${text}")
  string(REPLACE "]" ")" text "${text}")
  string(REPLACE ";" "@" text "${text}")
  string(REPLACE "\\\"" "'" text "${text}")
  string(REGEX REPLACE "//[^\n]*" "" text "${text}")
  string(REGEX REPLACE "\"[ \n]*\n *\"" "" text "${text}")  # literals that follow each other are one
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

read_plain("${SOURCE_DIR}/docs/errors.md" documented)
string(REGEX REPLACE "device library \"\\.\\.\\.\"" "device library '...'" documented "${documented}")
string(REPLACE "function \"...\"" "function '...'" documented "${documented}")

set(throws "throw |Error[({]|Exception[({]|_failed[({]|_throw[({]|checked<|size_of[({]|failure|invalid|refuse|thread_ended|not_supported|_removed|error_texts|fail[({]")
set(missing "")
set(count 0)
file(GLOB_RECURSE files "${SOURCE_DIR}/src/*.cpp" "${SOURCE_DIR}/src/*.h")
foreach(file IN LISTS files)
  if(file MATCHES "_(explanation|questions)[.]")  # answers to a client's questions
    continue()
  endif()
  read_plain("${file}" text)
  string(REPLACE "@" ";" statements "${text}")
  foreach(statement IN LISTS statements)
    if(NOT statement MATCHES "\"" OR NOT statement MATCHES "${throws}" OR
        statement MATCHES "log[(][)]|[Tt]iming_?[Mm]ark|write_error[(]|OnGLError[(]|printGLError[(]")
      continue()
    endif()
    string(REGEX MATCHALL "\"[A-Z][^\"]* [^\"]*\"" literals "${statement}")
    foreach(literal IN LISTS literals)
      string(REPLACE "\"" "" words "${literal}")
      if(words MATCHES "^[A-Za-z]+Handle create")  # an export's name for the log, with its parameters
        continue()
      endif()
      string(REPLACE "\\n" "" words "${words}")
      string(STRIP "${words}" words)
      string(FIND "${documented}" "${words}" place)
      math(EXPR count "${count} + 1")
      if(place EQUAL -1)
        list(APPEND missing "${file}: ${words}")
      endif()
    endforeach()
  endforeach()
endforeach()
if(missing)
  list(JOIN missing "\n  " lines)
  message(FATAL_ERROR "Not in docs/errors.md:\n  ${lines}")
endif()
if(count LESS 100)
  message(FATAL_ERROR "Only ${count} texts were found: the search is wrong")
endif()
message(STATUS "${count} texts stand in docs/errors.md")
