// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/soak/Storm.h"

#include "tests/soak/Dice.h"
#include "tests/soak/Gaps.h"
#include "tests/soak/Moves.h"

#include "rig/Identity.h"

#include <QStringList>

namespace soak {

namespace {

// What is made at the first use and kept for ever is there before the mark.
constexpr char kBefore[] = R"(timeout 60m
device R2 pc 1.1.1 otg 1.2.0
server pc 1.2.0 otg 1.2.0
plug pc
wait screen upgrade-available 2m
hold screen upgrade-available 1s
click upgrade
wait screen completed 5m
unplug pc
destroy panel
mark
create panel
)";

constexpr char kAfter[] = R"(destroy panels
unplug pc
unplug otg
clear faults
expect nothing left
device R2 pc 1.1.1 otg 1.1.1
server pc 1.2.0 otg 1.2.0
model R2
create panel
forget
plug pc
wait screen upgrade-available 2m
hold screen upgrade-available 1s
click upgrade
wait screen waiting-otg 5m
plug otg
wait screen completed 5m
wait read pc 1.2.0 1m
wait read otg 1.2.0 1m
expect flash pc served
expect flash otg served
expect flashed pc otg
destroy panel
expect nothing left
)";

// The pieces of a day at a customer's. Whatever they wait for may never be: then the storm goes on.
constexpr char kOffer[] = R"(server pc 1.2.0 otg 1.2.0
model <same>
plug pc
try wait screen upgrade-available 12s
pause 1s
try click upgrade
)";
constexpr char kPcHalf[] = R"(plug pc
try wait screen waiting-pc 6s
try wait flashing pc 10s
try wait bar <percent> 8s
)";
constexpr char kOtgHalf[] = R"(try wait screen waiting-otg 12s
plug otg
try wait flashing otg 10s
try wait bar <percent> 8s
)";
constexpr char kEnd[] = R"(try wait screen completed 12s
try wait read pc 1.2.0 6s
)";
constexpr char kRetry[] = R"(try wait screen failure 15s
unplug pc
pause <time>
plug pc
pause <time>
try click retry
)";
constexpr char kWarning[] = R"(fault device-says-dfu <times>
plug pc
try wait warning 8s
pause <time>
try dismiss warning
)";
constexpr char kFault[] = "fault <fault> [<chip>] [<requests>] [<times>]\n";

constexpr int kSeveralPanels = 40; // per cent of all storms

// One model is meant by every "<same>" of an act; the panel may serve the other one by then.
struct Act {
    const char *device;
    QList<const char *> pieces;
    int moves = 0; ///< so many random ones besides those between the lines
};

const QList<Act> &acts()
{
    static const QList<Act> table{
        {"device <same> pc 1.1.1 otg 1.1.1", {kOffer, kPcHalf, kOtgHalf, kEnd}},
        {"device <same> pc 1.1.1 otg 1.1.1", {kFault, kOffer, kPcHalf, kOtgHalf, kEnd}},
        {"device <same> pc 1.1.1 otg 1.1.1", {kFault, kOffer, kPcHalf, kRetry, kPcHalf, kOtgHalf, kEnd}},
        {"device <same> pc 1.1.1 otg 1.2.0", {kFault, kOffer, kPcHalf, kEnd}},
        {"device <same> pc 1.2.0 otg 1.1.1", {kFault, kOffer, kOtgHalf, kRetry, kOtgHalf, kEnd}},
        {"device <same> pc bricked otg <firmware>", {kPcHalf, kOtgHalf, kEnd}},
        {"device <same> pc 1.1.1 otg bricked", {kFault, kOffer, kPcHalf, kOtgHalf, kRetry, kOtgHalf}},
        {"device <same> pc <firmware> otg <firmware>", {kWarning, kOffer}},
        {"device <same> pc <firmware> otg <firmware>", {kOffer, kPcHalf}, 10},
        {"device <model> pc <firmware> otg <firmware>", {}, 25},
    };
    return table;
}

class Author {
public:
    explicit Author(quint32 seed)
        : m_dice(seed)
    {
    }

    QString write()
    {
        m_panels = m_dice.happens(kSeveralPanels) ? Panels::Several : Panels::One;
        const int count = m_dice.between(1, 3);
        for (int number = 0; number < count; ++number)
            write(m_dice.oneOf(acts()));
        return m_text;
    }

private:
    void write(const Act &act)
    {
        m_model = m_dice.oneOf(rig::modelNames());
        if (m_panels == Panels::Several)
            put("panel <panel>");
        if (m_dice.happens(50))
            put("create panel");
        put(act.device);
        for (const char *piece : act.pieces) {
            for (const QString &line :
                 QString::fromLatin1(piece).split(QLatin1Char('\n'), Qt::SkipEmptyParts))
                put(line.toLatin1().constData());
        }
        for (int move = 0; move < act.moves; ++move)
            put("pause <time>");
    }

    // Something is left out now and then, and something else happens in between.
    void put(const char *pattern)
    {
        while (m_dice.happens(30))
            add(randomMove(m_dice, m_panels));
        if (!m_dice.happens(7))
            add(filled(pattern, m_dice));
    }

    void add(QString line) { m_text += line.replace(QStringLiteral("<same>"), m_model) + QLatin1Char('\n'); }

    Dice m_dice;
    Panels m_panels = Panels::One;
    QString m_model;
    QString m_text;
};

} // namespace

QString storm(quint32 seed)
{
    return QStringLiteral("# Storm %1.\n%2%3\n%4%5\n%6")
        .arg(QString::number(seed), QLatin1StringView(kBefore), QLatin1StringView(kStormBegins),
             Author(seed).write(), QLatin1StringView(kStormEnds), QLatin1StringView(kAfter));
}

} // namespace soak
