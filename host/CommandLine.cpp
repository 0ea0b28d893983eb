// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/CommandLine.h"

#include <QRegularExpression>

namespace host {

namespace {

const QString kModel = QStringLiteral("model");
const QString kLanguage = QStringLiteral("language");
const QString kSimulate = QStringLiteral("simulate");
const QString kUsb = QStringLiteral("usb");
const QString kServer = QStringLiteral("server");
const QString kScenario = QStringLiteral("scenario");
const QString kHeadless = QStringLiteral("headless");
const QString kRecord = QStringLiteral("record");
const QString kFault = QStringLiteral("fault");

/// "R1 or R2", with \a mark behind the model that is taken when none is named.
QString modelsWith(const QString &mark)
{
    QStringList names;
    for (const rig::ModelIdentity &row : rig::modelTable())
        names.append(QLatin1StringView(row.name) + (row.model == Options().model ? mark : QString()));
    return names.join(QStringLiteral(" or "));
}

QList<QCommandLineOption> optionTable()
{
    return {
        {kModel,
         QStringLiteral("Device model that the panel serves: %1.")
             .arg(modelsWith(QStringLiteral(" (the default)"))),
         QStringLiteral("model")},
        {kLanguage, QStringLiteral("Language of the panel and the window: zh (the default) or en."),
         QStringLiteral("language")},
        {kSimulate,
         QStringLiteral(
             "Put a simulated device, update server and flashing tool in place of the real ones.")},
        {kUsb,
         QStringLiteral("Put the simulated device on this machine's own USB; needs --simulate, root and two "
                        "controllers of Linux's dummy_hcd.")},
        {kServer,
         QStringLiteral("Ask this update server, such as 127.0.0.1:8080, in place of the simulated one; "
                        "needs --simulate."),
         QStringLiteral("host:port")},
        {kScenario, QStringLiteral("Play this scenario and end with it; needs --simulate."),
         QStringLiteral("file")},
        {kHeadless, QStringLiteral("Show nothing and print the progress instead; needs --scenario.")},
        {kRecord,
         QStringLiteral("Keep a picture of each screen as it is first shown, and log.txt, in this folder."),
         QStringLiteral("folder")},
        {kFault,
         QStringLiteral("Let this go wrong from the start; needs --simulate; may be given several times."),
         QStringLiteral("name")},
    };
}

QString helpText(const options::Words &words)
{
    QString text = words.helpTextFor(QStringLiteral("quillon-host"), QStringLiteral("[options]"));
    text += QStringLiteral("\nFaults:\n");
    for (const rig::FaultInfo &fault : rig::faultTable()) {
        text += QStringLiteral("  %1  %2\n")
                    .arg(QLatin1StringView(fault.name), -26)
                    .arg(QLatin1StringView(fault.english));
    }
    text += QStringLiteral(
        "\nExit status: 0 when the scenario reached its end or the window was closed, 1 when the "
        "scenario failed,\n2 for a bad option, a missing or malformed scenario, or no display.\n");
    return text;
}

// Complains in the order of the options' table.
class Reader {
public:
    explicit Reader(options::Words &words)
        : m_words(words)
    {
    }

    Options read()
    {
        Options options;
        if (const QStringList extra = m_words.positionalArguments(); !extra.isEmpty())
            m_words.complain(QStringLiteral("unexpected argument \"%1\"").arg(extra.first()));
        readModel(options);
        readLanguage(options);
        options.simulate = m_words.isSet(kSimulate);
        options.usb = m_words.isSet(kUsb);
        options.headless = m_words.isSet(kHeadless);
        readServer(options);
        options.scenario = m_words.nameIn(kScenario, QStringLiteral("a file"));
        options.recordFolder = m_words.nameIn(kRecord, QStringLiteral("a folder"));
        readFaults(options);
        require(kUsb, kSimulate);
        require(kServer, kSimulate);
        require(kScenario, kSimulate);
        require(kFault, kSimulate);
        require(kHeadless, kScenario);
        return options;
    }

private:
    void readModel(Options &options)
    {
        if (!m_words.isSet(kModel))
            return;
        const auto model = rig::modelNamed(m_words.value(kModel));
        if (!model)
            m_words.complain(
                QStringLiteral("--model takes %1, not \"%2\"").arg(modelsWith({}), m_words.value(kModel)));
        options.model = model.value_or(options.model);
    }

    void readLanguage(Options &options)
    {
        if (!m_words.isSet(kLanguage))
            return;
        const QString language = m_words.value(kLanguage);
        if (language != u"zh" && language != u"en")
            m_words.complain(QStringLiteral("--language takes zh or en, not \"%1\"").arg(language));
        options.english = language == u"en";
    }

    void readServer(Options &options)
    {
        options.server = m_words.value(kServer);
        static const QRegularExpression form(QStringLiteral("^[A-Za-z0-9.-]+:[1-9][0-9]{0,4}$"));
        if (m_words.isSet(kServer) && !form.match(options.server).hasMatch())
            m_words.complain(
                QStringLiteral("--server takes a host and a port such as 127.0.0.1:8080, not \"%1\"")
                    .arg(options.server));
    }

    void readFaults(Options &options)
    {
        for (const QString &name : m_words.values(kFault)) {
            if (const auto fault = rig::faultNamed(name))
                options.faults.append(*fault);
            else
                m_words.complain(
                    QStringLiteral("--fault: there is no fault \"%1\"; --help lists them").arg(name));
        }
    }

    void require(const QString &option, const QString &other)
    {
        if (m_words.isSet(option) && !m_words.isSet(other))
            m_words.complain(QStringLiteral("--%1 needs --%2").arg(option, other));
    }

    options::Words &m_words;
};

} // namespace

CommandLine readCommandLine(const QStringList &arguments)
{
    options::Words words(
        QStringLiteral("Shows the firmware-upgrade panel, for a real device or for a simulated one."),
        optionTable(), arguments);
    const auto read = [](options::Words &words) { return Reader(words).read(); };
    return options::judge<Options>(words, read, helpText);
}

} // namespace host
