// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "probe/CommandLine.h"

#include <cmath>

namespace probe {

namespace {

using Command = Options::Command;

const QString kJson = QStringLiteral("json");
const QString kFor = QStringLiteral("for");
const QString kListen = QStringLiteral("listen");
const QString kRecord = QStringLiteral("record");
const QString kReplay = QStringLiteral("replay");

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

QString helpText(const options::Words &words)
{
    QString commands = QStringLiteral("\nCommands:\n");
    for (const CommandRow &row : kCommands) {
        const QString form
            = QStringLiteral("%1 %2").arg(QLatin1String(row.name), QLatin1String(row.arguments));
        commands += QStringLiteral("  %1  %2\n").arg(form, -22).arg(QLatin1String(row.meaning));
    }
    return words.helpTextFor(QStringLiteral("quillon-probe"), QStringLiteral("COMMAND [options]")) + commands
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

class Reader {
public:
    explicit Reader(options::Words &words)
        : m_words(words)
        , m_arguments(words.positionalArguments())
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
        else if (m_arguments.size() > 1)
            m_words.complain(QStringLiteral("unexpected argument \"%1\"").arg(m_arguments.at(1)));
        m_options.json = m_words.isSet(kJson);
        readDuration(*row);
        m_options.listen = m_words.isSet(kListen);
        if (m_options.listen && row->command != Command::Trace)
            m_words.complain(QStringLiteral("--listen goes with trace"));
        m_options.recordFile = m_words.nameIn(kRecord, QStringLiteral("a file"));
        m_options.replayFile = m_words.nameIn(kReplay, QStringLiteral("a file"));
        return m_options;
    }

private:
    const CommandRow *readCommand()
    {
        if (m_arguments.isEmpty()) {
            m_words.complain(
                QStringLiteral("what to do? One of %1; --help explains them").arg(commandNames()));
            return nullptr;
        }
        const CommandRow *const row = commandNamed(m_arguments.first());
        if (!row)
            m_words.complain(QStringLiteral("there is no command \"%1\"; there is %2")
                                 .arg(m_arguments.first(), commandNames()));
        return row;
    }

    void readRegisters()
    {
        if (m_arguments.size() < 2 || m_arguments.size() > 3)
            return m_words.complain(QStringLiteral("read takes an address and, if you like, a count"));
        const auto address = number(m_arguments.at(1), kRegisters - 1);
        if (!address)
            return m_words.complain(
                QStringLiteral("\"%1\" is no address: 0 to 65535, or 0x0 to 0xffff").arg(m_arguments.at(1)));
        const int most = kRegisters - *address;
        const auto count = m_arguments.size() < 3 ? std::optional(1) : number(m_arguments.at(2), most);
        if (!count || *count == 0)
            return m_words.complain(
                QStringLiteral("\"%1\" is no count: there are 1 to %2 registers from there on")
                    .arg(m_arguments.at(2))
                    .arg(most));
        m_options.address = quint16(*address);
        m_options.count = *count;
    }

    void readDuration(const CommandRow &row)
    {
        if (!m_words.isSet(kFor))
            return;
        if (!row.lasts)
            return m_words.complain(QStringLiteral("--for goes with watch and trace"));
        bool isNumber = false;
        const double seconds = m_words.value(kFor).toDouble(&isNumber);
        if (!isNumber || !(seconds > 0) || seconds > kLongestDuration)
            return m_words.complain(
                QStringLiteral("--for takes a number of seconds, not \"%1\"").arg(m_words.value(kFor)));
        m_options.duration = std::chrono::milliseconds(qint64(std::ceil(seconds * 1000)));
    }

    options::Words &m_words;
    QStringList m_arguments;
    Options m_options;
};

} // namespace

CommandLine readCommandLine(const QStringList &arguments)
{
    options::Words words(QStringLiteral("Looks at a device of the family from the command line."),
                         optionTable(), arguments);
    const auto read = [](options::Words &words) { return Reader(words).read(); };
    return options::judge<Options>(words, read, helpText);
}

} // namespace probe
