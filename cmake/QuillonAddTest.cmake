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

# The command prefix that gives a program and its children a clock that runs factor times as fast.
function(quillon_fast_clock factor result)
    if(NOT QUILLON_FAKETIME)
        message(FATAL_ERROR "Tests run at ${factor} times the speed: install the package faketime")
    endif()
    if(NOT QUILLON_SANITIZE MATCHES "address")
        set(${result} ${QUILLON_FAKETIME} -f "+0 x${factor}" PARENT_SCOPE)
        return()
    endif()
    # The address sanitizer has to be loaded first, or it finds no leak.
    execute_process(COMMAND ${QUILLON_FAKETIME} -f +0 printenv LD_PRELOAD
        OUTPUT_VARIABLE clock OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libasan.so
        OUTPUT_VARIABLE sanitizer OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    set(${result} ${CMAKE_COMMAND} -E env "LD_PRELOAD=${sanitizer}:${clock}" "FAKETIME=+0 x${factor}" PARENT_SCOPE)
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

    set(command tst_${name} ${arg_ARGUMENTS})
    if(arg_SPEED)
        quillon_fast_clock(${arg_SPEED} prefix)
        set(command ${prefix} $<TARGET_FILE:tst_${name}> ${arg_ARGUMENTS})
    elseif(arg_MOCK_BUS)
        quillon_mock_bus(prefix)
        set(command ${prefix} $<TARGET_FILE:tst_${name}> ${arg_ARGUMENTS})
    endif()
    add_test(NAME ${name} COMMAND ${command})
    set_tests_properties(${name} PROPERTIES LABELS "${arg_LABELS}" TIMEOUT ${arg_TIMEOUT}
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;${arg_ENVIRONMENT}")
endfunction()
