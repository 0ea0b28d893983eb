// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QApplication>
#include <QCoreApplication>
#include <QTest>

#include <type_traits>

/// Several test classes make one program, which plays the one that its first argument names:
///
///     tst_panel phases -v2 whatAFunctionIsCalled
///
/// A class in tst_phases.cpp goes by the name "phases" and says how it is played at the end of its file:
///
///     QUILLON_TEST(PhasesTest)          // with windows
///     QUILLON_TEST_CORE(PhasesTest)     // with an event loop only
///     #include "tst_phases.moc"
namespace TestProgram {

using Player = int (*)(int argc, char *argv[]);

/// Makes a class known before main() runs.
struct Entry {
    Entry(const char *sourceFile, Player player);
};

template <typename Application, typename TestClass> int play(int argc, char *argv[])
{
    Application application(argc, argv);
    // A point is as many pixels on every screen.
    if constexpr (std::is_base_of_v<QGuiApplication, Application>)
        QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    TestClass test;
    return QTest::qExec(&test, argc, argv);
}

} // namespace TestProgram

#define QUILLON_TEST(TestClass) QUILLON_TEST_IN(QApplication, TestClass)
#define QUILLON_TEST_CORE(TestClass) QUILLON_TEST_IN(QCoreApplication, TestClass)
#define QUILLON_TEST_IN(Application, TestClass)                                                              \
    static const TestProgram::Entry testEntry(__FILE__, &TestProgram::play<Application, TestClass>);
