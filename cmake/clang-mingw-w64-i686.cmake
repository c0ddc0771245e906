# The same target with another compiler: clang with MinGW-w64's headers, runtime and linker. Its warnings are errors in
# this build; releases are built with GCC.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)

find_program(KV_CLANG NAMES clang-19 clang REQUIRED)
find_program(KV_CLANGXX NAMES clang++-19 clang++ REQUIRED)
set(CMAKE_C_COMPILER ${KV_CLANG})
set(CMAKE_CXX_COMPILER ${KV_CLANGXX})
set(CMAKE_C_COMPILER_TARGET i686-w64-mingw32)
set(CMAKE_CXX_COMPILER_TARGET i686-w64-mingw32)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)
set(CMAKE_RC_FLAGS_INIT "-c 65001")
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-pthread")  # GCC with the posix thread model adds it itself
endforeach()

set(CMAKE_FIND_ROOT_PATH /usr/i686-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR wine)
