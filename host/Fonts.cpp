#include "host/Fonts.h"

#include <QFont>
#include <QFontDatabase>

namespace host {

namespace {
struct Substitution {
    const char *family;
    const char *substitute;
};

// Metrics near enough that the panel's fixed places hold.
constexpr Substitution kSubstitutions[]{
    {"Microsoft YaHei", "Noto Sans CJK SC"},
    {"Segoe UI", "Open Sans"},
};
} // namespace

void substituteMissingFonts()
{
    for (const Substitution &row : kSubstitutions) {
        const QString family = QLatin1StringView(row.family);
        if (!QFontDatabase::hasFamily(family))
            QFont::insertSubstitution(family, QLatin1StringView(row.substitute));
    }
}

} // namespace host
