# Runs a test program on its own desktop and fails unless it ends with 0 and, with GoogleTest, at least one of its tests
# passed. ctest alone checks only one of these conditions: a program that crashes after its summary would pass, or one that
# ends before its first test.
#   cmake "-DCOMMAND=PROGRAM;ARGUMENTS" -P run_test.cmake
include(${CMAKE_CURRENT_LIST_DIR}/take_desktop.cmake)
execute_process(COMMAND ${COMMAND}
  RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output
  ECHO_OUTPUT_VARIABLE ECHO_ERROR_VARIABLE)
# The next test finds no settings of this one, even if it has crashed. Without a reserved desktop they may be the user's.
if(taken)
  execute_process(COMMAND wine reg import ${CMAKE_CURRENT_LIST_DIR}/remove_settings.reg OUTPUT_QUIET ERROR_QUIET)
endif()
if(NOT result STREQUAL 0)
  message(FATAL_ERROR "The test program ended with ${result}.")
endif()
if("${COMMAND}" MATCHES "--gtest" AND NOT output MATCHES "\\[  PASSED  \\] [1-9]")
  message(FATAL_ERROR "No test passed.")
endif()
