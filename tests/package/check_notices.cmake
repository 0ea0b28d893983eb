# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# Fails when the notices about what others wrote are not what they should be:
#   cmake -DTREE=the source tree -DOUTPUT=file -P check_notices.cmake                                those in the tree
#   cmake -DNOTICES=file "-DNAMED=name\;name" -DBUILT_WITH=Qt's version -P check_notices.cmake       those in a package
cmake_minimum_required(VERSION 3.22)

if(TREE)
    execute_process(COMMAND "${CMAKE_COMMAND}" -DPLATFORM=tree "-DOUTPUT=${OUTPUT}"
        -P "${TREE}/cmake/papers/make_notices.cmake" COMMAND_ERROR_IS_FATAL ANY)
    file(READ "${OUTPUT}" made)
    file(READ "${TREE}/THIRD-PARTY.md" kept)
    if(NOT made STREQUAL kept)
        message(FATAL_ERROR "THIRD-PARTY.md is not what cmake/papers makes: copy ${OUTPUT} over it")
    endif()
    return()
endif()

file(READ "${NOTICES}" text)
foreach(name IN LISTS NAMED)
    if(NOT text MATCHES "\n## ${name}[ \n]")
        message(FATAL_ERROR "${NOTICES} does not name ${name}")
    endif()
endforeach()
if(NOT text MATCHES "this package was built with ${BUILT_WITH}\n")
    message(FATAL_ERROR "${NOTICES} does not say that the package was built with Qt ${BUILT_WITH}")
endif()
get_filename_component(folder "${NOTICES}" DIRECTORY)
if(NOT EXISTS "${folder}/LICENSE")
    message(FATAL_ERROR "there is no licence in ${folder}")
endif()
