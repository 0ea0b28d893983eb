// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Hostile HTTP: the bytes with which a server, or somebody on the wire, answers the update client. The first
// byte of an input says what the client asks for; the rest is the answer, its head included. Both ends are in
// this process, with a real connection between them.
#include "net/networking_class.h"
#include "tests/fuzz/Application.h"
#include "tests/fuzz/Files.h"
#include "tests/fuzz/OneAnswer.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QNetworkCookieJar>
#include <QNetworkReply>
#include <QUrl>

using fuzz::require;

namespace {

constexpr quint8 kDownload = 0x01;
constexpr quint8 kTwice = 0x02; ///< the download is given up for another one, at once
constexpr quint8 kNoFolder = 0x04; ///< its file is to lie where no folder is
constexpr quint8 kAtTheEnd = 0x08; ///< it is given up while the last of it is written
constexpr quint8 kUnheard = 0x10; ///< nobody waits for it any more
/// An answer may be packed; what a small one can be unpacked to.
constexpr qint64 kMostContent = qint64(16) * 1024 * 1024;

/// What lives as long as the process.
class Stage {
public:
    Stage()
        : m_client(*networking_class::getInstance())
    {
        m_client.manager->setProxy(m_server.proxy());
    }

    void play(quint8 request, const QByteArray &answer)
    {
        // Nothing of an earlier input may show in a later one.
        m_client.manager->setCookieJar(new QNetworkCookieJar);
        m_client.manager->clearAccessCache();
        m_server.setAnswer(answer);
        if (request & kDownload)
            download(request);
        else
            query();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        require(m_client.manager->findChildren<QNetworkReply *>().isEmpty(), "no reply is left behind");
    }

private:
    void query()
    {
        const QString version = m_client.getVersion(QStringLiteral("http://update.quillon.example/version"));
        require(networking_class::getInstance() == &m_client, "there is one client");
        require(version.size() < kMostContent, "a version has a limit");
        require(m_client.f_remark.size() + m_client.f_remark_en.size() < kMostContent, "and so have notes");
    }

    void download(quint8 manner)
    {
        static const QString file = fuzz::fileNamed("image.bin");
        static const QUrl address(QStringLiteral("http://update.quillon.example/image"));
        m_client.downloadFile(address, manner & kNoFolder ? file + QStringLiteral("/image.bin") : file);
        if (manner & kUnheard)
            m_client.giveUpUnheardDownload();
        if (manner & (kNoFolder | kUnheard))
            return require(!m_client.reply && !m_client.file, "a download without an end is none");
        if (manner & kTwice)
            m_client.downloadFile(address, file + u'2');
        if (manner & kAtTheEnd) {
            QObject::connect(m_client.reply, &QNetworkReply::finished, m_client.reply, [this] {
                if (m_client.reply)
                    m_client.downloadFile(address, m_client.fileName);
            });
        }
        awaitEnd();
        require(QFileInfo(m_client.fileName).size() < kMostContent, "an image has a limit");
        require(!m_client.file && !m_client.reply, "and is let go of");
        require(!(manner & kTwice) || !QFile::exists(file), "what was given up is removed");
        QFile::remove(m_client.fileName);
    }

    void awaitEnd()
    {
        int ends = 0;
        QEventLoop loop;
        QObject::connect(&m_client, &networking_class::network_finish_download, &loop, [&] {
            ++ends;
            loop.quit();
        });
        m_client.giveUpUnheardDownload(); // which it is not
        loop.exec();
        QCoreApplication::processEvents();
        require(ends == 1, "a download ends once");
    }

    networking_class &m_client;
    OneAnswer m_server;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::startApplication();
    static auto *const stage = new Stage; // never deleted: the process just ends
    fuzz::Input input(data, size);
    const quint8 request = input.takeByte();
    stage->play(request, input.takeRest());
    return 0;
}
