# The target `package`: a ZIP with the programs at its top, documents under docs/ and the library under sdk/.
find_package(Python3 COMPONENTS Interpreter)
find_program(CMARK_GFM cmark-gfm)
if(NOT Python3_FOUND OR NOT CMARK_GFM)
  message(STATUS "Python or cmark-gfm is missing: there is no target `package`")
  return()
endif()

set(name tarnwick-${PROJECT_VERSION}-win32)
set(stage ${PROJECT_BINARY_DIR}/package)
foreach(text docs/package/README.txt.in LICENSE CHANGELOG.md)
  cmake_path(GET text STEM stem)
  configure_file(${text} ${stage}/texts/${stem}.txt @ONLY NEWLINE_STYLE CRLF)
endforeach()

set(install ${CMAKE_COMMAND} --install ${PROJECT_BINARY_DIR} --config $<CONFIG>)
add_custom_target(package
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${stage}/programs ${stage}/sdk
  COMMAND ${install} --component programs --prefix ${stage}/programs
  COMMAND ${install} --component sdk --prefix ${stage}/sdk
  COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/make_pages.py ${stage}/docs ${PROJECT_VERSION}
  COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/make_package.py ${PROJECT_BINARY_DIR}/${name}.zip
    .=${stage}/programs/bin .=${stage}/texts docs=${stage}/docs sdk=${stage}/sdk
  COMMENT "Packing ${name}.zip"
  VERBATIM)
add_dependencies(package tarnwick camview kvgallery camtool kv)
