// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace publish {

/// A firmware that panels ask for: that of one chip of one model.
struct Project {
    QString model; ///< "R2"
    QString chip; ///< "pc" or "otg"
    QString name; ///< what the panel calls it when it asks for the version, "R2MCU"; its folder's name, too
};

/// All there are, as the panel's own table has them.
const QList<Project> &projects();

QStringList modelNames(); ///< each once
std::optional<Project> projectOf(const QString &model, const QString &chip); ///< in either case

} // namespace publish
