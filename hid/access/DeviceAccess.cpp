#include "hid/access/DeviceAccess.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#ifdef Q_OS_LINUX
#include "DevicePath.h"

#include <cerrno>

#include <unistd.h>
#endif

namespace DeviceAccess {

namespace {

/// The rules file that came with the program; else, in a build folder, the one of the tree.
QString rulesFile()
{
    const QFileInfo installed(QCoreApplication::applicationDirPath()
                              + QStringLiteral("/../lib/udev/rules.d/" QUILLON_UDEV_RULES_NAME));
    return installed.exists() ? installed.canonicalFilePath() : QStringLiteral(QUILLON_UDEV_RULES);
}

} // namespace

bool isDenied(const QString &path)
{
#ifdef Q_OS_LINUX
    const auto device = HIDCommunicator::DevicePath::fromString(path);
    return device && isFileDenied(QStringLiteral("/dev/") + device->node);
#else
    Q_UNUSED(path)
    return false;
#endif
}

bool isFileDenied(const QString &deviceFile)
{
#ifdef Q_OS_LINUX
    return access(QFile::encodeName(deviceFile).constData(), R_OK | W_OK) != 0
        && (errno == EACCES || errno == EPERM);
#else
    Q_UNUSED(deviceFile)
    return false;
#endif
}

QString hint()
{
#ifdef Q_OS_LINUX
    return QStringLiteral(
               "A device is plugged in that you have no permission to open. This command grants it for "
               "good:\n"
               "  sudo install -D -m 644 %1 /etc/udev/rules.d/" QUILLON_UDEV_RULES_NAME
               " && sudo udevadm control --reload && sudo udevadm trigger --subsystem-match=hidraw")
        .arg(shellWord(rulesFile()));
#else
    return {};
#endif
}

QString shellWord(const QString &path)
{
    static const QRegularExpression plain(QStringLiteral(R"(\A[A-Za-z0-9_./+@%,:=-]+\z)"));
    if (plain.match(path).hasMatch())
        return path;
    QString quoted = path;
    quoted.replace(u'\'', QStringLiteral(R"('\'')"));
    return u'\'' + quoted + u'\'';
}

} // namespace DeviceAccess
