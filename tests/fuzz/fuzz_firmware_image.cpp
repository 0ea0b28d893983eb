// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Hostile images: what the simulated chip finds in its flash. The first byte of an input says whether the
// digest in the header is made right, so that what is behind that check is reached.
#include "rig/FirmwareImage.h"
#include "rig/LittleEndian.h"
#include "tests/fuzz/Input.h"

#include <QCryptographicHash>

using namespace rig;
using fuzz::require;

namespace {

constexpr quint8 kRightDigest = 0x01;
constexpr int kLengthAt = 12;
constexpr int kDigestAt = 16;

QByteArray withRightDigest(QByteArray flash)
{
    if (flash.size() < kImageHeaderSize)
        return flash;
    const auto length = qsizetype(numberAt<quint32>(flash, kLengthAt));
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(QByteArrayView(flash).first(kDigestAt));
    hash.addData(flash.mid(kImageHeaderSize, length));
    const QByteArray digest = hash.result();
    return flash.replace(kDigestAt, digest.size(), digest);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const bool mends = input.takeByte() & kRightDigest;
    const QByteArray bytes = input.takeRest();
    const QByteArray flash = mends ? withRightDigest(bytes) : bytes;
    QString why;
    const auto image = readImage(flash, &why);
    require(readImage(flash).has_value() == image.has_value(), "nobody has to ask why");
    require(image.has_value() == why.isEmpty() && fuzz::isPlain(why), "a defect has a name");
    const qint64 told = imageSize(flash);
    require(told == 0 || told >= kImageHeaderSize, "an image has its header");
    require(!image || (told > 0 && told <= flash.size()), "an image that is read is there to its end");
    if (!image)
        return 0;
    require(!nameOf(image->model).isEmpty() && !nameOf(image->chip).isEmpty(),
            "an image is for a known chip");
    require(image->version.segmentCount() == 3, "a version has three parts");
    require(usualBodySize(image->chip) > 0, "an image has a usual size");
    require(readImage(flash + '\xFF').has_value(), "what follows an image is left alone");
    const auto built = readImage(buildImage(*image, 16));
    require(built && built->model == image->model && built->chip == image->chip
                && built->version == image->version,
            "an image that is built says the same");
    return 0;
}
