# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# Installs the DLLs that the installed programs, libraries and plugins load, and Windows does not have. Set by the caller:
#   folder             where programs, DLLs and plugins are, below the prefix
#   qt_folder          where Qt's DLLs are
#   system_libraries   the import libraries of Windows' own DLLs; empty when this runs on Windows
#   scratch            a folder for this script
set(root "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/${folder}")
file(GLOB programs "${root}/*.exe")
file(GLOB libraries "${root}/*.dll")
file(GLOB plugins "${root}/*/*.dll")

set(qt_dlls "${qt_folder}")
if(NOT CMAKE_HOST_WIN32)
    # Windows does not tell capitals from small letters, and CMake looks for small ones.
    set(qt_dlls "${scratch}")
    file(REMOVE_RECURSE "${scratch}")
    file(MAKE_DIRECTORY "${scratch}")
    file(GLOB dlls "${qt_folder}/*.dll")
    foreach(dll IN LISTS dlls libraries)
        get_filename_component(name "${dll}" NAME)
        string(TOLOWER "${name}" name)
        file(CREATE_LINK "${dll}" "${scratch}/${name}" SYMBOLIC)
    endforeach()
endif()

set(CMAKE_GET_RUNTIME_DEPENDENCIES_PLATFORM windows+pe)
file(GET_RUNTIME_DEPENDENCIES
    RESOLVED_DEPENDENCIES_VAR found UNRESOLVED_DEPENDENCIES_VAR unknown
    EXECUTABLES ${programs} LIBRARIES ${libraries} MODULES ${plugins} DIRECTORIES "${qt_dlls}"
    PRE_EXCLUDE_REGEXES "^api-ms-" "^ext-ms-" POST_EXCLUDE_REGEXES "[/\\][Ss]ystem32[/\\]")
foreach(dll IN LISTS unknown)
    get_filename_component(name "${dll}" NAME_WLE)
    if(NOT EXISTS "${system_libraries}/lib${name}.a")
        message(FATAL_ERROR "There is no ${dll} to install")
    endif()
endforeach()
foreach(dll IN LISTS found)
    file(REAL_PATH "${dll}" dll)
    cmake_path(IS_PREFIX root "${dll}" is_there)
    if(NOT is_there)
        file(INSTALL "${dll}" DESTINATION "${CMAKE_INSTALL_PREFIX}/${folder}" TYPE SHARED_LIBRARY)
    endif()
endforeach()

# CMake has done so with the product's own.
if(CMAKE_INSTALL_DO_STRIP AND CMAKE_STRIP)
    file(GLOB_RECURSE dlls "${root}/*.dll")
    execute_process(COMMAND "${CMAKE_STRIP}" ${dlls} COMMAND_ERROR_IS_FATAL ANY)
endif()
