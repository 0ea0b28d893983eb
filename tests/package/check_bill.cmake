# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# Fails when a package's bill of materials does not name the package, its digest or what it needs:
#   cmake -DFOLDER=what make_packages.cmake has left -DPAPERS=folder -DTREE=folder -DNEEDED=name -P check_bill.cmake
cmake_minimum_required(VERSION 3.22)

file(STRINGS "${PAPERS}/versions" versions)
file(GLOB packages "${FOLDER}/*.tar.gz" "${FOLDER}/*.deb" "${FOLDER}/*.zip")
if(NOT packages)
    message(FATAL_ERROR "there are no packages in ${FOLDER}")
endif()
foreach(package IN LISTS packages)
    execute_process(COMMAND "${CMAKE_COMMAND}" ${versions} "-DPACKAGE=${package}" -DVERSION=1.2.3
        -DCREATED=2026-01-31T12:00:00Z "-DOUTPUT=${FOLDER}/bill.json" -P "${TREE}/cmake/papers/make_bill.cmake"
        COMMAND_ERROR_IS_FATAL ANY)
    file(READ "${FOLDER}/bill.json" bill)
    file(SHA256 "${package}" digest)
    string(JSON told GET "${bill}" packages 0 checksums 0 checksumValue)
    if(NOT told STREQUAL digest)
        message(FATAL_ERROR "the bill of ${package} has another digest")
    endif()
    string(JSON count LENGTH "${bill}" packages)
    math(EXPR last "${count} - 1")
    set(names "")
    foreach(index RANGE ${last})
        string(JSON name GET "${bill}" packages ${index} name)
        string(JSON version GET "${bill}" packages ${index} versionInfo)
        if(name STREQUAL "Qt" AND NOT version MATCHES "^6\\.")
            message(FATAL_ERROR "the bill of ${package} does not tell Qt's version")
        endif()
        list(APPEND names "${name}")
    endforeach()
    foreach(name IN ITEMS quillon-firmware-upgrade Qt ${NEEDED})
        if(NOT name IN_LIST names)
            message(FATAL_ERROR "the bill of ${package} does not name ${name}")
        endif()
    endforeach()
endforeach()
