// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "probe/options/CommandLine.h"

namespace options {

namespace {
const QString kHelp = QStringLiteral("help");
} // namespace

Words::Words(const QString &description, const QList<QCommandLineOption> &table, const QStringList &arguments)
{
    setApplicationDescription(description);
    addOptions(table);
    addOption({kHelp, QStringLiteral("Print this and end.")});
    if (parse(arguments))
        return;
    m_complaint = errorText();
    if (m_complaint.endsWith(u'.'))
        m_complaint.chop(1);
}

QString Words::nameIn(const QString &option, const QString &what)
{
    const QString name = value(option);
    if (isSet(option) && name.isEmpty())
        complain(QStringLiteral("--%1 takes the name of %2").arg(option, what));
    return name;
}

void Words::complain(const QString &text)
{
    if (m_complaint.isEmpty())
        m_complaint = text;
}

// What cannot be read asks for nothing.
bool Words::asksForHelp() const
{
    return m_complaint.isEmpty() && isSet(kHelp);
}

QString Words::helpTextFor(const QString &program, const QString &form) const
{
    return helpText()
        .replace(QStringLiteral("<executable_name>"), program)
        .replace(QStringLiteral("[options]"), form);
}

} // namespace options
