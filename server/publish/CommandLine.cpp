// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "server/publish/CommandLine.h"

#include <QFile>
#include <QFileInfo>

namespace publish {

namespace {

using Command = Options::Command;

const QString kModel = QStringLiteral("model");
const QString kChip = QStringLiteral("chip");
const QString kVersion = QStringLiteral("version");
const QString kNotesEnglish = QStringLiteral("notes-en");
const QString kNotesChinese = QStringLiteral("notes-zh");
const QString kForce = QStringLiteral("force");

QString modelsInWords()
{
    return modelNames().join(QStringLiteral(" or "));
}

QList<QCommandLineOption> optionTable()
{
    const QString file = QStringLiteral("file");
    return {
        {kModel, QStringLiteral("Device model: %1.").arg(modelsInWords()), QStringLiteral("model")},
        {kChip, QStringLiteral("Which of its two processors: pc or otg."), QStringLiteral("chip")},
        {kVersion, QStringLiteral("Version of the image: three numbers, as 1.2.0."),
         QStringLiteral("version")},
        {kNotesEnglish, QStringLiteral("Release notes in English, UTF-8."), file},
        {kNotesChinese, QStringLiteral("Release notes in Chinese, UTF-8."), file},
        {kForce, QStringLiteral("Publish a version that is not newer than the served one.")},
    };
}

QString helpText(const options::Words &words)
{
    return words.helpTextFor(QStringLiteral("quillon-publish"), QStringLiteral("SITE COMMAND [options]"))
        + QStringLiteral(
               "\nCommands:\n"
               "  add IMAGE    publish this image; needs every option but --force\n"
               "  status       what is served, and whether it is whole\n"
               "  rollback     serve again what was served before; needs --model and --chip\n"
               "\nExit status: 0 when it is done, 1 when it could not be done or the site is damaged,\n"
               "2 for a command line that asks for nothing that can be done.\n");
}

// Complains about the first thing that is wrong.
class Reader {
public:
    explicit Reader(options::Words &words)
        : m_words(words)
    {
    }

    Options read()
    {
        readCommand();
        if (m_options.command != Command::Status)
            readProject();
        if (m_options.command == Command::Add) {
            readVersion();
            m_options.release.notesInEnglish = notes(kNotesEnglish);
            m_options.release.notesInChinese = notes(kNotesChinese);
            readImage();
        }
        return m_options;
    }

private:
    void readCommand()
    {
        struct Row {
            const char *name;
            Command command;
            int words;
        };
        constexpr Row table[]{
            {"add", Command::Add, 3}, {"status", Command::Status, 2}, {"rollback", Command::RollBack, 2}};
        const QStringList words = m_words.positionalArguments();
        m_options.site = words.value(0);
        m_options.image = words.value(2);
        m_options.force = m_words.isSet(kForce);
        for (const Row &row : table) {
            if (words.value(1) != QLatin1StringView(row.name))
                continue;
            m_options.command = row.command;
            if (words.size() < row.words)
                m_words.complain(QStringLiteral("which image?"));
            else if (words.size() > row.words)
                m_words.complain(QStringLiteral("unexpected argument \"%1\"").arg(words.at(row.words)));
            return;
        }
        m_words.complain(
            QStringLiteral("a folder and one of add, status and rollback are wanted; --help tells more"));
    }

    QString required(const QString &option)
    {
        if (!m_words.isSet(option))
            m_words.complain(QStringLiteral("--%1 is missing").arg(option));
        return m_words.value(option);
    }

    void readProject()
    {
        const QString model = required(kModel);
        const QString chip = required(kChip);
        const auto project = projectOf(model, chip);
        if (!project)
            m_words.complain(QStringLiteral("there is no %1 %2; --model takes %3, --chip takes pc or otg")
                                 .arg(model, chip, modelsInWords()));
        m_options.project = project.value_or(Project());
    }

    void readVersion()
    {
        const QString text = required(kVersion);
        const auto version = versionFrom(text);
        if (!version)
            m_words.complain(
                QStringLiteral("--version takes three numbers from 0 to 65535, as 1.2.0, not \"%1\"")
                    .arg(text));
        m_options.release.version = version.value_or(QVersionNumber());
    }

    QString notes(const QString &option)
    {
        QFile file(required(option));
        if (file.fileName().isEmpty())
            m_words.complain(QStringLiteral("--%1 takes the name of a file").arg(option));
        else if (!file.open(QIODevice::ReadOnly))
            m_words.complain(QStringLiteral("%1: %2").arg(file.fileName(), file.errorString()));
        if (!file.isOpen())
            return {};
        const auto text = notesFrom(file.readAll());
        if (!text)
            m_words.complain(QStringLiteral("%1 is not UTF-8").arg(file.fileName()));
        return text.value_or(QString());
    }

    void readImage()
    {
        const QFileInfo image(m_options.image);
        if (!image.isFile() || !image.isReadable())
            m_words.complain(QStringLiteral("%1 cannot be read").arg(m_options.image));
        else if (image.size() == 0)
            m_words.complain(QStringLiteral("%1 is empty").arg(m_options.image));
    }

    options::Words &m_words;
    Options m_options;
};

} // namespace

CommandLine readCommandLine(const QStringList &arguments)
{
    options::Words words(QStringLiteral("Fills the folder from which a web server answers upgrade panels."),
                         optionTable(), arguments);
    const auto read = [](options::Words &words) { return Reader(words).read(); };
    return options::judge<Options>(words, read, helpText);
}

} // namespace publish
