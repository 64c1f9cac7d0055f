# Installing the library and its documents like any other of its kind, and the two Debian packages:
# `tolvane-link` to run, `tolvane-link-dev` to build against. For Qt 4 the library, its header and the
# pkg-config file are installed and nothing else.
include(CMakePackageConfigHelpers)

# The plain name is no developer's link: panels load the library by it.
install(TARGETS tolvane_link EXPORT tolvane_linkTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tolvane_link)
install(FILES lib/host_interface.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tolvane_link
    COMPONENT development)

# Relative, so that the file is right wherever the package is unpacked.
file(RELATIVE_PATH TOLVANE_PC_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
set(TOLVANE_PC_QT Qt${TOLVANE_QT}Core)
if(TOLVANE_QT EQUAL 4)
    set(TOLVANE_PC_QT QtCore)
endif()
configure_file(cmake/tolvane_link.pc.in tolvane_link.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tolvane_link.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
if(TOLVANE_QT EQUAL 4)
    return()
endif()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/tolvane_link)
install(EXPORT tolvane_linkTargets NAMESPACE tolvane_link:: DESTINATION ${package_dir}
    COMPONENT development)
configure_package_config_file(cmake/tolvane_linkConfig.cmake.in
    ${CMAKE_CURRENT_BINARY_DIR}/tolvane_linkConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/tolvane_linkConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/tolvane_linkConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/tolvane_linkConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT development)

# What a package says of itself, where Debian's policy looks for it, and all that it links to.
set(doc_dir ${CMAKE_INSTALL_DATADIR}/doc/tolvane-link)
install(FILES README.md CHANGELOG.md CONTRIBUTING.md DESTINATION ${doc_dir})
install(FILES lib/host_interface.h DESTINATION ${doc_dir}/lib)
install(DIRECTORY docs DESTINATION ${doc_dir})

# Every export has been there from the first release on.
file(STRINGS lib/exports.map symbols REGEX "intf_")
list(TRANSFORM symbols REPLACE " *(intf_.*);" " \\1@Base 2.0.0")
list(JOIN symbols "\n" symbols)
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/symbols
    "libtolvane_link.so.${PROJECT_VERSION_MAJOR} tolvane-link #MINVER#\n${symbols}\n")

install(DIRECTORY examples/panel DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/tolvane-link/examples)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tolvane-link)
set(CPACK_PACKAGE_CONTACT "tolvane_link maintainers <maintainers@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/finish-packages.cmake)
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 2)  # the newest of cmake/debian/changelog
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME tolvane-link)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
    ${CMAKE_CURRENT_BINARY_DIR}/symbols ${CMAKE_CURRENT_LIST_DIR}/debian/triggers)
# Before, the library's plain name was in the other package.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_REPLACES "tolvane-link-dev (<< 2.0.0-2)")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_BREAKS "tolvane-link-dev (<< 2.0.0-2)")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
"A Qt library that a panel runtime loads to talk to the direct serial port
of the controller's CPU: it plans the requests, judges the replies, keeps
the last values and queues writes.
.
With it come tolvane-host, a bench host that reads, writes, watches and
explains a line, and tolvane-plc, a simulated controller.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME tolvane-link-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS qtbase5-dev)
if(TOLVANE_QT EQUAL 6)
    set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS qt6-base-dev)
endif()
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
"The header host_interface.h, which describes every function of the
library, and what CMake and pkg-config need to build a panel runtime
against it.")
include(CPack)
