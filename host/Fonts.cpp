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

// Metrics near enough that the panel's fixed places hold: other Latin fonts of the kind are wider and cut its
// longest texts.
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
