# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# The headers that hosts compile against: FirmwareUpgradeWidget.h, and below its folder what it includes, under the name
# that it has from the root of the tree.
set(QUILLON_PUBLIC_HEADER panel/FirmwareUpgradeWidget.h)
set(QUILLON_HEADERS_BELOW_IT device/DeviceModel.h)

# quillon_lay_public_headers(FOLDER): as they lie in an installation's include folder.
function(quillon_lay_public_headers folder)
    configure_file("${PROJECT_SOURCE_DIR}/${QUILLON_PUBLIC_HEADER}"
        "${folder}/QuillonFirmwareUpgrade/FirmwareUpgradeWidget.h" COPYONLY)
    foreach(header IN LISTS QUILLON_HEADERS_BELOW_IT)
        configure_file("${PROJECT_SOURCE_DIR}/${header}" "${folder}/QuillonFirmwareUpgrade/${header}" COPYONLY)
    endforeach()
endfunction()

# quillon_install_public_headers(COMPONENT)
function(quillon_install_public_headers component)
    set(folder "${CMAKE_INSTALL_INCLUDEDIR}/QuillonFirmwareUpgrade")
    install(FILES "${PROJECT_SOURCE_DIR}/${QUILLON_PUBLIC_HEADER}" DESTINATION "${folder}" COMPONENT ${component})
    foreach(header IN LISTS QUILLON_HEADERS_BELOW_IT)
        get_filename_component(room "${header}" DIRECTORY)
        install(FILES "${PROJECT_SOURCE_DIR}/${header}" DESTINATION "${folder}/${room}" COMPONENT ${component})
    endforeach()
endfunction()
