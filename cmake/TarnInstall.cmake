# Installation: the library, its headers, a CMake package (Tarn::tarn) and a pkg-config file.
include(CMakePackageConfigHelpers)

set(TARN_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Tarn)

# Two components: `runtime` holds the shared library, `dev` everything a build against it needs.
install(TARGETS tarn EXPORT TarnTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)

install(EXPORT TarnTargets NAMESPACE Tarn:: DESTINATION ${TARN_CMAKE_DIR} COMPONENT dev)
export(EXPORT TarnTargets NAMESPACE Tarn:: FILE ${PROJECT_BINARY_DIR}/TarnTargets.cmake)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/TarnConfig.cmake.in
    ${PROJECT_BINARY_DIR}/TarnConfig.cmake
    INSTALL_DESTINATION ${TARN_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TarnConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TarnConfig.cmake ${PROJECT_BINARY_DIR}/TarnConfigVersion.cmake
    DESTINATION ${TARN_CMAKE_DIR} COMPONENT dev)

if(BUILD_SHARED_LIBS)
    set(TARN_PC_CFLAGS "")
else()
    set(TARN_PC_CFLAGS "-DTARN_STATIC")
endif()
# The pkg-config file finds the prefix relative to its own folder, so an installed tree can move.
file(RELATIVE_PATH TARN_PC_PREFIX_FROM_PCDIR /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(${PROJECT_SOURCE_DIR}/cmake/tarn.pc.in ${PROJECT_BINARY_DIR}/tarn.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tarn.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

include(cmake/TarnPackaging.cmake)
