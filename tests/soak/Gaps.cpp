// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/soak/Gaps.h"

#include "rig/Fault.h"
#include "rig/Identity.h"
#include "tests/soak/Dice.h"

#include <QStringList>

#include <algorithm>
#include <array>

namespace soak {

namespace {

constexpr std::array kChips{"pc", "otg"};
constexpr std::array kLanguages{"zh", "en"};
constexpr std::array kRequests{"queries", "downloads"};
constexpr std::array kButtons{"upgrade", "upgrade", "retry", "retry", "close"};
constexpr std::array kTimes{"once", "once", "2x", "5x"};
// Older and newer than each other, too old for the panel, and as large as a version can be.
constexpr std::array kVersions{
    "1.1.1", "1.1.1", "1.2.0", "1.2.0", "1.2.1", "0.9.9", "2.0.0", "0.0.0", "65535.65535.65535"};
constexpr std::array kScreens{"searching",  "up-to-date",  "upgrade-available", "too-old",  "recovering",
                              "waiting-pc", "waiting-otg", "starting",          "flashing", "completed",
                              "failure"};
constexpr std::array kPanels{"main", "second", "third"};
constexpr std::array kProductIds{"0001", "0010", "0012", "000e", "00ff", "001f", "0065"};
constexpr std::array kEvents{"image", "tool", "ended", "appeared", "read"};
constexpr std::array kLabels{"m_newVerLb", "m_notesEdit", "m_progressBar", "m_upgradeTextLb", "m_doneLb"};

QString milliseconds(int count)
{
    return QString::number(count) + QStringLiteral("ms");
}

// Most things happen soon after each other, some while a person looks away.
QString shortTime(Dice &dice)
{
    constexpr std::array kLongest{100, 100, 700, 700, 3000, 12000};
    return milliseconds(dice.below(dice.oneOf(kLongest)));
}

template <const auto &words> QString wordOf(Dice &dice)
{
    return QLatin1StringView(dice.oneOf(words));
}

struct Gap {
    const char *name;
    QString (*fill)(Dice &dice);
};

constexpr Gap kGaps[]{
    {"<chip>", wordOf<kChips>},
    {"<model>", [](Dice &dice) { return dice.oneOf(rig::modelNames()); }},
    {"<language>", wordOf<kLanguages>},
    {"<requests>", wordOf<kRequests>},
    {"<times>", wordOf<kTimes>},
    {"<button>", wordOf<kButtons>},
    {"<version>", wordOf<kVersions>},
    {"<firmware>",
     [](Dice &dice) { return dice.happens(20) ? QStringLiteral("bricked") : wordOf<kVersions>(dice); }},
    {"<screen>", wordOf<kScreens>},
    {"<fault>", [](Dice &dice) { return rig::nameOf(dice.oneOf(rig::faultTable()).fault); }},
    {"<pid>", wordOf<kProductIds>},
    {"<name>", wordOf<kLabels>},
    {"<panel>", wordOf<kPanels>},
    {"<percent>", [](Dice &dice) { return QString::number(dice.below(101)); }},
    {"<count>", [](Dice &dice) { return QString::number(dice.below(5)); }},
    {"<time>", shortTime},
    {"<patience>", [](Dice &dice) { return milliseconds(dice.between(100, 15000)); }},
    {"<event>",
     [](Dice &dice) -> QString {
         const QString chip = wordOf<kChips>(dice);
         return chip + QLatin1Char('-') + wordOf<kEvents>(dice);
     }},
};

QString wordFor(const QString &name, Dice &dice)
{
    const auto *gap = std::find_if(std::begin(kGaps), std::end(kGaps), [&name](const Gap &known) {
        return name == QLatin1StringView(known.name);
    });
    return gap == std::end(kGaps) ? name : gap->fill(dice);
}

} // namespace

QString filled(const char *pattern, Dice &dice)
{
    QStringList words;
    for (QString word : QString::fromLatin1(pattern).split(QLatin1Char(' '))) {
        if (word.startsWith(u'[')) {
            if (dice.happens(50))
                continue;
            word = word.mid(1, word.size() - 2);
        }
        words.append(wordFor(word, dice));
    }
    return words.join(QLatin1Char(' '));
}

} // namespace soak
