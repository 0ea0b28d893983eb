// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/panel/PanelStage.h"
#include "widgets/ClickableProgressBar.h"

#include <QLabel>
#include <QPushButton>
#include <QTextEdit>

#include <functional>
#include <utility>

/// What setupUI() makes, widget by widget.
namespace WidgetTable {

using Find = std::function<QWidget *(const OpenPanel &)>;
inline const QString kImages = QStringLiteral(":/new/prefix1/image/");
inline const QRect kPlacedLater;

/// One child widget as it leaves setupUI().
struct Row {
    Row() = default;
    Row(const char *rowName, Find finder, const QString &parentName, const char *rowClass,
        const QRect &geometry, const QString &styleSheet, bool isHidden = false, const QString &words = {})
        : name(rowName)
        , find(std::move(finder))
        , parent(parentName)
        , className(rowClass)
        , place(geometry)
        , style(styleSheet)
        , hidden(isHidden)
        , text(words)
    {
    }

    Row withPicture(const char *file, const QSize &size) const
    {
        Row row = *this;
        row.picture = kImages + QLatin1String(file);
        row.pictureSize = size;
        return row;
    }
    Row aligned(Qt::Alignment newAlignment) const
    {
        Row row = *this;
        row.alignment = newAlignment;
        return row;
    }
    Row wrapped() const
    {
        Row row = *this;
        row.wraps = true;
        return row;
    }

