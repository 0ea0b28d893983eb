// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/Identity.h"

#include <QByteArray>
#include <QString>
#include <QVersionNumber>

#include <optional>

namespace rig {

/// What the header of a firmware image says.
struct ImageInfo {
    Model model = Model::R2;
    Chip chip = Chip::Pc;
    QVersionNumber version; ///< three parts, each 0 to 65535
};

/// Firmware images as the server hands them out and the chips run them: a header of kImageHeaderSize bytes
/// (mark, model, chip, version, body length, SHA-256 over all the rest) and a body.
constexpr int kImageHeaderSize = 64;

/// How many bytes of body an ordinary image has.
int usualBodySize(Chip chip);

/// The same arguments always give the same bytes. \a bodySize below 0 means usualBodySize().
QByteArray buildImage(const ImageInfo &info, int bodySize = -1);

/// Reads and checks an image at the start of \a flash (what follows it is left alone). Nothing when it is no
/// complete, undamaged image; \a why, when given, then says what is wrong.
std::optional<ImageInfo> readImage(const QByteArray &flash, QString *why = nullptr);

/// How long the image is whose header stands at the start of \a flash, whether or not all of it is there; 0
/// without a header.
qint64 imageSize(const QByteArray &flash);

QByteArray sha256(const QByteArray &bytes); ///< lower-case hexadecimal

} // namespace rig
