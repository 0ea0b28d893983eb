# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# What "cpack" makes in a build folder: on Linux an archive and Debian packages, which use the system's Qt; on Windows an
# archive that runs where it is unpacked.
set(CPACK_PACKAGE_NAME quillon-firmware-upgrade)
set(CPACK_PACKAGE_VENDOR "Quillon")
set(CPACK_PACKAGE_CONTACT "Quillon <support@quillon.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_THREADS 0)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

if(WIN32)
    include(QuillonWindowsPackage)
    set(package_documents docs)
    set(package_papers .)
    set(package_scenarios .)
    set(CPACK_GENERATOR ZIP)
    set(CPACK_PACKAGE_FILE_NAME "${CPACK_PACKAGE_NAME}-${PROJECT_VERSION}-win64")
else()
    set(package_documents "${CMAKE_INSTALL_DATADIR}/doc/${CPACK_PACKAGE_NAME}")
    set(package_papers "${package_documents}")
    set(package_scenarios "${CMAKE_INSTALL_DATADIR}/quillon")
    set(CPACK_GENERATOR TGZ)
    set(CPACK_PACKAGE_FILE_NAME "${CPACK_PACKAGE_NAME}-${PROJECT_VERSION}-linux-${CMAKE_SYSTEM_PROCESSOR}")
    # CPack asks these two which libraries' packages are needed.
    find_program(QUILLON_SHLIBDEPS dpkg-shlibdeps)
    find_program(QUILLON_FILE file)
    if(QUILLON_SHLIBDEPS AND QUILLON_FILE)
        list(APPEND CPACK_GENERATOR DEB)
    endif()
endif()

include(QuillonPapers)
if(QUILLON_BUILD_HOST)
    install(FILES "${PROJECT_SOURCE_DIR}/docs/probe.md" "${PROJECT_SOURCE_DIR}/docs/rig.md"
        "${PROJECT_SOURCE_DIR}/docs/server.md" DESTINATION "${package_documents}")
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/rig/scenarios" DESTINATION "${package_scenarios}")
endif()

# An archive holds everything; Debian's users get what only compilers need apart.
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME "${CPACK_PACKAGE_NAME}")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "The panel finds a device on the USB HID bus, compares its firmware with the
update server's and has it flashed. Comes with quillon-host, which shows the
panel with a device or with a simulated one, and quillon-probe, which looks at
a device from the command line. An update server's operator finds
quillon-publish and nginx's configuration.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${CMAKE_CURRENT_LIST_DIR}/papers/triggers")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
# The panel's texts have fixed places: these fonts fit them.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "fonts-noto-cjk, fonts-roboto-unhinted")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME "${CPACK_PACKAGE_NAME}-dev")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "${CPACK_PACKAGE_NAME} (= ${PROJECT_VERSION}), qt6-base-dev (>= 6.4)")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "The header and the CMake package for applications that load the panel.")
include(CPack)
