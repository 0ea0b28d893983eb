#include "probe/CommandLine.h"

#include <QCommandLineParser>

#include <cmath>

namespace probe {

namespace {

using Command = Options::Command;

const QString kJson = QStringLiteral("json");
const QString kFor = QStringLiteral("for");
const QString kListen = QStringLiteral("listen");
const QString kRecord = QStringLiteral("record");
const QString kReplay = QStringLiteral("replay");
const QString kHelp = QStringLiteral("help");

constexpr int kRegisters = 0x10000;
/// A month: far more than anybody watches, and small enough for every timer.
constexpr double kLongestDuration = 31.0 * 24 * 3600;

struct CommandRow {
    Command command;
    const char *name;
    const char *arguments;
    const char *meaning;
    bool lasts; ///< takes --for
};
constexpr CommandRow kCommands[] = {
    {Command::List, "list", "", "the devices of the family on the bus", false},
    {Command::Versions, "versions", "", "the device's mode and the versions of both its chips", false},
    {Command::Watch, "watch", "", "tell of each device that is plugged in or pulled out, with the time",
     true},
    {Command::Read, "read", "ADDRESS [COUNT]", "registers, from ADDRESS on; decimal, or hexadecimal with 0x",
     false},
    {Command::Trace, "trace", "", "ask for mode and versions, and show every report in both directions",
     true},
};

QList<QCommandLineOption> optionTable()
{
    return {
        {kJson, QStringLiteral("Print JSON: one document, or one object a line with watch and trace.")},
        {kFor, QStringLiteral("End watch or trace after so many seconds instead of with Ctrl-C."),
         QStringLiteral("seconds")},
        {kListen, QStringLiteral("With trace: ask the device nothing.")},
        {kRecord, QStringLiteral("Keep the traffic with the device in this file; it goes with a bug report."),
         QStringLiteral("file")},
        {kReplay, QStringLiteral("Play the device of such a file instead of using the system's bus."),
         QStringLiteral("file")},
        {kHelp, QStringLiteral("Print this and end.")},
    };
}

const CommandRow *commandNamed(const QString &name)
{
    for (const CommandRow &row : kCommands) {
        if (name == QLatin1String(row.name))
            return &row;
    }
    return nullptr;
}

QString commandNames()
{
    QStringList names;
    for (const CommandRow &row : kCommands)
        names.append(QLatin1String(row.name));
    return names.join(QStringLiteral(", "));
}

QString helpText(const QCommandLineParser &parser)
{
    QString commands = QStringLiteral("\nCommands:\n");
    for (const CommandRow &row : kCommands) {
        const QString form
            = QStringLiteral("%1 %2").arg(QLatin1String(row.name), QLatin1String(row.arguments));
        commands += QStringLiteral("  %1  %2\n").arg(form, -22).arg(QLatin1String(row.meaning));
    }
    QString text = parser.helpText();
    text.replace(QStringLiteral("<executable_name>"), QStringLiteral("quillon-probe"));
    text.replace(QStringLiteral("[options]"), QStringLiteral("COMMAND [options]"));
    return text + commands
        + QStringLiteral(
               "\nExit status: 0 when it was done, 1 when there is no device or none that answers,\n2 for a "
               "bad "
               "option or a file that cannot be read or written, 3 when a device is there\nand you have no "
               "permission to open it.\n");
}

/// Digits only, hexadecimal behind "0x"; nothing above \a largest.
std::optional<int> number(const QString &word, int largest)
{
    const bool hexadecimal = word.startsWith(QStringLiteral("0x"), Qt::CaseInsensitive);
    const QString digits = hexadecimal ? word.mid(2) : word;
    bool isNumber = !digits.isEmpty() && digits.at(0).isLetterOrNumber();
    const int value = isNumber ? digits.toInt(&isNumber, hexadecimal ? 16 : 10) : 0;
    return isNumber && value <= largest ? std::optional(value) : std::nullopt;
}

// Everything that is wrong is noted once; the first note is told.
class Reader {
public:
    explicit Reader(const QCommandLineParser &parser)
        : m_parser(parser)
        , m_words(parser.positionalArguments())
    {
    }

    Options read()
    {
        const CommandRow *const row = readCommand();
        if (!row)
            return m_options;
        m_options.command = row->command;
        if (row->command == Command::Read)
            readRegisters();
        else if (m_words.size() > 1)
            complain(QStringLiteral("unexpected argument \"%1\"").arg(m_words.at(1)));
        m_options.json = m_parser.isSet(kJson);
        readDuration(*row);
        m_options.listen = m_parser.isSet(kListen);
        if (m_options.listen && row->command != Command::Trace)
            complain(QStringLiteral("--listen goes with trace"));
        m_options.recordFile = readFile(kRecord);
        m_options.replayFile = readFile(kReplay);
        return m_options;
    }

    QString complaint() const { return m_complaint; }

private:
    void complain(const QString &text)
    {
        if (m_complaint.isEmpty())
            m_complaint = text;
    }

    const CommandRow *readCommand()
    {
        if (m_words.isEmpty()) {
            complain(QStringLiteral("what to do? One of %1; --help explains them").arg(commandNames()));
            return nullptr;
        }
        const CommandRow *const row = commandNamed(m_words.first());
        if (!row)
            complain(QStringLiteral("there is no command \"%1\"; there is %2")
                         .arg(m_words.first(), commandNames()));
        return row;
    }

    void readRegisters()
    {
        if (m_words.size() < 2 || m_words.size() > 3)
            return complain(QStringLiteral("read takes an address and, if you like, a count"));
        const auto address = number(m_words.at(1), kRegisters - 1);
        if (!address)
            return complain(
                QStringLiteral("\"%1\" is no address: 0 to 65535, or 0x0 to 0xffff").arg(m_words.at(1)));
        const int most = kRegisters - *address;
        const auto count = m_words.size() < 3 ? std::optional(1) : number(m_words.at(2), most);
        if (!count || *count == 0)
            return complain(QStringLiteral("\"%1\" is no count: there are 1 to %2 registers from there on")
                                .arg(m_words.at(2))
                                .arg(most));
        m_options.address = quint16(*address);
        m_options.count = *count;
    }

    void readDuration(const CommandRow &row)
    {
        if (!m_parser.isSet(kFor))
            return;
        if (!row.lasts)
            return complain(QStringLiteral("--for goes with watch and trace"));
        bool isNumber = false;
        const double seconds = m_parser.value(kFor).toDouble(&isNumber);
        if (!isNumber || !(seconds > 0) || seconds > kLongestDuration)
            return complain(
                QStringLiteral("--for takes a number of seconds, not \"%1\"").arg(m_parser.value(kFor)));
        m_options.duration = std::chrono::milliseconds(qint64(std::ceil(seconds * 1000)));
    }

    QString readFile(const QString &option)
    {
        const QString file = m_parser.value(option);
        if (m_parser.isSet(option) && file.isEmpty())
            complain(QStringLiteral("--%1 takes the name of a file").arg(option));
        return file;
    }

    const QCommandLineParser &m_parser;
    QStringList m_words;
    Options m_options;
    QString m_complaint;
};

} // namespace

CommandLine readCommandLine(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Looks at a device of the family from the command line."));
    parser.addOptions(optionTable());

    if (!parser.parse(arguments)) {
        QString message = parser.errorText();
        if (message.endsWith(u'.'))
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

} // namespace probe
