# Debian packages built by CPack: libtarn (the shared library) and libtarn-dev (headers, CMake
# package, pkg-config file).
set(CPACK_PACKAGE_NAME libtarn)
set(CPACK_PACKAGE_VENDOR "Tarn developers")
set(CPACK_PACKAGE_CONTACT "Tarn developers <tarn@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime dev)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libtarn)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "libc6, libstdc++6, libgcc-s1")
set(CPACK_DEBIAN_DEV_PACKAGE_NAME libtarn-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "libtarn (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "Tarn shared library")
set(CPACK_COMPONENT_DEV_DESCRIPTION "Tarn headers, CMake package and pkg-config file")

include(CPack)
