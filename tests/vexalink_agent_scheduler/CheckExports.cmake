# What the agent's library shows to the world, and what it needs of it. Run as:
# cmake -D LIBRARY=<file> -D NM=<nm> -D READELF=<readelf> -D SANITIZE=<sanitizers> -P this file

function(run out)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE text RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN} failed: ${result}")
  endif()
  set(${out} "${text}" PARENT_SCOPE)
endfunction()

function(expect what actual expected)
  list(SORT actual)
  list(SORT expected)
  if(NOT actual STREQUAL expected)
    list(JOIN actual "\n  " actual)
    list(JOIN expected "\n  " expected)
    message(FATAL_ERROR "${what}:\n  ${actual}\nexpected:\n  ${expected}")
  endif()
endfunction()

run(symbols ${NM} -D --defined-only --demangle ${LIBRARY})
string(REGEX MATCHALL "[^\n]+" lines "${symbols}")
set(exported)
foreach(line IN LISTS lines)
  string(REGEX REPLACE "^[0-9a-f]* *[A-Za-z] " "" symbol "${line}")
  list(APPEND exported "${symbol}")
endforeach()
expect("exported symbols" "${exported}"
  "GetCreationFunc;CompareClockTime(int, int);CompareToday(int, int);CompareDate(int, int);\
CompareMonth(int, int);CompareYear(int, int);CompareLeap();\
CompareAstroClockTime(int, double, double)")

run(dynamic ${READELF} -d ${LIBRARY})
string(REGEX MATCHALL "\\(NEEDED\\)[^\n]*" lines "${dynamic}")
set(others)
set(framework FALSE)
foreach(line IN LISTS lines)
  string(REGEX REPLACE "^.*\\[(.*)\\].*$" "\\1" library "${line}")
  if(library STREQUAL "libvxframework.so")
    set(framework TRUE)
  elseif(library MATCHES "^lib(stdc\\+\\+|gcc_s|m|c)\\.so(\\.[0-9]+)*$")
    # the languages'
  elseif(SANITIZE AND library MATCHES "^lib(asan|ubsan|tsan|lsan|clang_rt.*)\\.so")
    # the sanitizers'
  else()
    list(APPEND others ${library})
  endif()
endforeach()
expect("libraries needed beyond the framework and the languages'" "${others}" "")
if(NOT framework)
  message(FATAL_ERROR "${LIBRARY} does not need libvxframework.so: what was looked at?")
endif()
