# Compiler and linker settings for all targets of this project. They are properties of folders, not of targets, so users
# of the library do not inherit them.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)

include_directories(${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR}/generated)
add_compile_definitions(NOMINMAX WIN32_LEAN_AND_MEAN WINVER=0x0600 _WIN32_WINNT=0x0600 _WIN32_IE=0x0700)

if(MSVC)
  add_compile_definitions(_CRT_SECURE_NO_WARNINGS)
  add_compile_options("$<$<COMPILE_LANGUAGE:C,CXX>:/W4;/utf-8;/arch:SSE2;/permissive->")
  set(CMAKE_DISABLE_PRECOMPILE_HEADERS ON)  # sharing them requires a common debug database
  add_link_options(/MANIFEST:NO)  # the resource scripts contain the manifest
  set(warnings_are_errors /WX)
else()
  # GCC 12 reports false overflows in std::string, more with precompiled headers; clang, in ./lint, checks this tree's
  # code. -fpch-preprocess is for compiler caches with precompiled headers.
  set(gcc_options
    "$<$<CXX_COMPILER_ID:GNU>:-Wno-restrict;-Wno-array-bounds;-Wno-stringop-overflow;-Wno-stringop-overread;-fpch-preprocess>")
  # SSE2, because with x87's 80 bits calendar and mesh results would depend on the optimizer. Paths of the build machine
  # are removed, so that builds are reproducible. Not -fdata-sections: with it, GCC stores zeros in the program.
  add_compile_options(
    "$<$<COMPILE_LANGUAGE:C,CXX>:-Wall;-Wextra;-Wno-missing-field-initializers;${gcc_options};-msse2;-mfpmath=sse>"
    "$<$<COMPILE_LANGUAGE:C,CXX>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>"
    "$<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions>"
    "$<$<AND:$<CONFIG:Release>,$<COMPILE_LANGUAGE:C,CXX>>:-ffunction-sections;-fno-asynchronous-unwind-tables>")
  add_link_options(-static -Wl,--no-insert-timestamp "$<$<CONFIG:Release>:-s;-Wl,--gc-sections>")
  set(warnings_are_errors -Werror)
  if(KV_SANITIZE)
    add_compile_options(
      "$<$<COMPILE_LANGUAGE:C,CXX>:-fsanitize=undefined,float-cast-overflow;-fsanitize-undefined-trap-on-error>")
  endif()
endif()

# In a project that adds this one, a newer compiler's new warning must not be an error.
if(PROJECT_IS_TOP_LEVEL)
  add_compile_options($<$<COMPILE_LANGUAGE:C,CXX>:${warnings_are_errors}>)
endif()
