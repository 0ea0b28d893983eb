# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# What a library or program of this project carries on Windows besides its code. On other systems these do nothing.

# quillon_windows_file(TARGET DESCRIPTION [MANIFEST]): a DLL's name without "lib", all of them in one folder with the
# programs that load them, and a version for the Explorer; with MANIFEST, for programs, UTF-8 as the code page, long
# paths and a scale for each monitor.
function(quillon_windows_file target description)
    if(NOT WIN32)
        return()
    endif()
    get_target_property(name ${target} OUTPUT_NAME)
    if(NOT name)
        set(name ${target})
    endif()
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "EXECUTABLE")
        set(file_type VFT_APP)
        set(extension .exe)
    else()
        set(file_type VFT_DLL)
        set(extension .dll)
        set_target_properties(${target} PROPERTIES PREFIX "")
    endif()
    set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")

    set(manifest "")
    if("MANIFEST" IN_LIST ARGN)
        set(manifest "1 24 \"${PROJECT_SOURCE_DIR}/cmake/windows/application.manifest\"")
    endif()
    string(REGEX REPLACE "\\.exe$" "" name "${name}")
    enable_language(RC)
    configure_file("${PROJECT_SOURCE_DIR}/cmake/windows/version.rc.in" "${CMAKE_CURRENT_BINARY_DIR}/${target}.rc" @ONLY)
    target_sources(${target} PRIVATE "${CMAKE_CURRENT_BINARY_DIR}/${target}.rc")
endfunction()
