# What `cmake --install` puts in place: headers and libraries with a CMake package and pkg-config files, the program with
# its manual page, and the documentation; and what `cpack` makes Debian packages of. The component Runtime is what a
# built host needs, RuntimeC what one of the C interface does, Development what building them does, Tool the program, Python its package.
include(CMakePackageConfigHelpers)

set(torva35_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/TORVA35)

set(torva35_installed torva35_static)
if(TARGET torva35_shared)
  list(APPEND torva35_installed torva35_shared)
endif()
if(TARGET torva35_sheet)
  list(APPEND torva35_installed torva35_sheet)
endif()
install(TARGETS ${torva35_installed} EXPORT TORVA35Targets
        RUNTIME COMPONENT Runtime
        LIBRARY COMPONENT Runtime NAMELINK_COMPONENT Development
        ARCHIVE COMPONENT Development
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT Development
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT TORVA35Targets NAMESPACE TORVA35:: DESTINATION ${torva35_package_dir} COMPONENT Development)
if(TARGET torva35_c AND TORVA35_SHARED)
  # A set of its own: its hosts need nothing of what those of the C++ libraries do.
  install(TARGETS torva35_c EXPORT TORVA35CTargets
          RUNTIME COMPONENT RuntimeC
          LIBRARY COMPONENT RuntimeC NAMELINK_COMPONENT Development
          ARCHIVE COMPONENT Development
          FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT Development)
  install(EXPORT TORVA35CTargets NAMESPACE TORVA35:: DESTINATION ${torva35_package_dir} COMPONENT Development)
endif()

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/TORVA35Config.cmake.in TORVA35Config.cmake
                              INSTALL_DESTINATION ${torva35_package_dir})
# Before 1.0.0 each minor version is one of its own.
write_basic_package_version_file(TORVA35ConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TORVA35Config.cmake ${PROJECT_BINARY_DIR}/TORVA35ConfigVersion.cmake
        DESTINATION ${torva35_package_dir} COMPONENT Development)

# Found from the file's own place, so that the tree may be installed anywhere and moved.
file(RELATIVE_PATH torva35_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
set(torva35_pc torva35.pc)
if(TARGET torva35_sheet)
  list(APPEND torva35_pc torva35-sheet.pc)
endif()
if(TARGET torva35_c AND TORVA35_SHARED)
  list(APPEND torva35_pc torva35_c.pc)
endif()
foreach(pc IN LISTS torva35_pc)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/${pc}.in ${pc} @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${pc} DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT Development)
endforeach()

