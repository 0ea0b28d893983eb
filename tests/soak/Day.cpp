// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/soak/Day.h"

#include "tests/soak/Dice.h"

#include "rig/Identity.h"

#include <QList>
#include <QStringList>

#include <algorithm>
#include <array>

namespace soak {

namespace {

constexpr std::array kLanguages{"zh", "en"};
constexpr std::array kNewest{"1.2.0", "1.2.1", "1.3.0"};
constexpr std::array kMishaps{"tool-fails",   "tool-crashes",      "tool-stalls-at-42",
                              "tool-no-file", "tool-bare-success", "device-damaged-transfer"};
constexpr char kOld[] = "1.1.1";

constexpr int kWeighings = 20; // in a long day
constexpr int kFewestBetween = 5;
constexpr int kShareToWarmUp = 10; // after a tenth of the day nothing may grow any more
constexpr int kLongestUpgrade = 3; // minutes

// So little that not a hundred upgrades could keep a text or an object each. What is resident also follows
// how the heap happens to be cut up.
constexpr char kJudgement[]
    = "expect growth since <first> resident 8MiB heap 1MiB handles 2 threads 2 objects 0\n";

// "<new>" is what the server has, "<old>" is older. "<language>" may be another one each time.
// A panel that is told to serve another model asks the device for its versions, if it is there by then.
constexpr char kOffer[] = R"(model <other>
plug pc
wait interface <pid>
model <model>
wait screen upgrade-available 1m
hold screen upgrade-available 1s
language <language>
click upgrade
)";
constexpr char kOtgHalf[] = R"(try wait screen waiting-otg 90s
plug otg
)";
constexpr char kReplugAndRetry[] = R"(wait screen failure 2m
wait tool ended
language <language>
unplug <chip>
plug <chip>
pause 1s
forget
click retry
)";
// On a busy machine the panel may take the tool for stalled, and another retry helps. Where all went well the
// bar is no button at that time. Whoever plays a day counts the upgrades that took more than they have to.
constexpr char kEnd[] = R"(try wait screen completed 90s
try click retry
wait screen completed 3m
wait read pc <new> 1m
wait read otg <new> 1m
pause 2s
expect flash pc served
expect flash otg served
try expect tools <tools>
unplug pc
unplug otg
clear faults
forget
)";
// A device that needs nothing, the same for the panel each time, until no connection is kept for later. The
// panel keeps one animation besides the present one, so the model changes twice at least.
constexpr char kWeighing[] = R"(language zh
model R2
model R1
server pc 1.2.0 otg 1.2.0
device R2 pc 1.2.0 otg 1.2.0
plug pc
wait interface 000e
model R2
wait screen up-to-date 1m
pause 12s
weigh <number>
unplug pc
forget
)";

struct Errand {
    int weight;
    const char *name;
    const char *device;
    QList<const char *> pieces;
    int tools; ///< so many are started since the lists were forgotten
    const char *chip = ""; ///< "<chip>", the one that is flashed again
};

constexpr char kBothOld[] = "device <model> pc <old> otg <old>\n";
constexpr char kPcOld[] = "device <model> pc <old> otg <new>\n";
constexpr char kOtgOld[] = "device <model> pc <new> otg <old>\n";
constexpr char kBricked[] = "device <model> pc bricked otg <old>\n";

constexpr char kPlug[] = "plug <chip>\n";
constexpr char kMishap[] = "fault <mishap> <chip> once\n";
// The tool writes it, the chip cannot run it, and the panel recovers the device by itself. It still waits for
// the versions after that success: a device that is back before its PC half is known to be done tells them,
// and the plan is made anew. With the OTG cable in, the second half is under way by then.
constexpr char kNoImage[] = R"(fault server-404 pc downloads once
plug otg
)";
constexpr char kFalseSuccess[] = R"(wait flashing pc 1m
wait tool ended 1m
wait flashing pc 1m
)";
constexpr char kPull[] = R"(wait bar 20 2m
unplug <chip>
)";
constexpr char kWarning[] = R"(fault device-says-dfu
model <other>
plug pc
wait interface <pid>
model <model>
wait warning
pause 300ms
dismiss warning
unplug pc
clear faults
)";

