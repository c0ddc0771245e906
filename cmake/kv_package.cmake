# Installs the library. Its headers are found as <kv/framework/dialog.h>; forwarding headers provide that in this tree.
get_target_property(public_headers kv HEADER_SET)
foreach(header IN LISTS public_headers)
  cmake_path(RELATIVE_PATH header BASE_DIRECTORY ${PROJECT_SOURCE_DIR} OUTPUT_VARIABLE name)
  set(forward ${PROJECT_BINARY_DIR}/forward/kv/${name})
  file(CONFIGURE OUTPUT ${forward} CONTENT "#include \"@header@\"  // IWYU pragma: export\n" @ONLY)
endforeach()
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/forward/kv/framework/version.h
  CONTENT "#include \"@PROJECT_BINARY_DIR@/generated/framework/version.h\"\n" @ONLY)
target_include_directories(kv INTERFACE
  $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/generated> $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/forward>
  $<INSTALL_INTERFACE:include>)

if(NOT KV_INSTALL)
  return()
endif()

include(CMakePackageConfigHelpers)
set(package_dir lib/cmake/kv)
install(TARGETS kv EXPORT kvTargets
  ARCHIVE DESTINATION lib COMPONENT sdk
  FILE_SET HEADERS DESTINATION include/kv COMPONENT sdk)
install(FILES ${PROJECT_BINARY_DIR}/generated/framework/version.h DESTINATION include/kv/framework COMPONENT sdk)
install(EXPORT kvTargets NAMESPACE kv:: DESTINATION ${package_dir} COMPONENT sdk)
configure_package_config_file(cmake/kvConfig.cmake.in kvConfig.cmake INSTALL_DESTINATION ${package_dir})
# The package checks the architecture itself, with a clearer message.
write_basic_package_version_file(kvConfigVersion.cmake COMPATIBILITY SameMinorVersion ARCH_INDEPENDENT)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/kvConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/kvConfigVersion.cmake
  cmake/kv_resource_library.cmake
  cmake/mingw-w64-i686.cmake
  DESTINATION ${package_dir} COMPONENT sdk)
install(FILES LICENSE DESTINATION share/licenses/kv COMPONENT sdk)
install(DIRECTORY samples DESTINATION share/kv COMPONENT sdk)
