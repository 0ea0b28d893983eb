#pragma once

#include "panel/FirmwareUpgradeWidget.h"

class networking_class;

namespace QuillonFirmwareUpgrade {

/// Everything that differs between the languages, but for the texts, which are in the catalogue, and for the
/// places in panel/Places.h.
struct LanguageRow {
    Language language;
    const char *name; ///< as log lines name it
    QString family; ///< the font family of its texts
    QString catalogue; ///< the resource with its texts; empty for the source language
    QString networking_class::*notes; ///< the release notes, as the update server's client keeps them
    QString closeButton; ///< what a screen reader calls the close button, which shows a picture only
};

/// The row of \a language; a value that is no language gets the row of English.
const LanguageRow &rowOf(Language language);

/// The language in which the texts stand in the source code.
const LanguageRow &sourceLanguage();

} // namespace QuillonFirmwareUpgrade
