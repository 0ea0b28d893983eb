#include "host/CommandLine.h"

#include <QCommandLineParser>

namespace host {

namespace {

const QString kModel = QStringLiteral("model");
const QString kLanguage = QStringLiteral("language");
const QString kSimulate = QStringLiteral("simulate");
const QString kUsb = QStringLiteral("usb");
const QString kScenario = QStringLiteral("scenario");
const QString kHeadless = QStringLiteral("headless");
const QString kRecord = QStringLiteral("record");
const QString kFault = QStringLiteral("fault");
const QString kHelp = QStringLiteral("help");

QList<QCommandLineOption> optionTable()
{
    return {
        {kModel, QStringLiteral("Device model that the panel serves: R1 or R2 (the default)."),
         QStringLiteral("model")},
        {kLanguage, QStringLiteral("Language of the panel and the window: zh (the default) or en."),
         QStringLiteral("language")},
        {kSimulate,
         QStringLiteral(
             "Put a simulated device, update server and flashing tool in place of the real ones.")},
        {kUsb,
         QStringLiteral("Put the simulated device on this machine's own USB; needs --simulate, root and two "
                        "controllers of Linux's dummy_hcd.")},
        {kScenario, QStringLiteral("Play this scenario and end with it; needs --simulate."),
         QStringLiteral("file")},
        {kHeadless, QStringLiteral("Show nothing and print the progress instead; needs --scenario.")},
        {kRecord,
         QStringLiteral("Keep a picture of each screen as it is first shown, and log.txt, in this folder."),
         QStringLiteral("folder")},
        {kFault,
         QStringLiteral("Let this go wrong from the start; needs --simulate; may be given several times."),
         QStringLiteral("name")},
        {kHelp, QStringLiteral("Print this and end.")},
    };
}

QString helpText(const QCommandLineParser &parser)
{
    QString text = parser.helpText();
    text.replace(QStringLiteral("<executable_name>"), QStringLiteral("quillon-host"));
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

// Everything that is wrong is noted once, in the order of the options' table; the first note is told.
class Reader {
public:
    explicit Reader(const QCommandLineParser &parser)
        : m_parser(parser)
    {
    }

    Options read()
    {
        Options options;
        if (const QStringList extra = m_parser.positionalArguments(); !extra.isEmpty())
            complain(QStringLiteral("unexpected argument \"%1\"").arg(extra.first()));
        readModel(options);
        readLanguage(options);
        options.simulate = m_parser.isSet(kSimulate);
        options.usb = m_parser.isSet(kUsb);
        options.headless = m_parser.isSet(kHeadless);
        options.scenario = readPlace(kScenario, QStringLiteral("a file"));
        options.recordFolder = readPlace(kRecord, QStringLiteral("a folder"));
        readFaults(options);
        require(kUsb, kSimulate);
        require(kScenario, kSimulate);
        require(kFault, kSimulate);
        require(kHeadless, kScenario);
        return options;
    }

    QString complaint() const { return m_complaint; }

private:
    void complain(const QString &text)
    {
        if (m_complaint.isEmpty())
            m_complaint = text;
    }

    void readModel(Options &options)
    {
        if (!m_parser.isSet(kModel))
            return;
        const auto model = rig::modelNamed(m_parser.value(kModel));
        if (!model)
            complain(QStringLiteral("--model takes R1 or R2, not \"%1\"").arg(m_parser.value(kModel)));
        options.model = model.value_or(options.model);
    }

    void readLanguage(Options &options)
    {
        if (!m_parser.isSet(kLanguage))
            return;
        const QString language = m_parser.value(kLanguage);
        if (language != u"zh" && language != u"en")
            complain(QStringLiteral("--language takes zh or en, not \"%1\"").arg(language));
        options.english = language == u"en";
    }

    QString readPlace(const QString &option, const QString &what)
    {
        const QString place = m_parser.value(option);
        if (m_parser.isSet(option) && place.isEmpty())
            complain(QStringLiteral("--%1 takes the name of %2").arg(option, what));
        return place;
    }

    void readFaults(Options &options)
    {
        for (const QString &name : m_parser.values(kFault)) {
            if (const auto fault = rig::faultNamed(name))
                options.faults.append(*fault);
            else
                complain(QStringLiteral("--fault: there is no fault \"%1\"; --help lists them").arg(name));
        }
    }

    void require(const QString &option, const QString &other)
    {
        if (m_parser.isSet(option) && !m_parser.isSet(other))
            complain(QStringLiteral("--%1 needs --%2").arg(option, other));
    }

    const QCommandLineParser &m_parser;
    QString m_complaint;
};

} // namespace

CommandLine readCommandLine(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Shows the firmware-upgrade panel, for a real device or for a simulated one."));
    parser.addOptions(optionTable());

    if (!parser.parse(arguments)) {
        QString message = parser.errorText();
        if (message.endsWith(QLatin1Char('.')))
            message.chop(1);
        return {CommandLine::Verdict::Wrong, {}, message};
    }
    if (parser.isSet(kHelp))
        return {CommandLine::Verdict::Help, {}, helpText(parser)};
    Reader reader(parser);
    const Options options = reader.read();
    if (!reader.complaint().isEmpty())
        return {CommandLine::Verdict::Wrong, {}, reader.complaint()};
    return {CommandLine::Verdict::Run, options, {}};
}

} // namespace host
