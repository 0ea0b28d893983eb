# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# The papers that a package carries: whose it is, what of others it uses, and what Debian wants to know of both. The folder
# is where documents go.
set(papers "${PROJECT_BINARY_DIR}/papers")
set(THIRD_PARTY_QT "${Qt6_VERSION}")
set(THIRD_PARTY_UDEV "${UDEV_VERSION}")
set(THIRD_PARTY_COMPILER "${CMAKE_CXX_COMPILER_VERSION}")
set(platform linux)
if(WIN32)
    set(platform windows)
    set(THIRD_PARTY_MINGW "the compiler's")
    if(CMAKE_CROSSCOMPILING)
        execute_process(COMMAND dpkg-query --showformat=\${Version} --show mingw-w64-x86-64-dev
            OUTPUT_VARIABLE THIRD_PARTY_MINGW ERROR_QUIET)
    endif()
endif()

# What make_notices.cmake and the bill of materials have to know of this build, for those who make either later.
set(versions "")
foreach(name IN ITEMS QT UDEV COMPILER MINGW)
    if(DEFINED THIRD_PARTY_${name})
        list(APPEND versions "-D${name}=${THIRD_PARTY_${name}}")
    endif()
endforeach()
execute_process(COMMAND "${CMAKE_COMMAND}" -DPLATFORM=${platform} "-DOUTPUT=${papers}/THIRD-PARTY.md" ${versions}
    -P "${CMAKE_CURRENT_LIST_DIR}/papers/make_notices.cmake" COMMAND_ERROR_IS_FATAL ANY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
    "${CMAKE_CURRENT_LIST_DIR}/papers/third-party.json" "${CMAKE_CURRENT_LIST_DIR}/papers/make_notices.cmake")
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" "${papers}/THIRD-PARTY.md" DESTINATION "${package_papers}")

# quillon_debian_papers(PACKAGE COMPONENT): every Debian package has these two.
function(quillon_debian_papers package component)
    set(folder "${CMAKE_INSTALL_DATADIR}/doc/${package}")
    install(FILES "${PROJECT_SOURCE_DIR}/cmake/papers/debian-copyright" DESTINATION "${folder}"
        RENAME copyright COMPONENT ${component})
    install(FILES "${papers}/changelog.gz" DESTINATION "${folder}" COMPONENT ${component})
endfunction()

if(platform STREQUAL "linux")
    # Of SOURCE_DATE_EPOCH, where that is set.
    string(TIMESTAMP changelog_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
    configure_file("${CMAKE_CURRENT_LIST_DIR}/papers/debian-changelog.in" "${papers}/changelog" @ONLY)
    execute_process(COMMAND gzip -9 --no-name --stdout "${papers}/changelog" OUTPUT_FILE "${papers}/changelog.gz"
        COMMAND_ERROR_IS_FATAL ANY)
    quillon_debian_papers(${CPACK_PACKAGE_NAME} runtime)
    quillon_debian_papers(${CPACK_PACKAGE_NAME}-dev development)
endif()
# For the bill of materials that a release puts beside each package.
list(JOIN versions "\n" lines)
file(WRITE "${papers}/versions" "-DPLATFORM=${platform}\n${lines}\n")
