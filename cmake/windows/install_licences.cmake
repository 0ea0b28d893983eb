# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# Installs the licence texts of what others wrote and the package holds: Qt, whose texts build-dependencies has left beside
# it, and the compiler's runtime, which is part of each binary. Set by the caller:
#   library_licences   a folder for each library
#   compiler           the cross compiler
if(NOT IS_DIRECTORY "${library_licences}")
    message(FATAL_ERROR "There are no licence texts in ${library_licences}: run cmake/mingw/build-dependencies anew")
endif()
set(folder "${CMAKE_INSTALL_PREFIX}/licences")
file(INSTALL "${library_licences}/qt6-base" DESTINATION "${folder}")

foreach(library IN ITEMS libstdc++.a libgcc.a libwinpthread.a libmingw32.a)
    execute_process(COMMAND "${compiler}" -print-file-name=${library}
        OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    file(REAL_PATH "${path}" path)
    execute_process(COMMAND dpkg-query --search "${path}" OUTPUT_VARIABLE owner COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX REPLACE ":.*" "" package "${owner}")
    file(REAL_PATH "/usr/share/doc/${package}/copyright" text)
    file(INSTALL "${text}" DESTINATION "${folder}/${package}")
endforeach()
