// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// quillon-rig-image MODEL CHIP VERSION FILE [SIZE]: writes the image that the rig's server would serve, or
// one with a body of SIZE bytes.
#include "rig/FirmwareImage.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>

namespace {

int refuse(const QString &why)
{
    std::fputs(QByteArray("quillon-rig-image: " + why.toLocal8Bit() + '\n').constData(), stderr);
    return 2;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments().mid(1);
    const auto model = rig::modelNamed(words.value(0));
    const auto chip = rig::chipNamed(words.value(1));
    const QVersionNumber version = QVersionNumber::fromString(words.value(2));
    if (!model || !chip || version.segmentCount() != 3 || words.size() < 4 || words.size() > 5)
        return refuse(QStringLiteral("MODEL CHIP VERSION FILE [SIZE]"));
    const QByteArray image
        = rig::buildImage({*model, *chip, version}, words.value(4, QStringLiteral("-1")).toInt());
    QFile file(words.at(3));
    if (!file.open(QIODevice::WriteOnly) || file.write(image) != image.size() || !file.flush())
        return refuse(words.at(3) + QStringLiteral(": ") + file.errorString());
    return 0;
}
