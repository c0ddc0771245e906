# GoogleTest as GTest::gtest: an installed one, Debian's sources, or a download.
find_package(GTest 1.12 CONFIG QUIET)
if(GTest_FOUND)
  return()
endif()

set(INSTALL_GTEST OFF)
set(BUILD_GMOCK OFF)
set(gtest_disable_pthreads ON)
set(gtest_force_shared_crt ON)
if(EXISTS /usr/src/googletest/CMakeLists.txt)
  add_subdirectory(/usr/src/googletest googletest EXCLUDE_FROM_ALL)
else()
  include(FetchContent)
  FetchContent_Declare(googletest
    GIT_REPOSITORY https://github.com/google/googletest.git
    GIT_TAG v1.14.0
    GIT_SHALLOW ON)
  FetchContent_MakeAvailable(googletest)
endif()
