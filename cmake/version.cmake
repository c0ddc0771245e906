# The project's version for C++, resource scripts and manifests, under ${PROJECT_BINARY_DIR}/generated.
string(REPLACE "." ", " KV_VERSION_NUMBERS ${PROJECT_VERSION})
configure_file(kv/framework/version.h.in generated/kv/framework/version.h @ONLY)
foreach(KV_MANIFEST_NAME Tarnwick kvgallery camview)
  string(TOLOWER ${KV_MANIFEST_NAME} manifest)
  configure_file(resources/tarnwick.manifest.in generated/resources/${manifest}.manifest @ONLY)
endforeach()

# Files that a resource script with version resource and manifest depends on, which the build does not detect.
set(KV_VERSION_FILES
  ${PROJECT_SOURCE_DIR}/resources/version_resource.rc
  ${PROJECT_BINARY_DIR}/generated/kv/framework/version.h
  ${PROJECT_BINARY_DIR}/generated/resources/tarnwick.manifest
  ${PROJECT_BINARY_DIR}/generated/resources/kvgallery.manifest
  ${PROJECT_BINARY_DIR}/generated/resources/camview.manifest)
