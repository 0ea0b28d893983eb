// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "net/networking_class.h"
#include "panel/FirmwareUpgradeWidget.h"

namespace QuillonFirmwareUpgrade {

/// How many languages there are: so many rows in the table, and so many columns in panel/Places.h.
constexpr int kLanguages = 2;

/// Everything that differs between the languages, but for the texts, which are in the catalogue, and for the
/// places in panel/Places.h.
struct LanguageRow {
    Language language;
    const char *name; ///< as log lines name it
    QString family; ///< the font family of its texts
    QString catalogue; ///< the resource with its texts; empty for the source language
    QString networking_class::*notes; ///< the release notes, as the update server's client keeps them
    QString closeButton; ///< what a screen reader calls the close button, which shows a picture only
    QString okButton; ///< what stands on the warning box's
};

/// The row of \a language; a value that is no language gets the row of English.
const LanguageRow &rowOf(Language language);

/// The language in which the texts stand in the source code.
const LanguageRow &sourceLanguage();

} // namespace QuillonFirmwareUpgrade
