// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QtGlobal>

/// Every text that the panel shows in the source language, but for those that differ between the models: they
/// are in device/ModelTable.cpp. The English ones are in the translation catalogue, whose keys these texts
/// are, byte for byte. FirmwareUpgradeWidget::tr() translates them.
#define QUILLON_TEXT(text) QT_TRANSLATE_NOOP("QuillonFirmwareUpgrade::FirmwareUpgradeWidget", text)

namespace QuillonFirmwareUpgrade::Texts {

constexpr const char *kTitle = QUILLON_TEXT("固件升级");
constexpr const char *kUnknown = QUILLON_TEXT("--");
constexpr const char *kUpToDate = QUILLON_TEXT("无新版固件");
constexpr const char *kNewVersion = QUILLON_TEXT("新版本");
constexpr const char *kCurrentVersion = QUILLON_TEXT("当前版本");
constexpr const char *kNotesTitle = QUILLON_TEXT("新版概述");

constexpr const char *kUpgradeNow = QUILLON_TEXT("立即升级");
constexpr const char *kRetry = QUILLON_TEXT("我已拔插设备，重新升级");
constexpr const char *kWaitingForCable = QUILLON_TEXT("待USB线接入图示口...");
constexpr const char *kUpgrading = QUILLON_TEXT("升级中，请勿关闭设备...");
constexpr const char *kDone = QUILLON_TEXT("升级完成");
constexpr const char *kFailed = QUILLON_TEXT("升级失败！请拔插设备后重新开始升级");

constexpr const char *kDetectingUsb = QUILLON_TEXT("正在检测USB接入...");
constexpr const char *kDetectingOtg = QUILLON_TEXT("正在检测OTG接入...");

constexpr const char *kTooOld = QUILLON_TEXT("固件版本过低，无法升级");
constexpr const char *kUseOfflineTool = QUILLON_TEXT("需使用离线升级工具进行更新，");
constexpr const char *kDownloadOfflineTool = QUILLON_TEXT("前往官网下载>>");

} // namespace QuillonFirmwareUpgrade::Texts
