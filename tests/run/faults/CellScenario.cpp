// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/run/faults/CellScenario.h"

#include <QStringList>

namespace faults {

using rig::Chip;

namespace {

constexpr char kOld[] = "1.1.1";
constexpr char kNew[] = "1.2.0";
constexpr char kNewest[]
    = "1.3.0"; // there for the fresh panel, which has something to upgrade whatever came before

constexpr Plan kPlans[]{Plan::PcOnly, Plan::OtgOnly, Plan::Both};

struct PlanWords {
    const char *name;
    const char *pcVersion;
    const char *otgVersion;
};

PlanWords wordsOf(Plan plan)
{
    switch (plan) {
    case Plan::PcOnly:
        return {"pc-only", kOld, kNew};
    case Plan::OtgOnly:
        return {"otg-only", kNew, kOld};
    case Plan::Both:
        break;
    }
    return {"both", kOld, kOld};
}

const char *nameOf(Screen screen)
{
    switch (screen) {
    case Screen::Offer:
        return "upgrade-available";
    case Screen::WaitingOtg:
        return "waiting-otg";
    case Screen::Starting:
        return "starting";
    case Screen::Flashing:
        return "flashing";
    case Screen::Failure:
        return "failure";
    case Screen::Completed:
        break;
    }
    return "completed";
}

// What the flash statement calls it; \a kept is the version that it had.
const char *nameOf(Flash flash, const char *kept)
{
    switch (flash) {
    case Flash::Kept:
        return kept;
    case Flash::Partial:
        return "partial";
    case Flash::Damaged:
        return "damaged";
    case Flash::Empty:
        return "empty";
    case Flash::Served:
    case Flash::ServedInVain:
        break;
    }
    return "served";
}

bool offers(Sight sight)
{
    return sight == Sight::Offer || sight == Sight::PartialOffer;
}

bool runs(Flash flash)
{
    return flash == Flash::Kept || flash == Flash::Served;
}

// The panel shows an offer as soon as it knows of something newer, which may be the OTG firmware before the
// PC firmware: a click before it says which PC firmware there is would upgrade less.
QString waitForOffer(const char *version)
{
    return QStringLiteral("wait screen upgrade-available\nhold screen upgrade-available 1s\n"
                          "expect text m_newVerLb V%1\n")
        .arg(QLatin1StringView(version));
}

// How the panel looks some time after the device is there; longer than all that it asks for by itself takes.
QString waitFor(Sight sight)
{
    switch (sight) {
    case Sight::Offer:
        return waitForOffer(kNew);
    case Sight::PartialOffer:
        return QStringLiteral("wait screen upgrade-available\npause 9s\n") + waitForOffer(kNew);
    case Sight::Searching:
        return QStringLiteral("pause 9s\nhold screen searching 3s\n");
    case Sight::UpToDate:
        return QStringLiteral("wait screen up-to-date\nhold screen up-to-date 3s\n");
    case Sight::TooOld:
        return QStringLiteral("wait screen too-old\nhold screen too-old 3s\n");
    case Sight::Warning:
        break;
    }
    return QStringLiteral("wait warning\nhold screen searching 3s\ndismiss warning\n");
}

class Author {
public:
    explicit Author(const Cell &cell)
        : m_cell(cell)
        , m_course(courseOf(cell.fault))
        , m_plan(wordsOf(cell.plan))
        , m_model(rig::nameOf(cell.model))
    {
    }

    QString write()
    {
        plugInAtFault();
        if (!offers(m_course.sight))
            getOffer();
        runIntoFault();
        upgradeWithFreshPanel();
        return m_text;
    }

private:
    void plugInAtFault()
    {
        add(QStringLiteral("# %1: %2. What there is to upgrade on this %3: %4.\n"
                           "device %3 pc %5 otg %6\n"
                           "server pc %7 otg %7\n"
                           "model %3")
                .arg(rig::nameOf(m_cell.fault), QString::fromUtf8(rig::infoOf(m_cell.fault).english), m_model,
                     QLatin1StringView(m_plan.name), QLatin1StringView(m_plan.pcVersion),
                     QLatin1StringView(m_plan.otgVersion), QLatin1StringView(kNew)));
        armFault();
        add(QStringLiteral("plug pc"));
        m_text += waitFor(m_course.sight);
    }

    // There is nothing to click on: the fault passes, and comes back before the click.
    void getOffer()
    {
        add(QStringLiteral("# The fault passes, and is back for the click."));
        replacePanel();
        add(QStringLiteral("plug pc"));
        m_text += waitFor(Sight::Offer);
        armFault();
    }

