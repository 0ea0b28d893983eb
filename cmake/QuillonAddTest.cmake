# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# How a test is made and what it runs in. tests/support/surroundings keeps the machine out of it; how a class becomes a
# test is told in tests/support/TestProgram.h.
#
# quillon_test_program(PROGRAM      an executable of several test classes, linked with Qt Test and the support library
#     LIBRARIES target...           what they need besides
#     LABELS label...)              for "ctest -L"
#
# quillon_add_test(NAME             the test NAME: the class in tst_NAME.cpp, as a part of
#     PROGRAM program
#     SOURCES file...               default: tst_NAME.cpp
#     DEFINITIONS NAME=value...     for these sources
#     SPEED factor                  the test and its children run with a clock this many times as fast
#     TIMEOUT seconds               in real time, default 60
#     ENVIRONMENT NAME=value...
#     OWN_FOLDER                    the test lays a flashing tool beside its executable, so it has one of its own
#     MOCK_BUS)                     sees the devices of tests/support/MockBus.h instead of this machine's
find_program(QUILLON_FAKETIME faketime)
# No test looks for data beside its source. A folder of its own in every program's flags would keep the programs from
# sharing precompiled headers.
set_property(TARGET Qt6::Test PROPERTY INTERFACE_COMPILE_DEFINITIONS QT_TESTLIB_LIB)

# Windows programs run under Wine. The faster clock does not reach all that they wait for, so they take their time.
set(QUILLON_UNDER_WINE OFF)
if(WIN32 AND CMAKE_CROSSCOMPILING)
    set(QUILLON_UNDER_WINE ON)
endif()

