# Debian packages built by CPack: libtarn1 (the shared library, named after its soname) and
# libtarn-dev (headers, CMake package, pkg-config file). The `deb` preset builds them with the
# prefix /usr, so that GNUInstallDirs puts the library into the multiarch folder
# /usr/lib/<triplet>.

# Who answers for the packages: the Maintainer field, the copyright file and the changelog.
set(TARN_PACKAGE_MAINTAINER "The Tarn authors <tarn-maintainers@tarn-lib.org>"
    CACHE STRING "Maintainer of the Debian packages, \"Name <address>\"")

set(CPACK_PACKAGE_NAME tarn)
set(CPACK_PACKAGE_VENDOR "The Tarn authors")
set(CPACK_PACKAGE_CONTACT "${TARN_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime dev)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${TARN_PACKAGE_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# Depends of the library from what it links (dpkg-shlibdeps), and a shlibs file for the packages
# that link it; a package with a shared library gets the ldconfig trigger with the shlibs file.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# The library is stripped in the package. No -dbgsym package: the one CPack 3.25 makes lists its
# files by build-tree paths in md5sums. The build tree (RelWithDebInfo) keeps the symbols.
set(CPACK_STRIP_FILES ON)
# dpkg's ldconfig trigger runs ldconfig once after all packages of a run are unpacked.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libtarn${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "${PROJECT_DESCRIPTION} (shared library)
Tarn is a C++17 foundation library: an object root with class identity by
name, text and owning vectors, object graphs stored as text and restored with
their pointers reconnected, dense and packed matrices with an LU solver,
configuration files, file names and text files, semaphores, threads and
timers, and the RC4 and XTEA ciphers for data of existing systems.

This package holds the shared library.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libtarn-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
# The headers belong to exactly this build of the library.
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "libtarn${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_DEV_DESCRIPTION "${PROJECT_DESCRIPTION} (development files)
Tarn is a C++17 foundation library: an object root with class identity by
name, text and owning vectors, object graphs stored as text and restored with
their pointers reconnected, dense and packed matrices with an LU solver,
configuration files, file names and text files, semaphores, threads and
timers, and the RC4 and XTEA ciphers for data of existing systems.

This package holds the headers, the CMake package (find_package(Tarn)) and
the pkg-config file.")

# Each package carries the licence as a machine-readable copyright file and a Debian changelog,
# compressed as Debian requires. They are left out of a plain `cmake --install` (EXCLUDE_FROM_ALL):
# only the per-component installs of CPack put them in.
configure_file(${PROJECT_SOURCE_DIR}/cmake/debian/copyright.in ${PROJECT_BINARY_DIR}/debian/copyright @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/cmake/debian/changelog.in ${PROJECT_BINARY_DIR}/debian/changelog @ONLY)
find_program(TARN_GZIP gzip)
if(TARN_GZIP)
    add_custom_command(OUTPUT ${PROJECT_BINARY_DIR}/debian/changelog.gz
        COMMAND ${TARN_GZIP} -9nf -k ${PROJECT_BINARY_DIR}/debian/changelog
        DEPENDS ${PROJECT_BINARY_DIR}/debian/changelog
        COMMENT "Compressing the Debian changelog")
    add_custom_target(tarn_debian_changelog ALL DEPENDS ${PROJECT_BINARY_DIR}/debian/changelog.gz)
    foreach(component runtime dev)
        string(TOUPPER ${component} upper)
        install(FILES ${PROJECT_BINARY_DIR}/debian/copyright ${PROJECT_BINARY_DIR}/debian/changelog.gz
            DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME}
            COMPONENT ${component} EXCLUDE_FROM_ALL)
    endforeach()
endif()
install(FILES ${PROJECT_SOURCE_DIR}/cmake/debian/libtarn1.lintian-overrides
    DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME ${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME}
    COMPONENT runtime EXCLUDE_FROM_ALL)

include(CPack)
