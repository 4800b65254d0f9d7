# What `cmake --install` puts in place: the headers, both libraries, a CMake package and a pkg-config file; and what
# `cpack` makes Debian packages of. The component Runtime is what a built host needs, Development what building one does.
include(CMakePackageConfigHelpers)

set(torva35_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/TORVA35)

install(TARGETS torva35_static torva35_shared EXPORT TORVA35Targets
        LIBRARY COMPONENT Runtime NAMELINK_COMPONENT Development
        ARCHIVE COMPONENT Development
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT Development
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT TORVA35Targets NAMESPACE TORVA35:: DESTINATION ${torva35_package_dir} COMPONENT Development)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/TORVA35Config.cmake.in TORVA35Config.cmake
                              INSTALL_DESTINATION ${torva35_package_dir})
# Before 1.0.0 each minor version is one of its own.
write_basic_package_version_file(TORVA35ConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TORVA35Config.cmake ${PROJECT_BINARY_DIR}/TORVA35ConfigVersion.cmake
        DESTINATION ${torva35_package_dir} COMPONENT Development)

# Found from the file's own place, so that the tree may be installed anywhere and moved.
file(RELATIVE_PATH torva35_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(${CMAKE_CURRENT_LIST_DIR}/torva35.pc.in torva35.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/torva35.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT Development)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "The developers of TORVA35")
set(CPACK_PACKAGE_CONTACT "The developers of TORVA35 <torva35@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_COMPONENTS_ALL Runtime Development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_STRIP_FILES ON)

# Named after the SONAME, so that hosts of several versions can live side by side.
set(torva35_soname ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libtorva35-${torva35_soname})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "${PROJECT_DESCRIPTION}: the shared library")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libtorva35-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "libtorva35-${torva35_soname} (= ${PROJECT_VERSION}), libexpat1-dev, zlib1g-dev")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "${PROJECT_DESCRIPTION}: headers, static library and build packages")
include(CPack)
