# Who may include whom. Run as: cmake -D ROOT=<source folder> -P IncludeArrows.cmake
# Fails with every include that points the wrong way.

set(agent vexalink_agent_scheduler/vxw)
set(rules  # a folder and what its includes of ours may begin with
  "host|^host/"
  "astro|^astro/"
  "${agent}|^(host|astro|${agent})/"
  "framework|^(host|framework)/"
  "controller|^(host|framework|controller)/|^${agent}/IAgentScheduler.h$"
  "examples|^(host|examples)/|^${agent}/IAgentScheduler.h$")

set(wrong)
set(seen 0)
foreach(rule IN LISTS rules)
  string(FIND "${rule}" "|" bar)
  string(SUBSTRING "${rule}" 0 ${bar} folder)
  math(EXPR rest "${bar} + 1")
  string(SUBSTRING "${rule}" ${rest} -1 allowed)
  file(GLOB_RECURSE files ${ROOT}/${folder}/*.h ${ROOT}/${folder}/*.cpp)
  foreach(file IN LISTS files)
    file(STRINGS ${file} includes REGEX "^[ \t]*#[ \t]*include[ \t]*\"")
    foreach(line IN LISTS includes)
      string(REGEX REPLACE "^[^\"]*\"([^\"]*)\".*$" "\\1" included "${line}")
      math(EXPR seen "${seen} + 1")
      if(NOT included MATCHES "${allowed}")
        file(RELATIVE_PATH where ${ROOT} ${file})
        list(APPEND wrong "${where} includes \"${included}\"")
      endif()
    endforeach()
    # Beyond ours these see the language's own headers, and the agent a few of the C library's.
    if(folder STREQUAL "host" OR folder STREQUAL "astro" OR folder STREQUAL agent)
      file(STRINGS ${file} includes REGEX "^[ \t]*#[ \t]*include[ \t]*<")
      foreach(line IN LISTS includes)
        string(REGEX REPLACE "^[^<]*<([^>]*)>.*$" "\\1" included "${line}")
        if(NOT included MATCHES "^[a-z_]+$" AND
           NOT (folder STREQUAL agent AND included MATCHES "^(time|unistd)\\.h$"))
          file(RELATIVE_PATH where ${ROOT} ${file})
          list(APPEND wrong "${where} includes <${included}>, which is no standard header")
        endif()
      endforeach()
    endif()
  endforeach()
endforeach()

if(seen EQUAL 0)
  message(FATAL_ERROR "no include was looked at under ${ROOT}")
endif()
if(wrong)
  list(JOIN wrong "\n  " lines)
  message(FATAL_ERROR "includes against the arrows:\n  ${lines}")
endif()
message(STATUS "${seen} includes run the right way")
