# Read in this tree, by whoever adds it, and by whoever finds the installed package.

# Resource scripts are UTF-8; without this windres and its like read them as Latin-1 and spoil every wide text. It holds
# for the folder that adds or finds the library, and those below it. (A target's options would be for one program alone,
# but of those CMake hands resource compilers no others than -D and -I.)
if(NOT CMAKE_RC_FLAGS MATCHES "(^| )[-/]c ?[0-9]")
  if(CMAKE_RC_COMPILER MATCHES "windres")
    string(APPEND CMAKE_RC_FLAGS " -c 65001")
  else()
    string(APPEND CMAKE_RC_FLAGS " /c 65001")
  endif()
endif()

# kv_add_resource_library(NAME script.rc...)
# A library that holds resources and no code, not even an entry point: a language of a program, for
# LoadLanguageResources of framework/language.h. It is loaded, never linked, and named NAME.dll.
function(kv_add_resource_library name)
  add_library(${name} MODULE ${ARGN})
  set_target_properties(${name} PROPERTIES PREFIX "" SUFFIX ".dll" LINKER_LANGUAGE C)
  # <kv/resource.h> is for language libraries, too.
  target_include_directories(${name} PRIVATE $<TARGET_PROPERTY:kv::kv,INTERFACE_INCLUDE_DIRECTORIES>)
  if(MSVC)
    target_link_options(${name} PRIVATE /NOENTRY)
  else()
    target_link_options(${name} PRIVATE -nostdlib -Wl,--entry=0 -Wl,--no-insert-timestamp)
  endif()
endfunction()
