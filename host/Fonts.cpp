// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/Fonts.h"

#include <QFont>
#include <QFontDatabase>
#include <QStringList>

namespace host {

namespace {
struct Substitution {
    const char *family;
    const char *substitute;
};

// Metrics near enough that the panel's fixed places hold: regular texts come out as wide as in Segoe UI, bold
// ones 4 to 9 % narrower. Other Latin fonts of the kind are wider and cut the longest texts.
constexpr Substitution kSubstitutions[]{
    {"Microsoft YaHei", "Roboto"},
    {"Segoe UI", "Roboto"},
};
/// Writes what those cannot.
constexpr char kChinese[] = "Noto Sans CJK SC";
} // namespace

void substituteMissingFonts()
{
    for (const Substitution &row : kSubstitutions) {
        const QString family = QLatin1String(row.family);
        if (!QFontDatabase::hasFamily(family))
            QFont::insertSubstitutions(family, {QLatin1String(row.substitute), QLatin1String(kChinese)});
    }
}

} // namespace host
