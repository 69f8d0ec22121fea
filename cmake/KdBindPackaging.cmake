# The pkg-config file and the Debian package (`make package`, through CPack).

# The .pc file names its prefix relative to its own directory, so that the
# tree an installation or a .deb unpacks into can live anywhere; absolute
# installation directories stay absolute.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}"
   OR IS_ABSOLUTE "${CMAKE_INSTALL_BINDIR}")
    set(KDBIND_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
    set(KDBIND_PC_LIBDIR "${CMAKE_INSTALL_FULL_LIBDIR}")
    set(KDBIND_PC_INCLUDEDIR "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
    set(KDBIND_PC_BINDIR "${CMAKE_INSTALL_FULL_BINDIR}")
else()
    file(RELATIVE_PATH up "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
    set(KDBIND_PC_PREFIX "\${pcfiledir}/${up}")
    set(KDBIND_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
    set(KDBIND_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
    set(KDBIND_PC_BINDIR "\${prefix}/${CMAKE_INSTALL_BINDIR}")
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/kdbind.pc.in ${CMAKE_CURRENT_BINARY_DIR}/kdbind.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/kdbind.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# One package with everything a developer needs: library, headers, CMake
# package, pkg-config file and kdbind-xsd. It installs under /usr, where the
# linker, CMake and pkg-config look without being told.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kdbind)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "XML data-binding run-time library and schema compiler")
set(CPACK_PACKAGE_DESCRIPTION
    "KdBind writes C++ object trees as XML text or Fast Infoset and reads documents back into them while it\n"
    "enforces the content model of their schema. The package holds the shared library, its headers, the\n"
    "CMake package (with kdbind_generate), the pkg-config file and the schema compiler kdbind-xsd.")
set(CPACK_PACKAGE_CONTACT "KdBind developers <kdbind@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
# The run-time packages of the libraries libkdbind links against.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libexpat1, zlib1g, libpcre2-8-0, libstdc++6, libc6")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "cmake, pkg-config, g++")
set(CPACK_STRIP_FILES ON)
include(CPack)
