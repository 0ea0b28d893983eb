#include "tests/support/TestProgram.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {
constexpr std::chrono::milliseconds kRenderLimit = 9min;
const QString kResources = QStringLiteral(QUILLON_RESOURCES);

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
} // namespace

/// What ships is what the sources in resources/art give, to the byte.
class TestRendering : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void givesEveryShippedPicture();
    void refusesAnUnknownPicture();

private:
    QString m_script = kResources + u"/art/render"_s;
};

void TestRendering::initTestCase()
{
    for (const char *tool : {"rsvg-convert", "convert", "gifsicle", "python3"}) {
        if (QStandardPaths::findExecutable(QLatin1String(tool)).isEmpty())
            QSKIP(qPrintable(QLatin1String(tool) + u" is not installed"_s));
    }
}

void TestRendering::givesEveryShippedPicture()
{
    const QTemporaryDir folder;
    QVERIFY(folder.isValid());
    QProcess render;
    render.start(m_script, {folder.path()});
    QVERIFY2(render.waitForFinished(int(kRenderLimit.count())), qPrintable(render.errorString()));
    QVERIFY2(render.exitStatus() == QProcess::NormalExit && render.exitCode() == 0,
             render.readAllStandardError().constData());

    const QDir shipped(kResources + u"/image"_s);
    const QStringList pictures = shipped.entryList(QDir::Files);
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), pictures);
    for (const QString &picture : pictures) {
        const QByteArray rendered = contentOf(folder.filePath(picture));
        QVERIFY2(!rendered.isEmpty(), qPrintable(picture));
        QVERIFY2(rendered == contentOf(shipped.filePath(picture)), qPrintable(picture + u" differs"_s));
    }
}

void TestRendering::refusesAnUnknownPicture()
{
    const QTemporaryDir folder;
    QProcess render;
    render.start(m_script, {folder.path(), u"unheard-of.png"_s});
    QVERIFY(render.waitForFinished());
    QVERIFY(render.exitCode() != 0);
    QVERIFY(render.readAllStandardError().contains("unheard-of.png"));
    QVERIFY(QDir(folder.path()).isEmpty());
}

QUILLON_TEST_CORE(TestRendering)
#include "tst_rendering.moc"
