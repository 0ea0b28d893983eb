// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/FirmwareImage.h"

#include "rig/LittleEndian.h"

#include <QCryptographicHash>

#include <algorithm>

namespace rig {

namespace {

// Header, little-endian: mark (4), model (1), chip (1), version (3 x 2), body length (4), SHA-256 (32),
// zeros.
constexpr char kMark[] = "QFW1";
constexpr int kModelAt = 4;
constexpr int kChipAt = 5;
constexpr int kVersionAt = 6;
constexpr int kLengthAt = 12;
constexpr int kDigestAt = 16;
constexpr int kDigestSize = 32;

constexpr int kPcBodySize = 96 * 1024;
constexpr int kOtgBodySize = 64 * 1024;

// A linear congruential sequence: looks like code to a compressor, and is the same on every machine.
QByteArray makeBody(quint32 seed, int size)
{
    QByteArray body(size, Qt::Uninitialized);
    for (char &byte : body) {
        seed = seed * 1664525u + 1013904223u;
        byte = char(seed >> 24);
    }
    return body;
}

QByteArray digestOf(const QByteArray &image)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(QByteArrayView(image).first(kDigestAt));
    hash.addData(QByteArrayView(image).sliced(kImageHeaderSize));
    return hash.result();
}

bool isForKnownDevice(const QByteArray &flash)
{
    const QList<ChipIdentity> &all = allIdentities();
    return std::any_of(all.begin(), all.end(), [&flash](const ChipIdentity &identity) {
        return identity.model == Model(flash.at(kModelAt)) && identity.chip == Chip(flash.at(kChipAt));
    });
}

QString defectOf(const QByteArray &flash)
{
    if (flash.size() < kImageHeaderSize)
        return QStringLiteral("shorter than a header");
    if (!flash.startsWith(kMark))
        return QStringLiteral("no firmware image");
    if (!isForKnownDevice(flash))
        return QStringLiteral("made for an unknown device");
    const quint32 length = numberAt<quint32>(flash, kLengthAt);
    if (length > quint32(flash.size() - kImageHeaderSize))
        return QStringLiteral("shorter than its header says");
    const QByteArray image = flash.first(kImageHeaderSize + int(length));
    if (image.sliced(kDigestAt, kDigestSize) != digestOf(image))
        return QStringLiteral("damaged");
    return {};
}

} // namespace

int usualBodySize(Chip chip)
{
    return chip == Chip::Pc ? kPcBodySize : kOtgBodySize;
}

QByteArray buildImage(const ImageInfo &info, int bodySize)
{
    QByteArray image(kImageHeaderSize, '\0');
    image.replace(0, kModelAt, kMark);
    image[kModelAt] = char(info.model);
    image[kChipAt] = char(info.chip);
    auto seed = quint32(identityOf(info.model, info.chip).imageNumber);
    for (int part = 0; part < 3; ++part) {
        const auto number = quint16(info.version.segmentAt(part));
        image.replace(kVersionAt + part * 2, 2, bytesOf(number));
        seed = seed * 65599u + number;
    }
    const int size = bodySize < 0 ? usualBodySize(info.chip) : bodySize;
    image.replace(kLengthAt, 4, bytesOf(quint32(size)));
    image += makeBody(seed, size);
    image.replace(kDigestAt, kDigestSize, digestOf(image));
    return image;
}

std::optional<ImageInfo> readImage(const QByteArray &flash, QString *why)
{
    const QString defect = defectOf(flash);
    if (why)
        *why = defect;
    if (!defect.isEmpty())
        return {};
    const auto part = [&flash](int index) { return int(numberAt<quint16>(flash, kVersionAt + index * 2)); };
    return ImageInfo{Model(flash.at(kModelAt)), Chip(flash.at(kChipAt)),
                     QVersionNumber(part(0), part(1), part(2))};
}

qint64 imageSize(const QByteArray &flash)
{
    if (flash.size() < kImageHeaderSize || !flash.startsWith(kMark))
        return 0;
    return kImageHeaderSize + qint64(numberAt<quint32>(flash, kLengthAt));
}

QByteArray sha256(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
}

} // namespace rig
