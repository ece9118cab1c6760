// SPDX-License-Identifier: MIT
#include "host/check/request.h"

#include "host/check/sample.h"
#include "host/check/traces.h"
#include "host/log_tail.h"
#include "host/request.h"

namespace zr
{
namespace
{

const QString kSample = QStringLiteral("sample");

// Includes what the request logged, since the log may be gone afterwards.
Finding outcome(const QString& what, const RequestResult& result, const QStringList& messages)
{
    if (result.succeeded())
        return {Verdict::Ok, what, QStringLiteral("its thumbnail was made, and taken away again")};
    const QString sentence = QStringLiteral("no thumbnail: %1; mend what is marked FAIL above, if anything is");
    if (messages.isEmpty())
        return {Verdict::Fail, what, sentence.arg(result.failure.reason)};
    return {Verdict::Fail, what, sentence.arg(result.failure.reason) + QStringLiteral(". The request logged"),
            messages};
}

} // namespace

Findings checkRequests(bool drawsModels)
{
    const SampleFolder folder;
    const QString fault = folder.fault();
    if (!fault.isEmpty())
        return {{Verdict::Fail, kSample, fault}};
    CheckTraces traces;
    Findings findings;
    bool goesOn = true;
    const auto request = [&](SampleKind kind, const QString& what) {
        const QString path = folder.write(kind);
        const LogTail log;
        const RequestResult result = requestThumbnail(path, QString());
        findings += outcome(what, result, log.messagesOf(path));
        for (const QString& rest : traces.takeBack(path))
            findings += {Verdict::Note, what, rest};
        goesOn = result.succeeded();
    };
    request(SampleKind::SliceFile, QStringLiteral("sample slice file"));
    // A fault that affects slice files, too, would be reported twice.
    if (goesOn && drawsModels)
        request(SampleKind::Model, QStringLiteral("sample model"));
    traces.takeBackNewFiles();
    return findings;
}

} // namespace zr
