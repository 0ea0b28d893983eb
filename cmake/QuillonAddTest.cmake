# quillon_add_test(NAME
#     SOURCES file...        default: tst_NAME.cpp
#     LIBRARIES target...    what the test links besides Qt Test and the support library
#     LABELS label...        for "ctest -L"
#     SPEED factor           the test and its children run with a clock this many times as fast
#     TIMEOUT seconds        in real time, default 60
#     ARGUMENTS word...      passed to the test
#     ENVIRONMENT NAME=value...
#     MOCK_BUS               sees the devices of tests/support/MockBus.h instead of this machine's
#     WHITE_BOX              may look at private members)
find_program(QUILLON_FAKETIME faketime)

# Windows programs run under Wine. The faster clock does not reach all that they wait for, so they take their time.
set(QUILLON_UNDER_WINE OFF)
if(WIN32 AND CMAKE_CROSSCOMPILING)
    set(QUILLON_UNDER_WINE ON)
endif()

# quillon_run_prefix(RESULT [SPEED factor] [REPORT]): the command prefix that runs a program of this build; with SPEED on
# a clock that runs factor times as fast for it and its children; with REPORT for a program of Qt Test.
function(quillon_run_prefix result)
    cmake_parse_arguments(PARSE_ARGV 1 arg "REPORT" "SPEED" "")
    if(arg_SPEED AND NOT QUILLON_FAKETIME AND NOT WIN32)
        message(FATAL_ERROR "Tests run at ${arg_SPEED} times the speed: install the package faketime")
    endif()
    set(prefix "")
    if(QUILLON_UNDER_WINE)
        set(prefix "${PROJECT_SOURCE_DIR}/cmake/mingw/wine-run" --prefix "${QUILLON_MINGW_PREFIX}"
            --path "${PROJECT_BINARY_DIR}/bin")
        if(arg_REPORT)
            list(APPEND prefix --test)
        endif()
    elseif(arg_SPEED AND QUILLON_SANITIZE MATCHES "address")
        # The address sanitizer has to be loaded first, or it finds no leak.
        execute_process(COMMAND ${QUILLON_FAKETIME} -f +0 printenv LD_PRELOAD
            OUTPUT_VARIABLE clock OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libasan.so
            OUTPUT_VARIABLE sanitizer OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
        set(prefix ${CMAKE_COMMAND} -E env "LD_PRELOAD=${sanitizer}:${clock}" "FAKETIME=+0 x${arg_SPEED}")
    elseif(arg_SPEED AND NOT WIN32)
        set(prefix ${QUILLON_FAKETIME} -f "+0 x${arg_SPEED}")
    endif()
    set(${result} ${prefix} PARENT_SCOPE)
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

# The command prefix for a program that shows itself mock devices.
function(quillon_mock_bus result)
    if(QUILLON_SANITIZE MATCHES "address")
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libasan.so
            OUTPUT_VARIABLE sanitizer OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
        set(${result} ${CMAKE_COMMAND} -E env "LD_PRELOAD=${sanitizer}:libumockdev-preload.so.0" PARENT_SCOPE)
    else()
        set(${result} umockdev-wrapper PARENT_SCOPE)
    endif()
endfunction()

function(quillon_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "MOCK_BUS;WHITE_BOX" "SPEED;TIMEOUT" "SOURCES;LIBRARIES;LABELS;ARGUMENTS;ENVIRONMENT")
    if(NOT arg_SOURCES)
        set(arg_SOURCES tst_${name}.cpp)
    endif()
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 60)
    endif()
    add_executable(tst_${name} ${arg_SOURCES})
    quillon_hygiene(tst_${name})
    target_link_libraries(tst_${name} PRIVATE ${arg_LIBRARIES} quillon_test_support Qt6::Test)
    if(arg_WHITE_BOX)
        target_compile_options(tst_${name} PRIVATE -fno-access-control)
    endif()

    if(arg_MOCK_BUS)
        quillon_mock_bus(prefix)
    else()
        quillon_run_prefix(prefix SPEED "${arg_SPEED}" REPORT)
    endif()
    add_test(NAME ${name} COMMAND ${prefix} $<TARGET_FILE:tst_${name}> ${arg_ARGUMENTS})
    set_tests_properties(${name} PROPERTIES LABELS "${arg_LABELS}"
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;${arg_ENVIRONMENT}")
    quillon_limit_test(${name} ${arg_TIMEOUT} SPEED "${arg_SPEED}")
endfunction()
