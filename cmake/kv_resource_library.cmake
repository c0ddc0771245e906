# Read in this tree and by whoever finds the installed package.

# Resource scripts are UTF-8; without this windres and its like read them as Latin-1 and spoil every wide text.
if(CMAKE_RC_COMPILER MATCHES "windres")
  set(KV_RESOURCE_FLAGS "SHELL:-c 65001")
else()
  set(KV_RESOURCE_FLAGS "SHELL:/c 65001")
endif()

# kv_add_resource_library(NAME script.rc)
# A library that holds resources and no code, not even an entry point: a language of a program, for SetLanguage of
# framework/language.h. It is loaded, never linked.
function(kv_add_resource_library name)
  add_library(${name} MODULE ${ARGN})
  target_compile_options(${name} PRIVATE "$<$<COMPILE_LANGUAGE:RC>:${KV_RESOURCE_FLAGS}>")
  set_target_properties(${name} PROPERTIES PREFIX "" SUFFIX ".dll" LINKER_LANGUAGE C)
  if(MSVC)
    target_link_options(${name} PRIVATE /NOENTRY)
  else()
    target_link_options(${name} PRIVATE -nostdlib -Wl,--entry=0 -Wl,--no-insert-timestamp)
  endif()
endfunction()
