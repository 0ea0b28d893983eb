# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# Fails when Debian's packages lack what they owe their users, or bring what others have to bring:
#   cmake -DFOLDER=what make_packages.cmake has left -P check_debian_packages.cmake
cmake_minimum_required(VERSION 3.22)

set(wrong FALSE)
function(complain text)
    message("${text}")
    set(wrong TRUE PARENT_SCOPE)
endfunction()

set(owed_by_runtime
    bin/quillon-host bin/quillon-probe bin/quillon-publish share/quillon/server/nginx/answers.conf lib/libQuillonFirmwareUpgrade.so.1 lib/libHIDCommunicator.so.1
    share/doc/quillon-firmware-upgrade/copyright share/doc/quillon-firmware-upgrade/LICENSE
    share/doc/quillon-firmware-upgrade/THIRD-PARTY.md
    lib/udev/rules.d/70-quillon.rules share/doc/quillon-firmware-upgrade/probe.md share/quillon/scenarios/demo.scn)
set(owed_by_development
    share/doc/quillon-firmware-upgrade-dev/copyright
    include/QuillonFirmwareUpgrade/FirmwareUpgradeWidget.h include/QuillonFirmwareUpgrade/device/DeviceModel.h
    lib/libQuillonFirmwareUpgrade.so lib/cmake/QuillonFirmwareUpgrade/QuillonFirmwareUpgradeConfig.cmake)
set(fields_of_runtime
    "Package: quillon-firmware-upgrade\n" "Depends: [^\n]*libqt6widgets6 [^\n]*" "Depends: [^\n]*libudev1 [^\n]*"
    "Recommends: [^\n]*fonts-noto-cjk" "Maintainer: Quillon <[^\n]*>\n" "Description: [^\n]+\n [^\n]+\n")
set(fields_of_development
    "Package: quillon-firmware-upgrade-dev\n" "Depends: quillon-firmware-upgrade \\(= [0-9.]+\\), qt6-base-dev [^\n]*")

foreach(package IN ITEMS runtime development)
    foreach(file IN LISTS owed_by_${package})
        if(NOT EXISTS "${FOLDER}/${package}/usr/${file}" AND NOT IS_SYMLINK "${FOLDER}/${package}/usr/${file}")
            complain("${package} lacks /usr/${file}")
        endif()
    endforeach()
    file(READ "${FOLDER}/${package}.control/control" control)
    foreach(field IN LISTS fields_of_${package})
        if(NOT control MATCHES "(^|\n)${field}")
            complain("${package} has no field ${field}")
        endif()
    endforeach()
    # The HID library speaks to the kernel itself.
    if(control MATCHES "libhid|libusb")
        complain("${package} asks for another HID library")
    endif()
    file(GLOB_RECURSE foreign "${FOLDER}/${package}/*Qt6*" "${FOLDER}/${package}/*OrvikHIDManager.h")
    if(foreign)
        complain("${package} brings ${foreign}")
    endif()
endforeach()
if(wrong)
    message(FATAL_ERROR "the packages are not what they should be")
endif()