    void runIntoFault()
    {
        add(QStringLiteral("click upgrade"));
        if (reachesOtg())
            add(QStringLiteral("wait screen waiting-otg 90s\nplug otg"));
        const QLatin1StringView screen(nameOf(end()));
        add(QStringLiteral("wait screen %1 90s").arg(screen));
        if (m_course.holds > kUntilRecovery)
            add(QStringLiteral("hold screen %1 %2s").arg(screen, QString::number(m_course.holds.count())));
        for (const Chip chip : {Chip::Pc, Chip::Otg}) {
            const char *kept = chip == Chip::Pc ? m_plan.pcVersion : m_plan.otgVersion;
            add(QStringLiteral("expect flash %1 %2")
                    .arg(rig::nameOf(chip), QLatin1StringView(nameOf(flashOf(chip), kept))));
        }
    }

    void upgradeWithFreshPanel()
    {
        add(QStringLiteral("# Nothing is wrong any more."));
        replacePanel();
        add(QStringLiteral("wait tool ended 2s\nforget\nserver pc %1 otg %1\nplug pc")
                .arg(QLatin1StringView(kNewest)));
        if (!runs(flashOf(Chip::Pc)))
            add(QStringLiteral("# The PC chip is in its boot loader: recovery begins by itself."));
        else if (!runs(flashOf(Chip::Otg)))
            recoverOtgChip();
        else
            m_text += waitForOffer(kNewest) + QStringLiteral("click upgrade\n");
        // An answer to an older question may take the screen away once the versions are read back.
        add(QStringLiteral("wait screen waiting-otg 90s\nplug otg\nwait screen completed 90s\n"
                           "hold screen completed 500ms\nwait read pc %1\nwait read otg %1\n"
                           "expect flash pc served\nexpect flash otg served\nexpect flash pc %1\n"
                           "expect flash otg %1\nexpect flashed pc otg")
                .arg(QLatin1StringView(kNewest)));
    }

    // An OTG chip without firmware reads as version 0.0.0, which is too old for the panel; only the host's
    // entry helps.
    void recoverOtgChip()
    {
        add(QStringLiteral(
            "# The OTG chip runs nothing, which is too old for the panel: the host has it recovered."));
        m_text += waitFor(Sight::TooOld);
        replacePanel();
        add(QStringLiteral("forget\nrecover\nplug pc"));
    }

    void replacePanel()
    {
        add(QStringLiteral("destroy panel\nunplug pc\nunplug otg\nclear faults\ncreate panel\nmodel ")
            + m_model);
    }

    void armFault()
    {
        const bool lastChip = m_cell.plan == Plan::Both && m_course.meets == Meets::LastChip;
        add(QStringLiteral("fault ") + rig::nameOf(m_cell.fault)
            + (lastChip ? QStringLiteral(" otg") : QString()));
    }

    Screen end() const
    {
        switch (m_cell.plan) {
        case Plan::PcOnly:
            return m_course.pcOnly;
        case Plan::OtgOnly:
            return m_course.otgOnly;
        case Plan::Both:
            break;
        }
        return m_course.both;
    }

    bool isUpgraded(Chip chip) const
    {
        return m_cell.plan == Plan::Both || (m_cell.plan == Plan::PcOnly) == (chip == Chip::Pc);
    }

    Flash flashOf(Chip chip) const
    {
        if (!isUpgraded(chip))
            return Flash::Kept;
        const bool before
            = m_cell.plan == Plan::Both && chip == Chip::Pc && m_course.meets == Meets::LastChip;
        return before ? Flash::Served : m_course.flash;
    }

    // The panel asks for the OTG cable once the images are there and the PC half, if there is one, is done.
    bool reachesOtg() const
    {
        return isUpgraded(Chip::Otg) && end() != Screen::Offer
            && (!isUpgraded(Chip::Pc) || flashOf(Chip::Pc) != Flash::Kept);
    }

    void add(const QString &lines) { m_text += lines + QLatin1Char('\n'); }

    const Cell m_cell;
    const Course m_course;
    const PlanWords m_plan;
    const QString m_model;
    QString m_text;
};

} // namespace

QList<Cell> allCells()
{
    QList<Cell> cells;
    for (const rig::FaultInfo &info : rig::faultTable()) {
        for (const Plan plan : kPlans) {
            for (const rig::ModelIdentity &model : rig::modelTable())
                cells.append({info.fault, plan, model.model});
        }
    }
    return cells;
}

QString nameOf(const Cell &cell)
{
    return rig::nameOf(cell.fault) + QLatin1Char('-') + QLatin1StringView(wordsOf(cell.plan).name)
        + QLatin1Char('-') + rig::nameOf(cell.model).toLower();
}

QString scenarioOf(const Cell &cell)
{
    return Author(cell).write();
}

} // namespace faults
