// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What a download costs: 512 MiB over the loopback into a file, beside curl, in turns: the time, and the most
// memory that each process has held. The server is the same for both, and so is the way of looking at them.
#include "bench/Results.h"
#include "bench/SilencedPanel.h"
#include "net/networking_class.h"
#include "tests/support/ScriptedHttpServer.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QNetworkProxy>
#include <QProcess>
#include <QStandardPaths>
#include <QStringList>
#include <QTemporaryDir>
#include <QUrl>

#include <algorithm>
#include <cstdio>

namespace {
const QString kPath = QStringLiteral("/image.bin");
const QString kAddress = QStringLiteral("http://update.quillon.example") + kPath;
constexpr qint64 kPatienceMs = 120'000;

struct Cost {
    Samples seconds;
    Samples mebibytes;
};

/// A process's life as a downloader: "--download PORT FILE". Says how many seconds it took.
int download(const QStringList &arguments)
{
    silencePanel();
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), arguments.value(2).toUShort()));
    auto &client = *networking_class::getInstance();
    QEventLoop loop;
    QObject::connect(&client, &networking_class::network_finish_download, &loop, &QEventLoop::quit);
    QElapsedTimer time;
    time.start();
    client.downloadFile(QUrl(kAddress), arguments.value(3));
    loop.exec();
    std::printf("%f\n", double(time.nsecsElapsed()) / 1e9);
    return 0;
}

/// The most that the process has held; 0 once it is gone.
double peakMebibytes(qint64 process)
{
    QFile status(QStringLiteral("/proc/%1/status").arg(process));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).simplified().split(' ').first().toDouble() / 1024;
    }
    return 0;
}

void measure(const QString &program, const QStringList &arguments, const QString &file, qint64 size,
             Cost &cost)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    QElapsedTimer patience;
    patience.start();
    double peak = 0;
    while (!process.waitForFinished(5) && !patience.hasExpired(kPatienceMs))
        peak = std::max(peak, peakMebibytes(process.processId()));
    if (process.state() != QProcess::NotRunning || process.exitCode() != 0 || QFile(file).size() != size)
        giveUp("a download");
    QFile::remove(file);
    cost.seconds.values.append(process.readAll().toDouble());
    cost.mebibytes.values.append(peak);
}
} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QStringLiteral("--download"))
        return download(arguments);
    const Results results(arguments);
    const int mebibytes = results.count(512, 1);
    const qint64 size = qint64(mebibytes) * 1024 * 1024;
    ScriptedHttpServer server;
    server.answer(kPath, ScriptedHttpServer::page(QByteArray(size, 'x')));
    const QString port = QString::number(QNetworkProxy::applicationProxy().port());
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("image.bin"));
    const QString curl = QStandardPaths::findExecutable(QStringLiteral("curl"));
    const QStringList curlArguments{QStringLiteral("--silent"),
                                    QStringLiteral("--proxy"),
                                    QStringLiteral("http://127.0.0.1:") + port,
                                    QStringLiteral("--output"),
                                    file,
                                    QStringLiteral("--write-out"),
                                    QStringLiteral("%{time_total}"),
                                    kAddress};
    Cost ours;
    Cost peer;
    for (int turn = 0; turn < results.count(7, 1); ++turn) {
        measure(QCoreApplication::applicationFilePath(), {QStringLiteral("--download"), port, file}, file,
                size, ours);
        if (!curl.isEmpty())
            measure(curl, curlArguments, file, size, peer);
    }
    const QString what = QStringLiteral("download of %1 MiB: ").arg(mebibytes);
    const QString name = QStringLiteral("curl");
    results.add(
        {what + QStringLiteral("time"), QStringLiteral("s"), QString(), ours.seconds, name, peer.seconds});
    results.add({what + QStringLiteral("memory"), QStringLiteral("MiB"), QString(), ours.mebibytes, name,
                 peer.mebibytes});
    return 0;
}
