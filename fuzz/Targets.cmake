# The doors, and the file of each.
set(VEXALINK_FUZZ_DOORS event_xml persisted_state condition_xml scenario_line
    http_request json_body)
set(VEXALINK_FUZZ_FILE_event_xml EventXml.cpp)
set(VEXALINK_FUZZ_FILE_persisted_state PersistedState.cpp)
set(VEXALINK_FUZZ_FILE_condition_xml ConditionXml.cpp)
set(VEXALINK_FUZZ_FILE_scenario_line ScenarioLine.cpp)
set(VEXALINK_FUZZ_FILE_http_request HttpRequest.cpp)
set(VEXALINK_FUZZ_FILE_json_body JsonBody.cpp)

# vexalink_add_fuzz_program(<program> <door> [<source>...])
# A program that feeds one door; where its main is comes from the sources or the linker.
function(vexalink_add_fuzz_program program door)
  set(folder ${PROJECT_SOURCE_DIR}/fuzz)
  add_executable(${program} ${folder}/${VEXALINK_FUZZ_FILE_${door}} ${folder}/Property.cpp ${ARGN})
  target_link_libraries(${program} PRIVATE
    vexalink_controller_lib vexalink_framework vexalink_warnings nlohmann_json::nlohmann_json)
  if(door STREQUAL http_request)
    target_link_libraries(${program} PRIVATE vexalink_controller_http)
  elseif(door STREQUAL json_body)
    target_link_libraries(${program} PRIVATE vexalink_controller_api)
  elseif(door STREQUAL scenario_line)
    add_dependencies(${program} vexalink_agent_scheduler)  # loaded, as it is shipped
  else()
    target_link_libraries(${program} PRIVATE vexalink_agent_objects vexalink_astro)
  endif()
  # Its `time()` is the one that the libraries use.
  set_target_properties(${program} PROPERTIES ENABLE_EXPORTS ON)
endfunction()
