# SPDX-License-Identifier: MIT
# Builds for 64-bit Windows on a Debian host with MinGW-w64.
#
# ZRTHUMB_QT_WINDOWS, a cache or environment variable, names the prefix of a static MinGW-w64 build of Qt 5.15;
# tools/qt-windows makes one and prints it. Programs that the build or ctest starts run under Wine.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

# The suffix chooses the thread model: with the win32 one there is no std::thread and no std::mutex,
# and Qt is built with the posix one.
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

if(NOT ZRTHUMB_QT_WINDOWS)
    set(ZRTHUMB_QT_WINDOWS "$ENV{ZRTHUMB_QT_WINDOWS}" CACHE PATH "Prefix of a static MinGW-w64 Qt 5.15" FORCE)
endif()
if(NOT EXISTS "${ZRTHUMB_QT_WINDOWS}/lib/cmake/Qt5/Qt5Config.cmake")
    message(FATAL_ERROR "ZRTHUMB_QT_WINDOWS='${ZRTHUMB_QT_WINDOWS}' is not a prefix of Qt 5; "
                        "tools/qt-windows makes one and prints it")
endif()
# CMake reads this file again for each of its compiler checks, without the cache.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZRTHUMB_QT_WINDOWS)

list(APPEND CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 "${ZRTHUMB_QT_WINDOWS}")
list(APPEND CMAKE_PREFIX_PATH "${ZRTHUMB_QT_WINDOWS}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

get_filename_component(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../tools/wine-env" ABSOLUTE)
