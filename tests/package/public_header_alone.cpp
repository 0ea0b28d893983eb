// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Nothing may have to be included before it.
#include <QuillonFirmwareUpgrade/FirmwareUpgradeWidget.h>

#include <type_traits>

namespace Q = QuillonFirmwareUpgrade;
using Panel = Q::FirmwareUpgradeWidget;

static_assert(std::is_base_of_v<QWidget, Panel>);
static_assert(std::is_default_constructible_v<Panel>);
static_assert(std::is_constructible_v<Panel, QWidget *>);
static_assert(!std::is_convertible_v<QWidget *, Panel>);
static_assert(std::is_same_v<decltype(&Panel::setDeviceModel), void (Panel::*)(Q::DeviceModel)>);
static_assert(std::is_same_v<decltype(&Panel::startAutoRecoverUpgrade), void (Panel::*)()>);
static_assert(std::is_same_v<decltype(&Panel::upgradeDisplayMsg), void (Panel::*)(QString, bool)>);
static_assert(std::is_same_v<decltype(&Panel::onDeviceBrickedDetected), void (Panel::*)()>);
static_assert(std::is_same_v<decltype(&Panel::r2otgConnected), void (Panel::*)()>);
static_assert(std::is_same_v<decltype(&Q::setLanguage), void (*)(Q::Language)>);
static_assert(std::is_same_v<decltype(&Q::getCurrentLanguage), Q::Language (*)()>);
static_assert(int(Q::DeviceModel::R1) == 0 && int(Q::DeviceModel::R2) == 1);
static_assert(int(Q::Language::Chinese) == 0 && int(Q::Language::English) == 1);
static_assert(int(Q::UpgradePlan::None) == 0 && int(Q::UpgradePlan::PcOnly) == 1
              && int(Q::UpgradePlan::OtgOnly) == 2 && int(Q::UpgradePlan::Both) == 3);
