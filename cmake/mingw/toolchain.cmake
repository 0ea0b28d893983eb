# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# Cross-compiles for 64-bit Windows with Debian's MinGW-w64 (g++-mingw-w64-x86-64-posix) against the Qt that
# build-dependencies, in this folder, has left in the cache.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

# The posix flavour has std::thread and std::mutex.
set(triple x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triple}-g++-posix)
set(CMAKE_RC_COMPILER ${triple}-windres)

# The C++ runtime goes into each binary: nothing but Qt has to lie beside it.
foreach(kind IN ITEMS EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "-static")
endforeach()

# QUILLON_MINGW_PREFIX: where the Windows libraries are; the default is build-dependencies' own.
if(NOT QUILLON_MINGW_PREFIX)
    set(cache "$ENV{XDG_CACHE_HOME}")
    if(NOT cache)
        set(cache "$ENV{HOME}/.cache")
    endif()
    set(QUILLON_MINGW_PREFIX "${cache}/quillon-mingw/prefix")
endif()
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QUILLON_MINGW_PREFIX)
set(CMAKE_FIND_ROOT_PATH "${QUILLON_MINGW_PREFIX}" /usr/${triple})
set(CMAKE_PREFIX_PATH "${QUILLON_MINGW_PREFIX}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind IN ITEMS LIBRARY INCLUDE PACKAGE)
    set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()

# Qt's own tools (moc, rcc, lrelease) run here: they are Debian's.
set(QT_HOST_PATH /usr)
set(QT_HOST_PATH_CMAKE_DIR /usr/lib/x86_64-linux-gnu/cmake)
set(Qt6LinguistTools_DIR "${QT_HOST_PATH_CMAKE_DIR}/Qt6LinguistTools")
