# The checkout that this file lies in; in a registry, the release.
get_filename_component(SOURCE_PATH "${CURRENT_PORT_DIR}/../../.." ABSOLUTE)

vcpkg_check_linkage(ONLY_STATIC_LIBRARY)
vcpkg_check_features(OUT_FEATURE_OPTIONS features FEATURES tool TORVA35_TOOL)
vcpkg_cmake_configure(
  SOURCE_PATH "${SOURCE_PATH}"
  OPTIONS ${features} -DBUILD_TESTING=OFF -DTORVA35_SHARED=OFF -DTORVA35_C=OFF -DTORVA35_SHEET=ON -DTORVA35_INSTALL=ON
)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME TORVA35 CONFIG_PATH lib/cmake/TORVA35)
vcpkg_fixup_pkgconfig()
if("tool" IN_LIST FEATURES)
  vcpkg_copy_tools(TOOL_NAMES torva35 AUTO_CLEAN)
endif()
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")
file(INSTALL "${CURRENT_PORT_DIR}/usage" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
# Until the owner has chosen a licence; then: vcpkg_install_copyright(FILE_LIST "${SOURCE_PATH}/LICENSE")
set(VCPKG_POLICY_SKIP_COPYRIGHT_CHECK enabled)
