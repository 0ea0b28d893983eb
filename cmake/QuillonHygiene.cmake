# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# Language level, warnings and Qt hygiene, the same for every target of this project.
# quillon_hygiene(TARGET...) applies them; nothing leaks into a project that adds this one.

function(quillon_hygiene)
    foreach(target IN LISTS ARGN)
        set_target_properties(${target} PROPERTIES
            CXX_STANDARD 17 CXX_STANDARD_REQUIRED ON CXX_EXTENSIONS OFF
            CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
            POSITION_INDEPENDENT_CODE ON
            AUTOMOC ON)
        target_compile_definitions(${target} PRIVATE
            QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_ASCII QT_NO_CAST_FROM_BYTEARRAY
            QT_NO_URL_CAST_FROM_STRING QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_NO_FOREACH
            QT_STRICT_ITERATORS QT_USE_QSTRINGBUILDER)
        # What Qt has marked for removal fails to compile. An older Qt still lacks what takes its place.
        if(Qt6_VERSION VERSION_GREATER_EQUAL 6.8)
            target_compile_definitions(${target} PRIVATE QT_DISABLE_DEPRECATED_UP_TO=0x060800)
        endif()
        target_compile_options(${target} PRIVATE
            $<$<CXX_COMPILER_ID:GNU,Clang>:-Wall -Wextra -Wpedantic>
            $<$<AND:$<BOOL:${QUILLON_WARNINGS_AS_ERRORS}>,$<CXX_COMPILER_ID:GNU,Clang>>:-Werror>)
        # GCC keeps values in registers that its own copy of an inline function leaves alone. On Windows the linker may
        # take another file's copy, which does not.
        if(MINGW)
            target_compile_options(${target} PRIVATE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fno-ipa-ra>)
        endif()
        if(QUILLON_SANITIZE)
            # Undefined behaviour that is only reported would fail no test.
            target_compile_options(${target} PRIVATE -fsanitize=${QUILLON_SANITIZE} -fno-sanitize-recover=all
                -fno-omit-frame-pointer)
            target_link_options(${target} PRIVATE -fsanitize=${QUILLON_SANITIZE})
        endif()
    endforeach()
endfunction()
