# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# quillon_keep_loaded(TARGET): a library that stays in the process once it has been loaded. The application calls it when
# it ends, and so do threads that wait for a device that does not answer; a host that unloads a plug-in with the panel in
# it would leave them without code.
function(quillon_keep_loaded target)
    if(WIN32)
        target_sources(${target} PRIVATE "${PROJECT_SOURCE_DIR}/cmake/windows/KeepLoaded.cpp")
    elseif(NOT APPLE)
        target_link_options(${target} PRIVATE "LINKER:-z,nodelete")
    endif()
endfunction()
