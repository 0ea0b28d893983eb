# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# Installs the libraries, the public headers and the package files for find_package(QuillonFirmwareUpgrade).
include(CMakePackageConfigHelpers)

set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/QuillonFirmwareUpgrade")

install(TARGETS QuillonFirmwareUpgrade EXPORT QuillonFirmwareUpgradeTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" NAMELINK_COMPONENT development
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development)
# The HID library lies beside it, wherever that is; an application names only the panel.
if(UNIX AND NOT APPLE)
    set_target_properties(QuillonFirmwareUpgrade PROPERTIES INSTALL_RPATH "$ORIGIN")
endif()
quillon_install_public_headers(development)
install(EXPORT QuillonFirmwareUpgradeTargets
    NAMESPACE QuillonFirmwareUpgrade:: DESTINATION "${package_folder}" COMPONENT development)

configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/QuillonFirmwareUpgradeConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/QuillonFirmwareUpgradeConfig.cmake" INSTALL_DESTINATION "${package_folder}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/QuillonFirmwareUpgradeConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/QuillonFirmwareUpgradeConfig.cmake"
    "${PROJECT_BINARY_DIR}/QuillonFirmwareUpgradeConfigVersion.cmake"
    DESTINATION "${package_folder}" COMPONENT development)
