# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# Builds a consumer in a fresh folder and runs it:
#   cmake -DSOURCE=folder -DBUILD=folder -DTREE=folder [-DPACKAGE=folder] [-DMINGW_PREFIX=folder] [-DEXAMPLE=yes]
#       -P build_consumer.cmake
# With PACKAGE the consumer finds the unpacked archive there, else it adds the tree. With MINGW_PREFIX, where Qt for
# Windows is, it is built for Windows. An example ends by itself only when it is told to.
cmake_minimum_required(VERSION 3.22)

function(run)
    execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

set(name consumer)
set(arguments "")
if(EXAMPLE)
    set(name example)
    set(arguments --try)
endif()
file(REMOVE_RECURSE "${BUILD}")
if(PACKAGE)
    set(options "-DQuillonFirmwareUpgrade_DIR=${PACKAGE}/lib/cmake/QuillonFirmwareUpgrade")
    set(dlls --path "${BUILD}" --path "${PACKAGE}/bin")
else()
    set(options "-DQUILLON_TREE=${TREE}")
    set(dlls --path "${BUILD}" --path "${BUILD}/quillon/bin")
endif()
set(program "${BUILD}/${name}")
if(MINGW_PREFIX)
    list(APPEND options "-DCMAKE_TOOLCHAIN_FILE=${TREE}/cmake/mingw/toolchain.cmake"
        "-DQUILLON_MINGW_PREFIX=${MINGW_PREFIX}")
    set(program "${TREE}/cmake/mingw/wine-run" --prefix "${MINGW_PREFIX}" ${dlls} "${BUILD}/${name}.exe")
endif()
run(${CMAKE_COMMAND} -S "${SOURCE}" -B "${BUILD}" -G Ninja ${options})
run(${CMAKE_COMMAND} --build "${BUILD}" --target ${name})
set(ENV{QT_QPA_PLATFORM} offscreen)
if(NOT MINGW_PREFIX)
    set(ENV{HOME} "${BUILD}/home")
endif()
run(${program} ${arguments})
