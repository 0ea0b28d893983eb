// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Hostile flashing tools: what may come over the boot loaders' socket. The first byte of an input says in
// which state the chips are and how the rest comes, the second one which faults are armed; the rest is what
// arrives.
#include "rig/BootLoaderSession.h"
#include "rig/ToolWire.h"
#include "tests/fuzz/Application.h"
#include "tests/fuzz/Input.h"
#include "tests/fuzz/MemorySocket.h"
#include "tests/fuzz/ReadyDevice.h"

#include <QPointer>

using namespace rig;
using fuzz::require;

namespace {

constexpr quint8 kR1 = 0x01;
constexpr quint8 kPcRuns = 0x02;
constexpr quint8 kOtgRuns = 0x04;
constexpr quint8 kGreetingsOnly = 0x08;
constexpr quint8 kInPieces = 0x10; ///< it comes in small pieces, not line by line
constexpr quint8 kEndlessLine = 0xE0; ///< these together: in the end comes a line without an end

const Fault kFaults[]
    = {Fault::ToolFails, Fault::ToolChatty, Fault::DevicePulledAtErase, Fault::DeviceNeverReturns};

QList<QByteArray> linesOf(const QByteArray &bytes)
{
    QList<QByteArray> lines;
    for (qsizetype at = 0; at < bytes.size();) {
        const qsizetype end = bytes.indexOf('\n', at);
        const qsizetype next = end < 0 ? bytes.size() : end + 1;
        lines.append(bytes.mid(at, next - at));
        at = next;
    }
    return lines;
}

QList<QByteArray> inPieces(const QByteArray &bytes)
{
    constexpr qsizetype kPiece = 7;
    QList<QByteArray> pieces;
    pieces.reserve(bytes.size() / kPiece + 1);
    for (qsizetype at = 0; at < bytes.size(); at += kPiece)
        pieces.append(bytes.mid(at, kPiece));
    return pieces;
}

QList<QByteArray> arrivals(quint8 manner, const QByteArray &bytes)
{
    QList<QByteArray> parts = manner & kInPieces ? inPieces(bytes) : linesOf(bytes);
    if ((manner & kEndlessLine) == kEndlessLine)
        parts.append(QByteArray(wire::kMaxLine + 1, 'x'));
    return parts;
}

void checkWords(const QByteArray &line)
{
    QStringList words = wire::decode(line);
    require(!words.isEmpty(), "a line has a word, be it empty");
    words.append(QString());
    require(wire::decode(wire::encode(words)) == words, "words come across, whatever they hold");
}

void checkAnswer(const QByteArray &line)
{
    const QStringList words = wire::decode(line);
    require(wire::encode(words) == line, "an answer is written as messages are");
    const QString &word = words.first();
    const bool report = word == QLatin1StringView(wire::kReport);
    require(report || word == QLatin1StringView(wire::kFaults) || word == QLatin1StringView(wire::kYes)
                || word == QLatin1StringView(wire::kNo),
            "an answer is one of four");
    require(!report || decodeBootLoaderReport(QByteArray::fromHex(words.value(1).toLatin1())),
            "a tool can read what a chip answers");
}

class Conversation {
public:
    Conversation(ReadyDevice &stage, BootLoaderPort &port)
        : m_stage(stage)
        , m_port(port)
        , m_socket(new MemorySocket)
        , m_session(new BootLoaderSession(m_socket, port, stage.device(), stage.faults(), stage.journal()))
    {
        // As the port does it with those who connect.
        QObject::connect(m_session, &BootLoaderSession::greeted, m_session,
                         [this] { m_port.begin(m_session->run()); });
        QObject::connect(m_session, &BootLoaderSession::ended, m_session,
                         [this] { m_port.end(m_session->run()); });
    }
    ~Conversation() { delete m_session; }
    Q_DISABLE_COPY_MOVE(Conversation)

    void hear(const QByteArray &part)
    {
        const bool wasOpen = m_socket->isOpen();
        const int restarts[] = {m_port.at(Chip::Pc).restarts(), m_port.at(Chip::Otg).restarts()};
        m_lines += part.count('\n');
        m_socket->arrive(part);
        const QList<QByteArray> answers = linesOf(m_socket->takeWritten());
        require(wasOpen || answers.isEmpty(), "who made no sense is not answered any more");
        m_answers += answers.size();
        require(m_answers <= m_lines, "a message has one answer at most");
        for (const QByteArray &answer : answers)
            checkAnswer(answer);
        for (const Chip chip : {Chip::Pc, Chip::Otg})
            m_stage.bringBack(m_port.at(chip), chip, restarts[int(chip)]);
    }

    void end()
    {
        m_socket->hangUp();
        require(!m_port.isFlashing(), "a tool that has gone flashes nothing");
        for (const ToolRun &run : m_port.runs())
            require(run.ended >= run.started, "a run that has begun has ended");
    }

private:
    ReadyDevice &m_stage;
    BootLoaderPort &m_port;
    MemorySocket *m_socket; // the session's
    BootLoaderSession *m_session;
    qsizetype m_lines = 0;
    qsizetype m_answers = 0;
};

void play(ReadyDevice &stage, BootLoaderPort &port, fuzz::Input &input)
{
    const quint8 state = input.takeByte();
    const quint8 armed = input.takeByte();
    stage.reset(state & kR1 ? Model::R1 : Model::R2, state & kPcRuns, state & kOtgRuns);
    for (std::size_t i = 0; i < std::size(kFaults); ++i) {
        if (armed >> i & 1)
            stage.faults().arm(kFaults[i]);
    }
    port.forgetRuns();
    port.m_greetingsOnly = bool(state & kGreetingsOnly);
    const QByteArray bytes = input.takeRest();
    for (const QByteArray &line : linesOf(bytes))
        checkWords(line);
    Conversation conversation(stage, port);
    for (const QByteArray &part : arrivals(state, bytes))
        conversation.hear(part);
    conversation.end();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::startApplication();
    static ReadyDevice stage;
    static BootLoaderPort port(stage.thread(), stage.device(), stage.faults(), stage.journal());
    fuzz::Input input(data, size);
    play(stage, port, input);
    return 0;
}