set(torva35_soname ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
# Each component, and its package. That of the library is named after the SONAME, so that hosts of several versions can
# live side by side.
set(torva35_components Runtime Development)
set(torva35_package_Runtime libtorva35-${torva35_soname})
set(torva35_package_Development libtorva35-dev)
if(TARGET torva35_c AND TORVA35_SHARED)
  list(APPEND torva35_components RuntimeC)
  set(torva35_package_RuntimeC libtorva35-c${torva35_soname})
endif()
set(torva35_docs ${PROJECT_SOURCE_DIR}/docs)
install(FILES ${torva35_docs}/guide.md ${torva35_docs}/guide.cpp ${torva35_docs}/errors.md ${torva35_docs}/lmf-format.md
              ${torva35_docs}/c.md
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${torva35_package_Development} COMPONENT Development)
if(TARGET torva35_tool)
  list(APPEND torva35_components Tool)
  set(torva35_package_Tool torva35)
  install(TARGETS torva35_tool COMPONENT Tool)
  if(TARGET torva35_manual)
    get_directory_property(torva35_man_page DIRECTORY ${PROJECT_SOURCE_DIR}/tool DEFINITION torva35_man_page)
    get_directory_property(torva35_completion DIRECTORY ${PROJECT_SOURCE_DIR}/tool DEFINITION torva35_completion)
    install(FILES ${torva35_man_page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT Tool)
    install(FILES ${torva35_completion} DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions
            COMPONENT Tool)
  endif()
  file(GLOB torva35_samples ${PROJECT_SOURCE_DIR}/examples/*.xml)
  install(FILES ${torva35_samples} DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${torva35_package_Tool}/examples
          COMPONENT Tool)
  install(DIRECTORY ${torva35_docs}/pictures DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${torva35_package_Tool}
          COMPONENT Tool)
  install(FILES ${torva35_docs}/grading.md ${torva35_docs}/grading-scans.md ${torva35_docs}/findings.md
                ${torva35_docs}/files.md ${torva35_docs}/sheet.schema.json
          DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${torva35_package_Tool} COMPONENT Tool)
endif()
if(TARGET torva35_c AND TARGET torva35_tool AND UNIX)
  list(APPEND torva35_components Python)
  set(torva35_package_Python python3-torva35)
  set(torva35_python_dir lib/python3/dist-packages)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/python/METADATA.in python/METADATA @ONLY)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/bindings/python/torva35 DESTINATION ${torva35_python_dir} COMPONENT Python
          FILES_MATCHING PATTERN "*.py" PATTERN py.typed PATTERN __pycache__ EXCLUDE)
  install(FILES ${PROJECT_BINARY_DIR}/python/METADATA
          DESTINATION ${torva35_python_dir}/torva35-${PROJECT_VERSION}.dist-info COMPONENT Python)
  install(FILES ${PROJECT_SOURCE_DIR}/examples/convert_on_cluster.py
          DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${torva35_package_Python}/examples COMPONENT Python)
  install(FILES ${torva35_docs}/python.md DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${torva35_package_Python}
          COMPONENT Python)
endif()

set(TORVA35_CONTACT "The developers of TORVA35 <torva35@example.org>" CACHE STRING
    "Who answers for the Debian packages")
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "The developers of TORVA35")
set(CPACK_PACKAGE_CONTACT ${TORVA35_CONTACT})
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_COMPONENTS_ALL ${torva35_components})
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own, as the first line of its description

set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/debian/triggers)
set(CPACK_DEBIAN_RUNTIMEC_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIMEC_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIMEC_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/debian/triggers)
set(CPACK_COMPONENT_RUNTIMEC_DESCRIPTION "bubble sheets of printed tests: shared library for any language
This package holds what programs that were built with the C interface need,
and programs in other languages that open it.")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "merges printed tests into bubble-sheet forms: shared library
This package holds what programs that were built with the library need.")

set(torva35_debian_version ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "${torva35_package_Runtime} (= ${torva35_debian_version}), libexpat1-dev, zlib1g-dev")
if(TARGET torva35_c AND TORVA35_SHARED)
  string(PREPEND CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
         "${torva35_package_RuntimeC} (= ${torva35_debian_version}), ")
endif()
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "merges printed tests into bubble-sheet forms: files for development
This package holds headers, static libraries, and what CMake and pkg-config
need to build programs with the library.")

set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION education)
set(CPACK_DEBIAN_TOOL_PACKAGE_SHLIBDEPS ON)
set(CPACK_COMPONENT_TOOL_DESCRIPTION "bubble sheets of printed tests that grade right
The program torva35 makes a bubble sheet of a printed multiple-choice test
and its versions: a page to print for the students, the key of each version,
files for other programs and for a sheet reader, and a finding for whatever
would make marks count wrong.")

if(torva35_package_Python)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
      "python3 (>= 3.9), ${torva35_package_RuntimeC} (= ${torva35_debian_version}), torva35 (= ${torva35_debian_version})")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "python3-pandas, python3-distributed")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA "${CMAKE_CURRENT_LIST_DIR}/python/postinst;${CMAKE_CURRENT_LIST_DIR}/python/prerm")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_STRICT_PERMISSION ON)
  set(CPACK_COMPONENT_PYTHON_DESCRIPTION "bubble sheets of printed tests: Python package
This package reads printed multiple-choice tests and their versions in Python,
makes bubble sheets of them, and gives keys and findings. It converts whole
folders, with several processes.")
endif()

# What Debian wants beside the files.
if(CMAKE_INSTALL_PREFIX STREQUAL /usr)
  file(WRITE ${PROJECT_BINARY_DIR}/debian/triggers "activate-noawait ldconfig\n")
  string(TIMESTAMP torva35_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/changelog.Debian.in debian/changelog.Debian @ONLY)
  configure_file(${PROJECT_SOURCE_DIR}/CHANGELOG.md debian/changelog COPYONLY)
  foreach(log IN ITEMS changelog changelog.Debian)
    execute_process(COMMAND gzip -9nkf ${PROJECT_BINARY_DIR}/debian/${log} COMMAND_ERROR_IS_FATAL ANY)
  endforeach()
  foreach(component IN LISTS torva35_components)
    set(package ${torva35_package_${component}})
    string(TOUPPER ${component} upper)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package})
    configure_file(${CMAKE_CURRENT_LIST_DIR}/lintian-overrides.in debian/${package} @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/debian/${package} DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides
            COMPONENT ${component})
    install(FILES ${PROJECT_BINARY_DIR}/debian/changelog.gz ${PROJECT_BINARY_DIR}/debian/changelog.Debian.gz
            DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${package} COMPONENT ${component})
  endforeach()
endif()
include(CPack)
