// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/ToolFile.h"
#include "tests/support/TestProgram.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace rig;

class RigToolFileTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void aFaultLastsAsLongAsItIsArmed_data();
    void aFaultLastsAsLongAsItIsArmed();
    void bothFaultsAtATime();
    void theToolIsPutRightInTheEnd_data();
    void theToolIsPutRightInTheEnd();
    void aFaultFollowsThePath();
    void whatAKilledProcessLeftIsPutBack();
    void aToolThatWasNeverThereIsLeftAlone();
    void theToolIsLookedForBesideTheExecutable();

private:
    bool isThere() const { return QFile::exists(m_path); }
    bool mayRun() const;

    Journal m_journal;
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

bool RigToolFileTest::mayRun() const
{
#ifdef Q_OS_WIN
    return QFile(m_path).open(QIODevice::ReadOnly); // what a program's start needs
#else
    return QFile::permissions(m_path) & QFile::ExeOwner;
#endif
}

void RigToolFileTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_path = m_folder->filePath(QStringLiteral("tool.exe"));
    QFile file(m_path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("tool");
    file.setPermissions(file.permissions() | QFile::ExeOwner | QFile::ExeUser);
}

void RigToolFileTest::aFaultLastsAsLongAsItIsArmed_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::newRow("missing") << Fault::ToolMissing;
    QTest::newRow("not executable") << Fault::ToolNotExecutable;
}

void RigToolFileTest::aFaultLastsAsLongAsItIsArmed()
{
    QFETCH(Fault, fault);
    FaultBoard faults;
    ToolFile tool(faults, m_journal);
    tool.setPath(m_path);
    QVERIFY(isThere() && mayRun());
    faults.arm(fault);
    QCOMPARE(isThere(), fault != Fault::ToolMissing);
    QVERIFY(!mayRun());
    faults.arm(Fault::ToolChatty);
    QVERIFY(!mayRun());
    faults.clear(fault);
    QVERIFY(isThere() && mayRun());
}

void RigToolFileTest::bothFaultsAtATime()
{
    FaultBoard faults;
    {
        ToolFile tool(faults, m_journal);
        tool.setPath(m_path);
        faults.arm(Fault::ToolNotExecutable);
        faults.arm(Fault::ToolMissing);
        QVERIFY(!isThere());
        faults.clear(Fault::ToolMissing);
        QVERIFY(isThere() && !mayRun());
    }
    QVERIFY(isThere() && mayRun());
}

void RigToolFileTest::theToolIsPutRightInTheEnd_data()
{
    aFaultLastsAsLongAsItIsArmed_data();
}

void RigToolFileTest::theToolIsPutRightInTheEnd()
{
    QFETCH(Fault, fault);
    FaultBoard faults;
    {
        ToolFile tool(faults, m_journal);
        tool.setPath(m_path);
        faults.arm(fault);
        QVERIFY(!mayRun());
    }
    QVERIFY(isThere() && mayRun());
}

void RigToolFileTest::aFaultFollowsThePath()
{
    FaultBoard faults;
    faults.arm(Fault::ToolMissing);
    ToolFile tool(faults, m_journal);
    tool.setPath(m_path);
    QVERIFY(!isThere());
    tool.setPath(m_folder->filePath(QStringLiteral("other.exe")));
    QVERIFY(isThere());
}

void RigToolFileTest::whatAKilledProcessLeftIsPutBack()
{
    QVERIFY(QFile::rename(m_path, m_path + QStringLiteral(".aside")));
    FaultBoard faults;
    ToolFile tool(faults, m_journal);
    tool.setPath(m_path);
    QVERIFY(isThere());
}

void RigToolFileTest::aToolThatWasNeverThereIsLeftAlone()
{
    QVERIFY(QFile::remove(m_path));
    FaultBoard faults;
    ToolFile tool(faults, m_journal);
    tool.setPath(m_path);
    faults.arm(Fault::ToolMissing);
    faults.arm(Fault::ToolNotExecutable);
    faults.clearAll();
    QVERIFY(!isThere());
    QVERIFY(m_journal.entries().isEmpty() || !m_journal.entries().last().text.contains(m_path));
}

void RigToolFileTest::theToolIsLookedForBesideTheExecutable()
{
    FaultBoard faults;
    const ToolFile tool(faults, m_journal);
    QCOMPARE(tool.path(),
             QCoreApplication::applicationDirPath() + QStringLiteral("/OrvikFirmwareUpdata.exe"));
}

QUILLON_TEST_CORE(RigToolFileTest)
#include "tst_rig_tool_file.moc"
