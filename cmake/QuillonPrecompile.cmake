# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# quillon_precompile(core|windows|tests TARGET...): the headers of Qt that most files of these targets include are read once
# for all of them. A file still names every header that it uses: where CMAKE_DISABLE_PRECOMPILE_HEADERS is set nothing of
# this remains.
#
# "core" is for targets without windows, "windows" for those with, "tests" for those with Qt Test. The headers are only as
# good as the flags they were compiled with, so a target chooses by what it links.
set(QUILLON_PRECOMPILED_HEADERS_core QByteArray QCoreApplication QDebug QDir QElapsedTimer QFile QFileInfo QHash
    QJsonArray QJsonDocument QJsonObject QList QMutex QMutexLocker QObject QPointer QProcess QString QStringList QTimer QUrl
    chrono functional memory mutex)
set(QUILLON_PRECOMPILED_HEADERS_windows ${QUILLON_PRECOMPILED_HEADERS_core}
    QApplication QLabel QMouseEvent QMovie QPainter QPushButton QTextEdit QWidget)
set(QUILLON_PRECOMPILED_HEADERS_tests ${QUILLON_PRECOMPILED_HEADERS_windows} QTest QSignalSpy QTemporaryDir)
set(QUILLON_PRECOMPILED_LIBRARIES_core Qt6::Core)
set(QUILLON_PRECOMPILED_LIBRARIES_windows Qt6::Widgets)
set(QUILLON_PRECOMPILED_LIBRARIES_tests Qt6::Widgets Qt6::Network Qt6::Test)

# The target that holds the headers of a kind, made when first asked for.
function(quillon_precompiled_headers kind)
    set(target quillon_${kind}_headers)
    if(TARGET ${target})
        return()
    endif()
    file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/precompiled/${kind}.cpp" CONTENT "// Takes the headers that other targets share.\n")
    add_library(${target} OBJECT EXCLUDE_FROM_ALL "${PROJECT_BINARY_DIR}/precompiled/${kind}.cpp")
    quillon_hygiene(${target})
    set_target_properties(${target} PROPERTIES AUTOMOC OFF)
    if(kind STREQUAL "tests")
        quillon_lighten_test(${target})
    endif()
    target_link_libraries(${target} PRIVATE ${QUILLON_PRECOMPILED_LIBRARIES_${kind}})
    list(TRANSFORM QUILLON_PRECOMPILED_HEADERS_${kind} REPLACE "(.+)" "<\\1>" OUTPUT_VARIABLE headers)
    target_precompile_headers(${target} PRIVATE ${headers})
endfunction()

function(quillon_precompile kind)
    quillon_precompiled_headers(${kind})
    foreach(target IN LISTS ARGN)
        target_precompile_headers(${target} REUSE_FROM quillon_${kind}_headers)
        if(NOT WIN32)
            # A program is compiled with -fPIE otherwise, and the headers were not.
            target_compile_options(${target} PRIVATE -fPIC)
        endif()
    endforeach()
endfunction()
