# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# Writes the notices about what others wrote, of one package or of the tree:
#   cmake -DPLATFORM=linux|windows|tree -DOUTPUT=file [-DQT=version -DUDEV=version ...] -P make_notices.cmake
# third-party.json says what there is; for a package the versions that it was built with are given under the names that stand
# there.
cmake_minimum_required(VERSION 3.22)

file(READ "${CMAKE_CURRENT_LIST_DIR}/third-party.json" data)
set(heading "# Third-party notices\n\n")
if(PLATFORM STREQUAL "tree")
    string(APPEND heading "What others wrote and this product uses, from `cmake/papers/third-party.json`, which this file is made from. "
        "Each\npackage has such a file of its own, with the versions that it was built with.\n")
    set(platforms linux windows)
else()
    string(APPEND heading "What others wrote and this package uses.\n")
    set(platforms ${PLATFORM})
endif()
set(name_linux Linux)
set(name_windows Windows)

# field(RESULT INDEX NAME...): empty where there is none.
function(field result index)
    string(JSON value ERROR_VARIABLE missing GET "${data}" components ${index} ${ARGN})
    if(missing)
        set(value "")
    endif()
    set(${result} "${value}" PARENT_SCOPE)
endfunction()

# describe(RESULT INDEX): a section, or nothing when none of the platforms has it.
function(describe result index)
    set(${result} "" PARENT_SCOPE)
    foreach(word IN ITEMS name modules licence supplier homepage wanted)
        field(${word} ${index} ${word})
    endforeach()
    set(uses "")
    foreach(platform IN LISTS platforms)
        field(use ${index} use ${platform})
        field(held ${index} held ${platform})
        field(variable ${index} version ${platform})
        if(NOT use)
            continue()
        endif()
        set(place "a part of the package")
        if(NOT held)
            set(place "not in the package")
        endif()
        if(PLATFORM STREQUAL "tree")
            string(APPEND uses "- On ${name_${platform}}, ${place}. ${use}\n")
        else()
            string(APPEND uses "- Use, ${place}: ${use}\n")
        endif()
        if(NOT PLATFORM STREQUAL "tree" AND variable)
            string(APPEND wanted "; this package was built with ${${variable}}")
        endif()
    endforeach()
    if(NOT uses)
        return()
    endif()
    if(modules)
        set(modules " (${modules})")
    endif()
    set(${result}
        "\n## ${name}${modules}\n\n- Version: ${wanted}\n- Licence: ${licence}\n- By: ${supplier}, <${homepage}>\n${uses}"
        PARENT_SCOPE)
endfunction()

string(JSON count LENGTH "${data}" components)
math(EXPR last "${count} - 1")
set(text "${heading}")
foreach(index RANGE ${last})
    describe(section ${index})
    string(APPEND text "${section}")
endforeach()
file(WRITE "${OUTPUT}" "${text}")
