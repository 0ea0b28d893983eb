// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "panel/LanguageTable.h"

#include <QString>

class QWidget;

/// The style sheets of the panel's children. Where a style names a font family, it is that of the language
/// shown.
namespace QuillonFirmwareUpgrade::Styles {

/// A label's rule, property by property in this order; what is empty or false is left out.
struct LabelStyle {
    const char *color; ///< "R,G,B,A" with A from 0 to 1
    bool namesFamily;
    int sizePx;
    int weight;
    bool letterSpacing;
    const char *textAlign;
};

// clang-format off
//                                         colour             family  px  weight spacing align
constexpr LabelStyle kTitle          {"255,255,255,1",    false, 14, 700, true,  "left"};
constexpr LabelStyle kNoNewFirmware  {"255,255,255,0.7",  false, 16, 400, false, nullptr};
constexpr LabelStyle kNewVersionTitle{"255,255,255,1",    false, 14, 400, false, nullptr};
constexpr LabelStyle kNewVersion     {"47,212,179,1",     true,  20, 700, false, nullptr};
constexpr LabelStyle kCurrentTitle   {"255,255,255,0.7",  false, 14, 400, true,  "left"};
constexpr LabelStyle kCurrentVersion {"255,255,255,1",    true,  14, 400, true,  "left"};
constexpr LabelStyle kNotesTitle     {"255,255,255,1",    true,  16, 700, true,  "left"};
constexpr LabelStyle kBarAtStart     {"255,255,255,0.5",  false, 16, 700, true,  "center"};
constexpr LabelStyle kBarReady       {"255,255,255,1",    true,  16, 700, true,  "center"};
constexpr LabelStyle kBarDimmed      {"255,255,255,0.5",  true,  16, 700, true,  "center"};
constexpr LabelStyle kTooOld         {"255,255,255,1",    true,  16, 700, false, nullptr};
constexpr LabelStyle kPercent        {"255,255,255,1",    false, 14, 400, true,  "center"};
constexpr LabelStyle kUpgrading      {"255,255,255,0.85", true,  16, 700, true,  "center"};
constexpr LabelStyle kDone           {"255,255,255,1",    true,  16, 700, true,  "center"};
constexpr LabelStyle kDetecting      {"246,180,54,1",     false, 16, 700, true,  nullptr};
constexpr LabelStyle kConnectHint    {"255,255,255,0.7",  false, 14, 400, true,  nullptr};
constexpr LabelStyle kFailure        {"248,74,75,1",      false, 14, 700, true,  "center"};
constexpr LabelStyle kOfflineTool    {"255,255,255,1",    true,  14, 700, false, nullptr};
// clang-format on

/// The style sheet of \a style with \a family where it names one.
QString label(const LabelStyle &style, const QString &family = sourceLanguage().family);

/// The bar's text while it offers the retry.
QString retryText(const QString &family);
QString offlineToolLink(const QString &family);
QString notes(const QString &family);

/// Has \a widget follow \a style. One that follows it already is left alone: to read a style sheet and to
/// lay the widget out again costs as much as to create it.
void give(QWidget &widget, const QString &style);

inline const QString kTransparent = QStringLiteral("QLabel{background: transparent; border: none;}");
inline const QString kLine
    = QStringLiteral("border:0px; border-radius:0px; background-color:rgba(255, 255, 255, 0.2);");
inline const QString kCard
    = QStringLiteral("border:0px; border-radius:4px; background-color:rgba(48, 49, 60, 1);");
inline const QString kCloseButton
    = QStringLiteral("QPushButton{border:0px; image:url(:/new/prefix1/image/close.png);}"
                     "QPushButton:hover{ image:url(:/new/prefix1/image/close_h.png)}");
/// A box over the panel looks like a part of it.
inline const QString kWarningBox = QStringLiteral(
    "QMessageBox{background-color:rgba(48, 49, 60, 1); border:1px solid rgba(94, 96, 112, 1); "
    "border-radius:8px;"
    " messagebox-warning-icon:url(:/new/prefix1/image/exclamation_mark.png); icon-size:36px;}"
    "QLabel{color:rgba(255,255,255,1); font-size:14px;}"
    "#qt_msgbox_label{qproperty-alignment:AlignVCenter; min-height:36px;}"
    "QPushButton{border:2px solid transparent; border-radius:16px; min-width:96px; height:28px;"
    " background-color:rgba(87,110,246,1); color:rgba(255,255,255,1); font-size:16px; font-weight:700;}"
    "QPushButton:focus{border-color:rgba(255,255,255,1);}"
    "QPushButton:hover{background-color:rgba(73, 92, 214, 1);}");

} // namespace QuillonFirmwareUpgrade::Styles
