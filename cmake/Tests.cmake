# Every test program runs in these zones, its tests in another order each time: nothing may depend on
# where the house is, or on what ran before. A slow build (sanitizers) may be given fewer zones.
set(VEXALINK_TEST_ZONES UTC America/New_York Australia/Lord_Howe Asia/Kolkata
    CACHE STRING "time zones in which every test program runs")

# vexalink_add_test(<target> [PATIENT] SOURCES <file>... [LIBRARIES <target>...])
# A GoogleTest program from the sources of one folder, registered once for each zone. It is linked
# with the test support, which answers time(). PATIENT: it runs the program and waits for it, for the
# better part of a minute, and mostly in zones of its own choice; two of the zones have to do.
function(vexalink_add_test target)
  cmake_parse_arguments(arg "PATIENT" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${target} ${arg_SOURCES})
  target_link_libraries(${target} PRIVATE
    ${arg_LIBRARIES} vexalink_test_support vexalink_warnings GTest::gmock GTest::gtest_main)
  set_target_properties(${target} PROPERTIES ENABLE_EXPORTS ON)
  set(zones ${VEXALINK_TEST_ZONES})
  list(LENGTH zones count)
  if(arg_PATIENT AND count GREATER 2)
    list(GET zones 0 2 zones)
  endif()
  foreach(zone IN LISTS zones)
    add_test(NAME ${target}/${zone} COMMAND ${target} --gtest_shuffle --gtest_brief=1)
    set_tests_properties(${target}/${zone} PROPERTIES ENVIRONMENT TZ=${zone} TIMEOUT 1200)
  endforeach()
endfunction()
