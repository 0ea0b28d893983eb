// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "panel/LanguageTable.h"

#include <QRect>

#include <array>

namespace QuillonFirmwareUpgrade {

/// Where a control is, within its parent: at the same place in every language, or one column a language.
class Place {
public:
    constexpr explicit Place(const QRect &everywhere)
        : Place(everywhere, everywhere)
    {
    }
    constexpr Place(const QRect &chinese, const QRect &english)
        : m_columns{chinese, english}
    {
    }

    const QRect &in(const LanguageRow &row) const { return m_columns.at(std::size_t(row.language)); }

private:
    std::array<QRect, kLanguages> m_columns;
};

/// Every place of the panel's children, for those who create them, show them and change their language.
namespace Places {
// clang-format off
//                                    Chinese                 English, where it differs
constexpr Place kTitle              {{ 24,  16, 130,  19}};
constexpr Place kCloseButton        {{436,  12,  24,  24}};

constexpr Place kVersionCard        {{ 32,  55, 408,  80}};
constexpr Place kCardAccent         {{  0,   0,   4,  80}};
constexpr Place kCardDivider        {{187,  20,   1,  40}};
constexpr Place kUpToDate           {{ 24,  29, 150,  21}, { 24,  19, 150,  42}};
constexpr Place kNewVersionTitle    {{ 24,  16,  42,  19}, { 24,  16,  90,  19}};
constexpr Place kNewVersionDot      {{ 24,  47,   9,   9}};
constexpr Place kNewVersion         {{ 39,  38,  80,  26}};
constexpr Place kCurrentVersionTitle{{207,  16,  56,  19}, {207,  16, 110,  19}};
constexpr Place kCurrentVersion     {{208,  42,  55,  19}};

constexpr Place kNotesIcon          {{ 32, 160,  20,  20}};
constexpr Place kNotesTitle         {{ 60, 159,  64,  21}, { 60, 159, 100,  21}};
constexpr Place kNotesLine          {{ 32, 192, 408,   1}};
constexpr Place kNotes              {{ 32, 204, 428, 119}};

constexpr Place kBar                {{ 32, 346, 408,  48}};
constexpr Place kPercent            {{218, 323,  38,  19}};
constexpr Place kRocket             {{158,  14,  20,  20}, {142,  14,  20,  20}};
constexpr Place kUpgradeBesideRocket{{186,  13,  64,  21}, {170,  13, 105,  21}};
constexpr Place kUpgradeAlone       {{172,  13,  64,  21}, {156,  13, 105,  21}};
constexpr Place kRetry              {{116,  13, 176,  21}, { 46,  13, 317,  21}};
constexpr Place kTooOld             {{  0,   0, 408,  48}};
constexpr Place kWaitingIcon        {{108,  12,  24,  24}, { 51,  12,  24,  24}};
constexpr Place kWaitingText        {{140,  13, 159,  21}, { 83,  13, 290,  21}};
constexpr Place kUpgradingIcon      {{101,  12,  24,  24}, { 44,  12,  24,  24}};
constexpr Place kUpgradingText      {{133,  13, 174,  21}, { 76,  13, 310,  21}};
constexpr Place kDoneIcon           {{156,  12,  24,  24}, {117,  12,  24,  24}};
constexpr Place kDone               {{188,  13,  64,  21}, {149,  13, 142,  21}};

constexpr Place kMovie              {{ 32,  59, 408, 128}};
constexpr Place kDetecting          {{122, 203, 229,  21}};
constexpr Place kConnectHint        {{ 59, 232, 352,  57}};
constexpr Place kFailureIcon        {{ 95, 317,  24,  24}, { 32, 317,  24,  24}};
constexpr Place kFailureText        {{122, 319, 256,  19}, { 58, 319, 364,  19}};

// These three are as wide as their texts: placeOfflineToolLine() moves them.
constexpr Place kOfflineToolIcon    {{  0,   0,  24,  24}};
constexpr Place kOfflineToolText    {{  0,   0,   0,   0}};
constexpr Place kOfflineToolLink    {{  0,   0,   0,   0}};
// clang-format on
} // namespace Places

} // namespace QuillonFirmwareUpgrade
