// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/ServerAnswer.h"

#include "rig/FirmwareImage.h"
#include "rig/ReleaseNotes.h"
#include "rig/SimulatedChip.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace rig {

using namespace std::chrono_literals;
using Manner = HttpAnswer::Manner;

namespace {

constexpr int kHugeNotes = 1000 * 1000;
constexpr auto kDripTime = 4000ms;

struct Context {
    const RequestSubject &subject;
    const QByteArray &target;
};

// One way to spoil an answer. Those that concern one kind of request pass the other kind by.
struct Effect {
    Fault fault;
    std::optional<RequestKind> only;
    void (*apply)(HttpAnswer &answer, const Context &context);
};

QByteArray imageFor(const RequestSubject &subject, Chip chip)
{
    return buildImage({subject.model, chip, subject.version});
}

QJsonObject versionEntry(const RequestSubject &subject)
{
    const ReleaseNotes notes = releaseNotes(subject.chip, subject.version);
    return {{QStringLiteral("f_ver"), subject.version.toString()},
            {QStringLiteral("f_remark"), notes.chinese},
            {QStringLiteral("f_remark_en"), notes.english}};
}

QByteArray listOf(const QJsonValue &entry)
{
    return QJsonDocument(QJsonArray{entry}).toJson(QJsonDocument::Compact);
}

QByteArray withHugeNotes(const RequestSubject &subject)
{
    QJsonObject entry = versionEntry(subject);
    for (const QString &key : {QStringLiteral("f_remark"), QStringLiteral("f_remark_en")})
        entry.insert(key, QString(kHugeNotes, QLatin1Char('W')));
    return listOf(entry);
}

void becomePage(HttpAnswer &answer, int status, const QByteArray &reason)
{
    const QByteArray title = QByteArray::number(status) + ' ' + reason;
    answer.status = status;
    answer.reason = reason;
    answer.contentType = "text/html";
    answer.body
        = "<html><head><title>" + title + "</title></head><body><h1>" + title + "</h1></body></html>\n";
}

void redirect(HttpAnswer &answer, const QByteArray &target)
{
    becomePage(answer, 302, "Found");
    answer.moreHead = "Location: " + target + "\r\n";
}

const QList<Effect> &effects()
{
    constexpr auto queries = RequestKind::VersionQuery;
    constexpr auto downloads = RequestKind::Download;
    using Answer = HttpAnswer;
    // clang-format off
    static const QList<Effect> table {
        {Fault::ServerMalformedJson, queries, [](Answer &a, const Context &) { a.body.truncate(a.body.size() / 2); }},
        {Fault::ServerEmptyList, queries, [](Answer &a, const Context &) { a.body = "[]"; }},
        {Fault::ServerObject, queries, [](Answer &a, const Context &c) { a.body = QJsonDocument(versionEntry(c.subject)).toJson(); }},
        {Fault::ServerNoVersion, queries, [](Answer &a, const Context &) { a.body = R"([{"f_remark":"-","f_remark_en":"-"}])"; }},
        {Fault::ServerNoObject, queries, [](Answer &a, const Context &) { a.body = "[42]"; }},
        {Fault::ServerHugeNotes, queries, [](Answer &a, const Context &c) { a.body = withHugeNotes(c.subject); }},
        {Fault::ServerDamagedImage, downloads, [](Answer &a, const Context &) { a.body.back() = char(a.body.back() ^ 1); }},
        {Fault::ServerForeignImage, downloads, [](Answer &a, const Context &c) { a.body = imageFor(c.subject, c.subject.chip == Chip::Pc ? Chip::Otg : Chip::Pc); }},
        {Fault::ServerHugeImage, downloads, [](Answer &a, const Context &c) { a.body = buildImage({c.subject.model, c.subject.chip, c.subject.version}, kFlashSize); }},
        {Fault::ServerEmptyBody, {}, [](Answer &a, const Context &) { a.body.clear(); }},
        {Fault::ServerNotFound, {}, [](Answer &a, const Context &) { becomePage(a, 404, "Not Found"); }},
        {Fault::ServerBroken, {}, [](Answer &a, const Context &) { becomePage(a, 500, "Internal Server Error"); }},
        {Fault::ServerRedirects, {}, [](Answer &a, const Context &c) { redirect(a, c.target); }},
        {Fault::ServerGarbage, {}, [](Answer &a, const Context &) { a.raw = "\x7f" "ELF not an answer\r\n\r\n\xff\xfe"; }},
        {Fault::ServerSlow, {}, [](Answer &a, const Context &) { a.delay = 1500ms; }},
        {Fault::ServerLate, {}, [](Answer &a, const Context &) { a.delay = 5000ms; }},
        {Fault::ServerDripping, {}, [](Answer &a, const Context &) { a.dripTime = kDripTime; }},
        {Fault::ServerCutShort, {}, [](Answer &a, const Context &) { a.cutAfter = a.body.size() / 2; }},
        {Fault::ServerDropped, {}, [](Answer &a, const Context &) { a.manner = Manner::HangUp; }},
        {Fault::ServerSilent, {}, [](Answer &a, const Context &) { a.manner = Manner::Silence; }},
    };
    // clang-format on
    return table;
}

HttpAnswer soundAnswer(const RequestSubject &subject)
{
    HttpAnswer answer;
    if (subject.kind == RequestKind::VersionQuery) {
        answer.contentType = "application/json; charset=utf-8";
        answer.body = listOf(versionEntry(subject));
    } else {
        answer.contentType = "application/octet-stream";
        answer.body = imageFor(subject, subject.chip);
    }
    return answer;
}

} // namespace

HttpAnswer answerTo(const RequestSubject &subject, const QByteArray &target, FaultBoard &faults)
{
    HttpAnswer answer = soundAnswer(subject);
    for (const Effect &effect : effects()) {
        if (effect.only && effect.only != subject.kind)
            continue;
        if (faults.strikes(effect.fault, subject.chip, subject.kind))
            effect.apply(answer, {subject, target});
    }
    return answer;
}

HttpAnswer errorPage(int status, const QByteArray &reason)
{
    HttpAnswer answer;
    becomePage(answer, status, reason);
    return answer;
}

} // namespace rig