# The fonts and the screen of every test and of the gallery.
set(QUILLON_TEST_SCREEN "${PROJECT_SOURCE_DIR}/tests/support/screen.json")
set(QUILLON_TEST_FONTS "${PROJECT_BINARY_DIR}/tests/fonts.conf")
set(QUILLON_TEST_FONT_FILES "${PROJECT_BINARY_DIR}/tests/fonts")
configure_file("${PROJECT_SOURCE_DIR}/tests/support/fonts.conf.in" "${QUILLON_TEST_FONTS}" @ONLY)
# These files and no neighbour of theirs: Qt 6.8 also takes what fontconfig is told to reject.
file(GLOB font_files /usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/*.ttf
    /usr/share/fonts/opentype/noto/NotoSansCJK-Bold.ttc /usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc)
file(MAKE_DIRECTORY "${QUILLON_TEST_FONT_FILES}")
foreach(file IN LISTS font_files)
    get_filename_component(name "${file}" NAME)
    file(CREATE_LINK "${file}" "${QUILLON_TEST_FONT_FILES}/${name}" SYMBOLIC)
endforeach()

# What faketime makes of waits is too coarse: see tests/support/finer_waits.cpp.
set(QUILLON_FINER_WAITS_FOLDER "${PROJECT_BINARY_DIR}/tests/support")
set(finer_waits "${QUILLON_FINER_WAITS_FOLDER}/libquillon_finer_waits.so")

# A sanitizer has to be loaded before every other library: or else the address sanitizer finds no leak, and the thread
# sanitizer does not see which descriptors are opened and closed.
function(quillon_preload result library)
    set(runtime libasan.so)
    if(QUILLON_SANITIZE MATCHES "thread")
        set(runtime libtsan.so)
    endif()
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${runtime}
        OUTPUT_VARIABLE sanitizer OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    set(${result} "LD_PRELOAD=${sanitizer}:${library}" PARENT_SCOPE)
endfunction()

# quillon_run_prefix(RESULT [SPEED factor] [MOCK_BUS] [REPORT] [ENVIRONMENT NAME=value...]): the command prefix that runs a
# program of this build in the tests' surroundings; with SPEED on a clock that runs factor times as fast for it and its
# children; with REPORT for a program of Qt Test.
function(quillon_run_prefix result)
    cmake_parse_arguments(PARSE_ARGV 1 arg "MOCK_BUS;REPORT" "SPEED" "ENVIRONMENT")
    if(QUILLON_UNDER_WINE)
        set(prefix ${CMAKE_COMMAND} -E env LC_ALL=C.UTF-8 ${arg_ENVIRONMENT}
            "${PROJECT_SOURCE_DIR}/cmake/mingw/wine-run" --prefix "${QUILLON_MINGW_PREFIX}"
            --path "${PROJECT_BINARY_DIR}/bin")
        if(arg_MOCK_BUS)
            list(PREPEND prefix umockdev-wrapper "${PROJECT_BINARY_DIR}/native/bin/quillon_mock_bus_host")
            list(APPEND prefix --bus)
        endif()
        if(arg_REPORT)
            list(APPEND prefix --test)
        endif()
        set(${result} ${prefix} PARENT_SCOPE)
        return()
    endif()
    if(arg_SPEED AND NOT QUILLON_FAKETIME AND NOT WIN32)
        message(FATAL_ERROR "Tests run at ${arg_SPEED} times the speed: install the package faketime")
    endif()
    set(wrapper "")
    if(arg_MOCK_BUS AND QUILLON_SANITIZE MATCHES "address|thread")
        quillon_preload(preload libumockdev-preload.so.0)
        list(APPEND arg_ENVIRONMENT "${preload}")
    elseif(arg_MOCK_BUS)
        set(wrapper umockdev-wrapper)
    elseif(arg_SPEED AND QUILLON_SANITIZE MATCHES "address")
        execute_process(COMMAND ${QUILLON_FAKETIME} -f +0 printenv LD_PRELOAD
            OUTPUT_VARIABLE clock OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
        quillon_preload(preload "${finer_waits}:${clock}")
        list(APPEND arg_ENVIRONMENT "${preload}" "FAKETIME=+0 x${arg_SPEED}")
    elseif(arg_SPEED AND NOT WIN32)
        list(APPEND arg_ENVIRONMENT "LD_PRELOAD=${finer_waits}")
        set(wrapper ${QUILLON_FAKETIME} -f "+0 x${arg_SPEED}")
    endif()
    set(${result} "${PROJECT_SOURCE_DIR}/tests/support/surroundings" "${QUILLON_TEST_FONTS}" "${QUILLON_TEST_SCREEN}"
        ${arg_ENVIRONMENT} ${wrapper} PARENT_SCOPE)
endfunction()

# quillon_limit_test(NAME seconds SPEED factor): how long the test may take in real time where that clock is to be had.
function(quillon_limit_test name seconds)
    cmake_parse_arguments(PARSE_ARGV 2 arg "" "SPEED" "")
    if(QUILLON_UNDER_WINE)
        math(EXPR seconds "${seconds} * 10")
    endif()
    set_tests_properties(${name} PROPERTIES TIMEOUT ${seconds})
    if(arg_SPEED AND QUILLON_UNDER_WINE)
        # The longest ones first, or the last of them would run alone.
        set_tests_properties(${name} PROPERTIES COST ${arg_SPEED})
    endif()
endfunction()

# A test runs once after it is built, and most of the time it waits: what a compiler takes longer for does not pay.
function(quillon_lighten_test target)
    target_compile_options(${target} PRIVATE $<$<AND:$<CONFIG:Release>,$<CXX_COMPILER_ID:GNU,Clang>>:-O1>)
endfunction()

function(quillon_test_program program)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LIBRARIES;LABELS")
    add_executable(${program} "${PROJECT_SOURCE_DIR}/tests/support/TestProgram.cpp")
    quillon_hygiene(${program})
    quillon_lighten_test(${program})
    target_link_libraries(${program} PRIVATE
        ${arg_LIBRARIES} quillon_test_support Qt6::Widgets Qt6::Network Qt6::Test)
    quillon_precompile(tests ${program})
    set_target_properties(${program} PROPERTIES QUILLON_TEST_LABELS "${arg_LABELS}")
endfunction()

# The program under another path: the panel looks for the flashing tool beside the executable, and tests run at the same time.
function(quillon_give_folder program folder)
    set(file "${folder}/$<TARGET_FILE_NAME:${program}>")
    add_custom_command(TARGET ${program} POST_BUILD
        COMMAND ${CMAKE_COMMAND} -E make_directory "${folder}"
        COMMAND ${CMAKE_COMMAND} -E rm -f "${file}"
        COMMAND ${CMAKE_COMMAND} -E create_hardlink "$<TARGET_FILE:${program}>" "${file}"
        VERBATIM)
endfunction()

function(quillon_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "MOCK_BUS;OWN_FOLDER" "PROGRAM;SPEED;TIMEOUT"
        "SOURCES;DEFINITIONS;ENVIRONMENT")
    if(NOT arg_SOURCES)
        set(arg_SOURCES tst_${name}.cpp)
    endif()
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 60)
    endif()
    target_sources(${arg_PROGRAM} PRIVATE ${arg_SOURCES})
    set_property(SOURCE ${arg_SOURCES} APPEND PROPERTY COMPILE_DEFINITIONS ${arg_DEFINITIONS})
    set(program "$<TARGET_FILE:${arg_PROGRAM}>")
    if(arg_OWN_FOLDER)
        quillon_give_folder(${arg_PROGRAM} "${CMAKE_CURRENT_BINARY_DIR}/${name}")
        set(program "${CMAKE_CURRENT_BINARY_DIR}/${name}/$<TARGET_FILE_NAME:${arg_PROGRAM}>")
    endif()

    set(options "")
    if(arg_MOCK_BUS)
        set(options MOCK_BUS)
    endif()
    quillon_run_prefix(prefix REPORT ${options} SPEED "${arg_SPEED}" ENVIRONMENT ${arg_ENVIRONMENT})
    add_test(NAME ${name} COMMAND ${prefix} "${program}" ${name})
    get_target_property(labels ${arg_PROGRAM} QUILLON_TEST_LABELS)
    set_tests_properties(${name} PROPERTIES LABELS "${labels}")
    quillon_limit_test(${name} ${arg_TIMEOUT} SPEED "${arg_SPEED}")
endfunction()
