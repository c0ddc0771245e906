# The library's target. The folders add their sources and their public headers: those that others may include, and that
# are installed.
add_library(kv STATIC)
add_library(kv::kv ALIAS kv)
target_compile_features(kv PUBLIC cxx_std_20)
target_link_libraries(kv PUBLIC comctl32 comdlg32 shell32 advapi32 gdi32 user32)

# The library is C++: whoever links it needs the compiler's run-time libraries. They go into the program, which then
# starts on every Windows; a target with the property KV_SHARED_RUNTIME takes them as DLLs.
if(NOT MSVC)
  target_link_options(kv INTERFACE "$<$<NOT:$<BOOL:$<TARGET_PROPERTY:KV_SHARED_RUNTIME>>>:-static>")
endif()

# What nearly every file reads is read once, and other targets may reuse it. A file still includes what it uses: ./lint
# builds without this.
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
