# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# Fails when a program, a DLL or a plugin loads a DLL that neither lies beside the programs nor comes with Windows:
#   cmake -DOBJDUMP=objdump -DFOLDER=folder of the programs -DWINDOWS=folder of Windows' DLLs -P check_dlls.cmake
# WITHOUT=NAME looks as if that file were not there.
cmake_minimum_required(VERSION 3.22)

file(GLOB binaries "${FOLDER}/*.exe" "${FOLDER}/*.dll" "${FOLDER}/*/*.dll")
file(GLOB there RELATIVE "${FOLDER}" "${FOLDER}/*.dll")
list(REMOVE_ITEM there "${WITHOUT}")
file(GLOB windows RELATIVE "${WINDOWS}" "${WINDOWS}/*.*")
list(TRANSFORM there TOLOWER)
if(NOT binaries OR NOT "kernel32.dll" IN_LIST windows)
    message(FATAL_ERROR "there are no programs in ${FOLDER}, or no Windows in ${WINDOWS}")
endif()

set(wrong FALSE)
# Loaded by name, so that no list of DLLs has them.
foreach(plugin IN ITEMS platforms/qwindows.dll platforms/qoffscreen.dll imageformats/qgif.dll)
    if(NOT EXISTS "${FOLDER}/${plugin}")
        message("${plugin} is missing")
        set(wrong TRUE)
    endif()
endforeach()
foreach(binary IN LISTS binaries)
    execute_process(COMMAND "${OBJDUMP}" -p "${binary}" OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "DLL Name: [^\r\n]+" lines "${headers}")
    if(NOT lines)
        message(FATAL_ERROR "${binary} loads nothing")
    endif()
    foreach(line IN LISTS lines)
        string(REPLACE "DLL Name: " "" name "${line}")
        string(TOLOWER "${name}" dll)
        # Windows finds the file behind such a name itself.
        if(NOT dll IN_LIST there AND NOT dll IN_LIST windows AND NOT dll MATCHES "^api-ms-")
            file(RELATIVE_PATH binary "${FOLDER}" "${binary}")
            message("${binary} needs ${name}")
            set(wrong TRUE)
        endif()
    endforeach()
endforeach()
if(wrong)
    message(FATAL_ERROR "the package does not hold all that it needs")
endif()
