# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# Fails when a source of the product includes what lies above its room:
#   cmake -DTREE=the source tree [-DWITHOUT=a room that nobody may include] -P check_includes.cmake
cmake_minimum_required(VERSION 3.22)

# What each room may include besides itself. Members of the panel lie in other rooms as well, in folders named "panel".
set(below_system)
set(below_widgets)
set(below_device)
set(below_flash system)
set(below_net system)
set(below_panel system widgets device flash net HIDCommunicator)
set(below_probe device hid HIDCommunicator)
set(rooms system widgets device flash net panel probe hid host rig tests bench HIDCommunicator QuillonFirmwareUpgrade)

set(wrong FALSE)
foreach(folder IN ITEMS system widgets device flash net panel probe)
    file(GLOB_RECURSE sources RELATIVE "${TREE}" "${TREE}/${folder}/*.cpp" "${TREE}/${folder}/*.h")
    if(NOT sources)
        message(FATAL_ERROR "no sources in ${TREE}/${folder}")
    endif()
    foreach(source IN LISTS sources)
        set(room ${folder})
        if(source MATCHES "/panel/")
            set(room panel)
        endif()
        set(allowed ${room} ${below_${room}})
        list(REMOVE_ITEM allowed "${WITHOUT}")
        file(STRINGS "${TREE}/${source}" includes REGEX "^#include [<\"][A-Za-z]+/")
        foreach(include IN LISTS includes)
            string(REGEX REPLACE "^#include [<\"]([A-Za-z]+)/.*" "\\1" included "${include}")
            if(included IN_LIST rooms AND NOT included IN_LIST allowed)
                message("${source}: ${include}")
                set(wrong TRUE)
            endif()
        endforeach()
    endforeach()
endforeach()
if(wrong)
    message(FATAL_ERROR "these includes run back up")
endif()
