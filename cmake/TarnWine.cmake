# A Wine prefix inside the build tree, made once, before the first Windows program of the build runs.
#
# Every test program would make the prefix on its first start, but several starting at once would
# race to make it, and the making takes seconds that would count against a test's time limit.

if(NOT (CMAKE_CROSSCOMPILING AND WIN32 AND CMAKE_CROSSCOMPILING_EMULATOR AND CMAKE_HOST_UNIX))
    return()
endif()

find_program(TARN_WINESERVER NAMES wineserver PATHS /usr/lib/wine)
set(TARN_WINE_PREFIX_STAMP ${CMAKE_BINARY_DIR}/.wine/system.reg)
# wineboot is a 64-bit program under a 64-bit Wine even for a 32-bit build, so this also works
# where 32-bit programs cannot run; "wineserver -w" waits until the prefix is written to disk.
add_custom_command(OUTPUT ${TARN_WINE_PREFIX_STAMP}
    COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} wineboot --init
    COMMAND env WINEPREFIX=${CMAKE_BINARY_DIR}/.wine ${TARN_WINESERVER} -w
    COMMENT "Making the Wine prefix ${CMAKE_BINARY_DIR}/.wine"
    VERBATIM)
add_custom_target(tarn_wine_prefix DEPENDS ${TARN_WINE_PREFIX_STAMP})