    const char *name = nullptr;
    Find find;
    QString parent;
    const char *className = nullptr;
    QRect place;
    QString style;
    bool hidden = false;
    QString text;
    QString picture;
    QSize pictureSize;
    Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter;
    bool wraps = false;
};

inline const QString kPanel = QStringLiteral("FirmwareUpgradeWidget");
inline const QString kCard = QStringLiteral("verCompLb");
inline const QString kBar = QStringLiteral("m_progressBar");

inline const QString kTransparent = QStringLiteral("QLabel{background: transparent; border: none;}");
inline const QString kLine
    = QStringLiteral("border:0px; border-radius:0px; background-color:rgba(255, 255, 255, 0.2);");

inline QWidget *cardChild(const OpenPanel &panel, int index)
{
    return qobject_cast<QWidget *>(panel.card()->children().value(index));
}

/// The widgets of one parent stand in their order of creation.
inline QList<Row> rows()
{
    return {
        Row{"m_titleLabel",
            &OpenPanel::title,
            kPanel,
            "QLabel",
            {24, 16, 130, 19},
            QStringLiteral("QLabel{border:0px; color:rgba(255,255,255,1); font-size:14px; font-weight:700; "
                           "letter-spacing:0px; text-align:left;}"),
            false,
            QStringLiteral("固件升级")},
        Row{"m_closeBtn",
            &OpenPanel::closeButton,
            kPanel,
            "QPushButton",
            {436, 12, 24, 24},
            QStringLiteral(
                "QPushButton{border:0px; image:url(:/new/prefix1/image/close.png);}QPushButton:hover{ "
                "image:url(:/new/prefix1/image/close_h.png)}")},
        Row{"verCompLb",
            &OpenPanel::card,
            kPanel,
            "QLabel",
            {32, 55, 408, 80},
            QStringLiteral("border:0px; border-radius:4px; background-color:rgba(48, 49, 60, 1);")},
        Row{"cardAccentLb",
            [](const OpenPanel &panel) { return cardChild(panel, 0); },
            kCard,
            "QLabel",
            {0, 0, 4, 80},
            kTransparent}
            .withPicture("blue_rect.png", {4, 80}),
        Row{"cardDividerLb",
            [](const OpenPanel &panel) { return cardChild(panel, 1); },
            kCard,
            "QLabel",
            {187, 20, 1, 40},
            kLine},
        Row{"m_noNewFirmwareLb",
            &OpenPanel::noNewFirmware,
            kCard,
            "QLabel",
            {24, 29, 150, 21},
            QStringLiteral(
                "QLabel{border:0px; color:rgba(255,255,255,0.7); font-size:16px; font-weight:400;}"),
            true,
            QStringLiteral("无新版固件")}
            .wrapped(),
        Row{"m_newVerTitleLb",
            &OpenPanel::newVersionTitle,
            kCard,
            "QLabel",
            {24, 16, 42, 19},
            QStringLiteral("QLabel{border:0px; color:rgba(255,255,255,1); font-size:14px; font-weight:400;}"),
            true,
            QStringLiteral("新版本")},
        Row{"m_newVerDotLb", &OpenPanel::newVersionDot, kCard, "QLabel", {24, 47, 9, 9}, {}, true}
            .withPicture("green_circle.png", {9, 9}),
        Row{"m_newVerLb",
            &OpenPanel::newVersion,
            kCard,
            "QLabel",
            {39, 38, 80, 26},
            QStringLiteral("QLabel{border:0px; color:rgba(47,212,179,1); font-family:\"Microsoft YaHei\"; "
                           "font-size:20px; font-weight:700;}"),
            true,
            QStringLiteral("--")},
        Row{"m_curVerTitleLb",
            &OpenPanel::currentVersionTitle,
            kCard,
            "QLabel",
            {207, 16, 56, 19},
            QStringLiteral("QLabel{border:0px; color:rgba(255,255,255,0.7); font-size:14px; font-weight:400; "
                           "letter-spacing:0px; text-align:left;}"),
            false,
            QStringLiteral("当前版本")},
        Row{"m_curVerLb",
            &OpenPanel::currentVersion,
            kCard,
            "QLabel",
            {208, 42, 55, 19},
            QStringLiteral("QLabel{border:0px; color:rgba(255,255,255,1); font-family:\"Microsoft YaHei\"; "
                           "font-size:14px; font-weight:400; letter-spacing:0px; text-align:left;}"),
            false,
            QStringLiteral("--")},
        Row{"m_notesIconLb", &OpenPanel::notesIcon, kPanel, "QLabel", {32, 160, 20, 20}, kTransparent}
            .withPicture("book.png", {20, 20}),
        Row{"m_notesTitleLb",
            &OpenPanel::notesTitle,
            kPanel,
            "QLabel",
            {60, 159, 64, 21},
            QStringLiteral("QLabel{border:0px; color:rgba(255,255,255,1); font-family:\"Microsoft YaHei\"; "
                           "font-size:16px; font-weight:700; letter-spacing:0px; text-align:left;}"),
            false,
            QStringLiteral("新版概述")},
        Row{"m_notesLineLb", &OpenPanel::notesLine, kPanel, "QLabel", {32, 192, 408, 1}, kLine},
        Row{"m_notesEdit",
            &OpenPanel::notes,
            kPanel,
            "QTextEdit",
            {32, 204, 428, 119},
            QStringLiteral("QTextEdit {  border: none;  background: transparent;  color: rgba(255, 255, 255, "
                           "0.7);  font-family: 'Microsoft YaHei';  font-size: 14px;  font-weight: 400;  "
                           "letter-spacing: 0px;}QScrollBar:vertical {  background: transparent;  width: "
                           "5px;  margin: 0px;  border: none;}QScrollBar::handle:vertical {  background: "
                           "rgba(255,255,255,0.15);  width: 5px;  min-height: 60px;  max-height: 60px;  "
                           "border-radius: 2.4px;  border: none;}QScrollBar::handle:vertical:hover {  "
                           "background: rgba(255,255,255,0.5);}QScrollBar::handle:vertical:pressed {  "
                           "background: rgba(255,255,255,0.7);}QScrollBar::add-line:vertical {  height: 0px; "
                           " border: none;}QScrollBar::sub-line:vertical {  height: 0px;  border: "
                           "none;}QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical {  "
                           "background: transparent;  border: none;}"),
            false,
            QStringLiteral("--")},
        Row{"m_progressBar", &OpenPanel::bar, kPanel, "ClickableProgressBar", {32, 346, 408, 48}, {}},
        Row{"m_rocketLb", &OpenPanel::rocket, kBar, "QLabel", {158, 14, 20, 20}, kTransparent, true}
            .withPicture("rocket.png", {20, 20}),
        Row{"m_upgradeTextLb",
            &OpenPanel::upgradeText,
            kBar,
            "QLabel",
            {186, 13, 64, 21},
            QStringLiteral("QLabel{border:0px; color:rgba(255,255,255,0.5); font-size:16px; font-weight:700; "
                           "letter-spacing:0px; text-align:center;}"),
            true,
            QStringLiteral("立即升级")},
        Row{"m_tooOldLb",
            &OpenPanel::tooOldText,
            kBar,
            "QLabel",
            {0, 0, 408, 48},
            QStringLiteral("QLabel{border:0px; color:rgba(255,255,255,1); font-family:\"Microsoft YaHei\"; "
                           "font-size:16px; font-weight:700;}"),
            true,
            QStringLiteral("固件版本过低，无法升级")}
            .aligned(Qt::AlignCenter),
        Row{"upgradeProgDisPlay",
            &OpenPanel::percentText,
            kPanel,
            "QLabel",
            {218, 323, 38, 19},
            QStringLiteral("QLabel{border:0px; color:rgba(255,255,255,1); font-size:14px; font-weight:400; "
                           "letter-spacing:0px; text-align:center;}")},
        Row{"m_waitingIconLb", &OpenPanel::waitingIcon, kBar, "QLabel", {101, 12, 24, 24}, kTransparent, true}
            .withPicture("waitting.png", {24, 24}),
        Row{"m_upgradingLb",
            &OpenPanel::waitingText,
            kBar,
            "QLabel",
            {133, 13, 174, 21},
            QStringLiteral(
                "QLabel{border:0px; color:rgba(255,255,255,0.85); font-family:\"Microsoft YaHei\"; "
                "font-size:16px; font-weight:700; letter-spacing:0px; text-align:center;}"),
            true,
            QStringLiteral("升级中，请勿关闭设备...")},
        Row{"m_doneIconLb", &OpenPanel::doneIcon, kBar, "QLabel", {156, 12, 24, 24}, kTransparent, true}
            .withPicture("check_mark.png", {24, 24}),
        Row{"m_doneLb",
            &OpenPanel::doneText,
            kBar,
            "QLabel",
            {188, 13, 64, 21},
            QStringLiteral("QLabel{border:0px; color:rgba(255,255,255,1); font-family:\"Microsoft YaHei\"; "
                           "font-size:16px; font-weight:700; letter-spacing:0px; text-align:center;}"),
            true,
            QStringLiteral("升级完成")},
        Row{"tipMoiveLb", &OpenPanel::animation, kPanel, "QLabel", {32, 59, 408, 128}, kTransparent, true},
        Row{"m_detectingUsbLb",
            &OpenPanel::detectingText,
            kPanel,
            "QLabel",
            {122, 203, 229, 21},
            QStringLiteral("QLabel{border:0px; color:rgba(246,180,54,1); font-size:16px; font-weight:700; "
                           "letter-spacing:0px;}"),
            true,
            QStringLiteral("正在检测USB接入...")}
            .aligned(Qt::AlignCenter),
        Row{"m_connectHintLb",
            &OpenPanel::cableHint,
            kPanel,
            "QLabel",
            {59, 232, 352, 57},
            QStringLiteral("QLabel{border:0px; color:rgba(255,255,255,0.7); font-size:14px; font-weight:400; "
                           "letter-spacing:0px;}"),
            true,
            QStringLiteral("请使用配件附带USB线接入图示DC-5V和USB-C口，\n开始固件升级。")}
            .aligned(Qt::AlignHCenter | Qt::AlignTop)
            .wrapped(),
        Row{"m_failIconLb", &OpenPanel::failureIcon, kPanel, "QLabel", {95, 317, 24, 24}, kTransparent, true}
            .withPicture("exclamation_mark.png", {24, 24}),
        Row{"m_failTextLb",
            &OpenPanel::failureText,
            kPanel,
            "QLabel",
            {122, 319, 256, 19},
            QStringLiteral("QLabel{border:0px; color:rgba(248,74,75,1); font-size:14px; font-weight:700; "
                           "letter-spacing:0px; text-align:center;}"),
            true,
            QStringLiteral("升级失败！请拔插设备后重新开始升级")}
            .aligned(Qt::AlignCenter),
        Row{"m_offlineToolTipLb", &OpenPanel::offlineToolTip, kPanel, "QLabel", kPlacedLater,
            QStringLiteral("QLabel{border:0px; color:rgba(255,255,255,1); font-family:\"Microsoft YaHei\"; "
                           "font-size:14px; font-weight:700;}"),
            true, QStringLiteral("需使用离线升级工具进行更新，")},
        Row{"m_offlineToolIconLb", &OpenPanel::offlineToolIcon, kPanel, "QLabel", kPlacedLater, kTransparent,
            true}
            .withPicture("exclamation_mark.png", {24, 24}),
        Row{"m_offlineToolLinkLb", &OpenPanel::offlineToolLink, kPanel, "QLabel", kPlacedLater,
            QStringLiteral("QLabel{border:0px; font-family:\"Microsoft YaHei\"; font-size:14px;}"), true,
            QStringLiteral("<a style='color:rgba(87,110,246,1); text-decoration:none; font-weight:700;' "
                           "href='" QUILLON_DOWNLOAD_HOST
                           "/limit/R1_R2%20Firmware%20Upgrade%20Tool.exe'>前往官网下载>></a>")},
    };
}

} // namespace WidgetTable

Q_DECLARE_METATYPE(WidgetTable::Row)
