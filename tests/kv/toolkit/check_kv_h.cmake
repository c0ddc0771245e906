# kv.h includes every public header.
cmake_minimum_required(VERSION 3.25)
file(STRINGS ${SOURCE_DIR}/kv/kv.h brought REGEX "^#include")
foreach(header IN LISTS HEADERS)
  cmake_path(RELATIVE_PATH header BASE_DIRECTORY ${SOURCE_DIR} OUTPUT_VARIABLE name)
  if(NOT name STREQUAL "kv/kv.h" AND NOT "#include \"${name}\"" IN_LIST brought)
    message(SEND_ERROR "kv.h does not bring ${name}")
  endif()
endforeach()
