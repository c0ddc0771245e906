# Builds and runs a program outside this tree. WAY is how it gets the library: `find_package`, from an installation with
# `cmake --install`, or `add_subdirectory`. Run by ctest with SOURCE_DIR, BUILD_DIR (this project's), WORK_DIR, TOOLCHAIN,
# GENERATOR, EMULATOR and VERSION.
function(step what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${what} failed (${result}):\n${output}")
  endif()
endfunction()

set(options -G ${GENERATOR} -DCMAKE_BUILD_TYPE=Debug "-DCMAKE_CXX_FLAGS=-DEXPECTED_VERSION='\"${VERSION}\"'")
if(TOOLCHAIN)
  list(APPEND options -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN})
endif()
if(WAY STREQUAL "find_package")
  file(REMOVE_RECURSE ${WORK_DIR})  # headers of an earlier installation must not be found
  step("Installing" ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/sdk --component sdk)
  list(APPEND options -DCMAKE_PREFIX_PATH=${WORK_DIR}/sdk)
else()
  list(APPEND options -DKV_SOURCE_DIR=${SOURCE_DIR})
endif()
step("Configuring" ${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR}/outside -B ${WORK_DIR}/build ${options})
step("Building" ${CMAKE_COMMAND} --build ${WORK_DIR}/build)
include(${CMAKE_CURRENT_LIST_DIR}/../support/take_desktop.cmake)
step("Running" ${EMULATOR} ${WORK_DIR}/build/outside.exe)

# The installed samples build on their own with the installed toolchain file. A build that is not 32-bit is rejected with a
# message.
if(WAY STREQUAL "find_package")
  set(samples ${WORK_DIR}/samples)
  if(TOOLCHAIN)
    list(APPEND options -DCMAKE_TOOLCHAIN_FILE=${WORK_DIR}/sdk/lib/cmake/kv/mingw-w64-i686.cmake)
    file(WRITE ${WORK_DIR}/plain/CMakeLists.txt
      "cmake_minimum_required(VERSION 3.25)\nproject(Plain LANGUAGES NONE)\nfind_package(kv CONFIG REQUIRED)\n")
    execute_process(COMMAND ${CMAKE_COMMAND} -G ${GENERATOR} -S ${WORK_DIR}/plain -B ${WORK_DIR}/plain
      -DCMAKE_PREFIX_PATH=${WORK_DIR}/sdk RESULT_VARIABLE result OUTPUT_QUIET ERROR_VARIABLE output)
    if(result EQUAL 0 OR NOT output MATCHES "kv is a 32-bit library")
      message(FATAL_ERROR "A build that is not 32-bit was not rejected:\n${output}")
    endif()
  endif()
  step("Configuring the samples" ${CMAKE_COMMAND} -S ${WORK_DIR}/sdk/share/kv/samples -B ${samples} ${options})
  step("Building a sample" ${CMAKE_COMMAND} --build ${samples} --target instrument_panel)
endif()
