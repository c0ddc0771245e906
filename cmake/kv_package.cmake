# Installs the library. Its headers are found as "kv/framework/dialog.h", as in this tree.
target_include_directories(kv INTERFACE $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/generated> $<INSTALL_INTERFACE:include>)

if(NOT KV_INSTALL)
  return()
endif()

include(CMakePackageConfigHelpers)
set(package_dir lib/cmake/kv)
install(TARGETS kv EXPORT kvTargets
  ARCHIVE DESTINATION lib COMPONENT sdk
  FILE_SET HEADERS DESTINATION include COMPONENT sdk)
install(FILES ${PROJECT_BINARY_DIR}/generated/kv/framework/version.h DESTINATION include/kv/framework COMPONENT sdk)
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