const QList<Errand> &errands()
{
    static const QList<Errand> table{
        {2, "both firmwares", kBothOld, {kOffer, kOtgHalf, kEnd}, 2},
        {3, "the PC firmware", kPcOld, {kOffer, kEnd}, 1},
        {3, "the OTG firmware, plugged in", kOtgOld, {kPlug, kOffer, kEnd}, 1, "otg"},
        {2, "the OTG firmware", kOtgOld, {kOffer, kOtgHalf, kEnd}, 1},
        {1, "recovery", kBricked, {kPlug, kOtgHalf, kEnd}, 2, "pc"},
        {1, "after a warning", kPcOld, {kWarning, kOffer, kEnd}, 1},
        {1, "retry of the PC half", kBothOld, {kMishap, kOffer, kReplugAndRetry, kOtgHalf, kEnd}, 2, "pc"},
        {1, "retry of the OTG half", kBothOld, {kMishap, kOffer, kOtgHalf, kReplugAndRetry, kEnd}, 1, "otg"},
        {1, "an error page for an image", kPcOld, {kNoImage, kOffer, kFalseSuccess, kEnd}, 3},
        {1, "pulled", kPcOld, {kOffer, kPull, kReplugAndRetry, kEnd}, 1, "pc"},
    };
    return table;
}

class Author {
public:
    Author(int upgrades, quint32 seed)
        : m_dice(seed)
        , m_upgrades(upgrades)
    {
    }

    QString write()
    {
        const int step = std::max(kFewestBetween, m_upgrades / kWeighings);
        const int first = firstWeighed();
        put("timeout <limit>m\n", {{"<limit>", QString::number(2 + m_upgrades * kLongestUpgrade)}});
        for (int number = 1; number <= m_upgrades; ++number) {
            write(number, nextErrand());
            if (number == first || number == m_upgrades || number % step == 0)
                put(kWeighing, {{"<number>", QString::number(number)}});
        }
        put(kJudgement, {{"<first>", QString::number(first)}});
        return m_text;
    }

private:
    using Fillers = QList<std::pair<const char *, QString>>;

    /// By then each kind of upgrade has been there.
    int firstWeighed() const
    {
        return std::min(std::max(m_upgrades / kShareToWarmUp, int(errands().size())), m_upgrades);
    }

    /// Each kind comes up once before one comes up again; after that the weights count.
    const Errand &nextErrand()
    {
        if (m_deck.isEmpty()) {
            for (const Errand &errand : errands())
                m_deck.append(QList<const Errand *>(m_isFirstDeck ? 1 : errand.weight, &errand));
            m_isFirstDeck = false;
        }
        return *m_deck.takeAt(m_dice.below(int(m_deck.size())));
    }

    void write(int number, const Errand &errand)
    {
        const QList<rig::ModelIdentity> &models = rig::modelTable();
        const int place = m_dice.below(int(models.size()));
        const rig::ModelIdentity &model = models.at(place);
        const rig::ModelIdentity &other = models.at((place + 1) % models.size());
        const QString newest = QLatin1StringView(m_dice.oneOf(kNewest));
        const Fillers fillers{
            {"<number>", QString::number(number)},
            {"<name>", QLatin1StringView(errand.name)},
            {"<model>", QLatin1StringView(model.name)},
            {"<other>", QLatin1StringView(other.name)},
            {"<pid>", QStringLiteral("%1").arg(model.pc.normalPid, 4, 16, QLatin1Char('0'))},
            {"<new>", newest},
            {"<old>", QLatin1StringView(kOld)},
            {"<mishap>", QLatin1StringView(m_dice.oneOf(kMishaps))},
            {"<chip>", QLatin1StringView(errand.chip)},
            {"<tools>", QString::number(errand.tools)}};
        put("say \"upgrade <number>: <name>\"\nlanguage <language>\nserver pc <new> otg <new>\n", fillers);
        put(errand.device, fillers);
        for (const char *piece : errand.pieces)
            put(piece, fillers);
    }

    void put(const char *lines, const Fillers &fillers)
    {
        static const QString language = QStringLiteral("<language>");
        QString text = QString::fromLatin1(lines);
        for (const auto &[gap, filler] : fillers)
            text.replace(QLatin1StringView(gap), filler);
        for (qsizetype at = text.indexOf(language); at >= 0; at = text.indexOf(language))
            text.replace(at, language.size(), QLatin1StringView(m_dice.oneOf(kLanguages)));
        m_text += text;
    }

    Dice m_dice;
    int m_upgrades;
    QList<const Errand *> m_deck;
    bool m_isFirstDeck = true;
    QString m_text;
};

} // namespace

QString day(int upgrades, quint32 seed)
{
    return QStringLiteral("# A day of %1 upgrades, %2.\n").arg(upgrades).arg(seed)
        + Author(upgrades, seed).write();
}

} // namespace soak
