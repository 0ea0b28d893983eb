# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# Makes the packages of a build folder and unpacks them where the other tests look for them:
#   cmake -DCPACK=cpack -DBUILD=folder -DOUTPUT=folder -P make_packages.cmake
# OUTPUT then holds the folder "archive für alle" and, where there are Debian packages, "runtime" and "development".
cmake_minimum_required(VERSION 3.22)

file(REMOVE_RECURSE "${OUTPUT}")
execute_process(COMMAND "${CPACK}" --config "${BUILD}/CPackConfig.cmake" -B "${OUTPUT}" COMMAND_ERROR_IS_FATAL ANY)

# Users have blanks and umlauts in their folders' names.
file(GLOB archives "${OUTPUT}/*.zip" "${OUTPUT}/*.tar.gz")
list(LENGTH archives count)
if(NOT count EQUAL 1)
    message(FATAL_ERROR "There should be one archive, not ${count}: ${archives}")
endif()
file(ARCHIVE_EXTRACT INPUT "${archives}" DESTINATION "${OUTPUT}/unpacked")
file(GLOB folder "${OUTPUT}/unpacked/*")
file(RENAME "${folder}" "${OUTPUT}/archive für alle")

file(GLOB debian_packages "${OUTPUT}/*.deb")
foreach(package IN LISTS debian_packages)
    set(folder runtime)
    if(package MATCHES "-dev_")
        set(folder development)
    endif()
    execute_process(COMMAND dpkg-deb --extract "${package}" "${OUTPUT}/${folder}" COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND dpkg-deb --control "${package}" "${OUTPUT}/${folder}.control" COMMAND_ERROR_IS_FATAL ANY)
endforeach()
