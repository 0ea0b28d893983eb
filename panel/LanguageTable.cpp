// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "panel/LanguageTable.h"

#include <array>

namespace QuillonFirmwareUpgrade {

namespace {
const std::array<LanguageRow, kLanguages> &languageRows()
{
    static const std::array<LanguageRow, kLanguages> rows{{
        {Language::Chinese, "Chinese", QStringLiteral("Microsoft YaHei"), QString(),
         &networking_class::f_remark, QStringLiteral("关闭"), QStringLiteral("确定")},
        {Language::English, "English", QStringLiteral("Segoe UI"),
         QStringLiteral(":/QUILLON/Translate/QuillonFirmwareUpgrade_en.qm"), &networking_class::f_remark_en,
         QStringLiteral("Close"), QStringLiteral("OK")},
    }};
    return rows;
}
} // namespace

const LanguageRow &rowOf(Language language)
{
    for (const LanguageRow &row : languageRows()) {
        if (row.language == language)
            return row;
    }
    return rowOf(Language::English);
}

const LanguageRow &sourceLanguage()
{
    return rowOf(Language::Chinese);
}

} // namespace QuillonFirmwareUpgrade
