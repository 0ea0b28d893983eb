# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# Makes the reference, and fails when doxygen warns or leaves out a name that hosts use:
#   cmake -DDOXYGEN=program -DDOXYFILE=file -DREFERENCE=folder -P check_reference.cmake
# Doxygen says nothing of functions and enumerations in a namespace that has no comment: they just do not appear.
cmake_minimum_required(VERSION 3.22)

execute_process(COMMAND "${DOXYGEN}" "${DOXYFILE}" COMMAND_ERROR_IS_FATAL ANY)
file(GLOB index "${REFERENCE}/search/all_*.js")
set(found "")
foreach(file IN LISTS index)
    file(READ "${file}" text)
    string(APPEND found "${text}")
endforeach()
foreach(name IN ITEMS FirmwareUpgradeWidget setDeviceModel DeviceModel Language setLanguage getCurrentLanguage
        OrvikHIDManager DC_AddSendData)
    string(TOLOWER "${name}" word)
    string(REPLACE "_" "_5f" word "${word}")
    if(NOT found MATCHES "'${word}_[0-9]+'")
        message(FATAL_ERROR "the reference does not tell about ${name}")
    endif()
endforeach()
