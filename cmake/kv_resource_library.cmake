# Included in this tree, in projects that add it, and by the installed package.

# Resource scripts are UTF-8; without this option windres would read them as Latin-1. The setting applies to the folder
# that adds or finds the library, and those below. (A target's options would apply to one program only, and CMake passes
# only -D and -I of them to resource compilers.)
if(NOT CMAKE_RC_FLAGS MATCHES "(^| )[-/]c ?[0-9]")
  if(CMAKE_RC_COMPILER MATCHES "windres")
    string(APPEND CMAKE_RC_FLAGS " -c 65001")
  else()
    string(APPEND CMAKE_RC_FLAGS " /c 65001")
  endif()
endif()

# kv_add_resource_library(NAME script.rc...)
# Adds NAME.dll, a library with resources and no code, not even an entry point: a language of a program for
# LoadLanguageResources (kv/framework/language.h). It is loaded at runtime, never linked.
function(kv_add_resource_library name)
  add_library(${name} MODULE ${ARGN})
  set_target_properties(${name} PROPERTIES PREFIX "" SUFFIX ".dll" LINKER_LANGUAGE C)
  # Language libraries can include "kv/resource.h" as well.
  target_include_directories(${name} PRIVATE $<TARGET_PROPERTY:kv::kv,INTERFACE_INCLUDE_DIRECTORIES>)
  if(MSVC)
    target_link_options(${name} PRIVATE /NOENTRY)
  else()
    target_link_options(${name} PRIVATE -nostdlib -Wl,--entry=0 -Wl,--no-insert-timestamp)
  endif()
endfunction()
