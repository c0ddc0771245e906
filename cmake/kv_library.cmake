# The library's target. The folders add their sources and their public headers, which are installed.
add_library(kv STATIC)
add_library(kv::kv ALIAS kv)
target_compile_features(kv PUBLIC cxx_std_20)
target_link_libraries(kv PUBLIC comctl32 comdlg32 shell32 advapi32 gdi32 user32)

# Programs that link the library need the compiler's runtime libraries. They are linked statically, so that programs run
# on every Windows; a target with the property KV_SHARED_RUNTIME uses the DLLs.
if(NOT MSVC)
  target_link_options(kv INTERFACE "$<$<NOT:$<BOOL:$<TARGET_PROPERTY:KV_SHARED_RUNTIME>>>:-static>")
endif()

# Common headers are precompiled, and other targets can reuse them. Files still include what they use: ./lint builds
# without precompiled headers.
target_precompile_headers(kv PRIVATE <windows.h> <algorithm> <array> <cmath> <cstdint> <cstdio> <cstring> <iterator> <span>
  <string> <string_view> <utility> <vector>)

# kv_sources(sources... [HEADERS public headers...]), paths relative to the calling folder.
function(kv_sources)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "" "HEADERS")
  target_sources(kv PRIVATE ${arg_UNPARSED_ARGUMENTS})
  if(arg_HEADERS)
    target_sources(kv PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${arg_HEADERS})
  endif()
endfunction()
