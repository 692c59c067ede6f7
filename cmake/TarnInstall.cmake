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

# What the installed package must find before its targets: the thread library that a static Tarn
# links on POSIX. A shared Tarn has already linked it.
set(TARN_CONFIG_DEPENDENCIES "")
if(NOT TARN_SHARED AND NOT WIN32)
    set(TARN_CONFIG_DEPENDENCIES "find_dependency(Threads)")
endif()
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/TarnConfig.cmake.in
    ${PROJECT_BINARY_DIR}/TarnConfig.cmake
    INSTALL_DESTINATION ${TARN_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TarnConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TarnConfig.cmake ${PROJECT_BINARY_DIR}/TarnConfigVersion.cmake
    DESTINATION ${TARN_CMAKE_DIR} COMPONENT dev)

if(TARN_SHARED)
    set(TARN_PC_CFLAGS "")
else()
    set(TARN_PC_CFLAGS " -DTARN_STATIC")
endif()
# The pkg-config file names the prefix the tree is installed to, which `cmake --install --prefix`
# may choose only at install time: the prefix is written in then. Folders below the prefix are
# written relative to it, so that a /usr install prints no -I or -L that the compiler has already.
set(TARN_PC_PREFIX "@TARN_PC_PREFIX@")
foreach(kind LIBDIR INCLUDEDIR)
    if(IS_ABSOLUTE "${CMAKE_INSTALL_${kind}}")
        set(TARN_PC_${kind} "${CMAKE_INSTALL_${kind}}")
    else()
        set(TARN_PC_${kind} "\${prefix}/${CMAKE_INSTALL_${kind}}")
    endif()
endforeach()
configure_file(${PROJECT_SOURCE_DIR}/cmake/tarn.pc.in ${PROJECT_BINARY_DIR}/tarn.pc.in @ONLY)
install(CODE "
    file(READ \"${PROJECT_BINARY_DIR}/tarn.pc.in\" tarn_pc)
    string(REPLACE \"@TARN_PC_PREFIX@\" \"\${CMAKE_INSTALL_PREFIX}\" tarn_pc \"\${tarn_pc}\")
    file(WRITE \"${PROJECT_BINARY_DIR}/tarn.pc\" \"\${tarn_pc}\")" COMPONENT dev)
install(FILES ${PROJECT_BINARY_DIR}/tarn.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)
