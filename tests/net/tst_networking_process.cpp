// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "net/networking_class.h"
#include "tests/support/ScriptedHttpServer.h"
#include "tests/support/TestProgram.h"

#include <QElapsedTimer>
#include <QThread>
#include <QTimer>
#include <QtTest>

#include <array>
#include <atomic>
#include <memory>

/// The client's beginning and end, each of which a process has once.
class NetworkingProcessTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void manyThreadsAskingFirstGetOneInstance();
    void servesThisThreadWhoeverAskedFirst();
    void aQueryEndsWithTheApplication();
};

void NetworkingProcessTest::manyThreadsAskingFirstGetOneInstance()
{
    constexpr int kThreads = 8;
    std::atomic<int> ready{0};
    std::array<networking_class *, kThreads> found{};
    std::array<std::unique_ptr<QThread>, kThreads> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads[i].reset(QThread::create([&ready, &found, i] {
            ++ready;
            while (ready < kThreads)
                QThread::yieldCurrentThread();
            found[i] = networking_class::getInstance();
        }));
        threads[i]->start();
    }
    for (const auto &thread : threads)
        QVERIFY(thread->wait(10'000));
    for (networking_class *instance : found) {
        QVERIFY(instance);
        QCOMPARE(instance, networking_class::getInstance());
    }
}

void NetworkingProcessTest::servesThisThreadWhoeverAskedFirst()
{
    ScriptedHttpServer server;
    server.answer(QStringLiteral("/version"), ScriptedHttpServer::version("1.2.3"));
    QCOMPARE(networking_class::getInstance()->thread(), QThread::currentThread());
    QCOMPARE(
        networking_class::getInstance()->getVersion(QStringLiteral("http://update.quillon.example/version")),
        QStringLiteral("1.2.3"));
}

void NetworkingProcessTest::aQueryEndsWithTheApplication()
{
    ScriptedHttpServer server;
    server.answer(QStringLiteral("/silent"), ScriptedHttpServer::silence());
    QTimer::singleShot(0, [] { QCoreApplication::exit(); });
    QElapsedTimer time;
    time.start();
    QCOMPARE(
        networking_class::getInstance()->getVersion(QStringLiteral("http://update.quillon.example/silent")),
        QStringLiteral("104"));
    QVERIFY2(time.elapsed() < 1500, qPrintable(QString::number(time.elapsed())));
}

QUILLON_TEST_CORE(NetworkingProcessTest)
#include "tst_networking_process.moc"
