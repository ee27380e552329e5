#include "client/unattended/report_log.h"

#include <QDateTime>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace client {
namespace {

QString nameOf(ReportResult result)
{
    switch (result) {
    case ReportResult::Rows:
        return QStringLiteral("rows");
    case ReportResult::Empty:
        return QStringLiteral("empty");
    case ReportResult::Wrong:
        return QStringLiteral("usage");
    case ReportResult::Failed:
        break;
    }
    return QStringLiteral("failed");
}

QByteArray lineOf(const ReportJob &job, const ReportOutcome &outcome)
{
    QJsonObject line {
        { QStringLiteral("time"), QDateTime::currentDateTimeUtc().toString(Qt::ISODate) },
        { QStringLiteral("screen"), job.screen },
        { QStringLiteral("result"), nameOf(outcome.result) },
        { QStringLiteral("code"), int(outcome.result) },
        { QStringLiteral("rows"), outcome.rows },
        { QStringLiteral("files"), QJsonArray::fromStringList(outcome.files) },
        { QStringLiteral("milliseconds"), outcome.milliseconds },
    };
    if (!job.day.isEmpty())
        line[u"for"] = job.day;
    if (!outcome.message.isEmpty())
        line[u"message"] = outcome.message;
    if (!outcome.said.isEmpty())
        line[u"said"] = QJsonArray::fromStringList(outcome.said);
    if (!outcome.cut.isEmpty())
        line[u"cut"] = outcome.cut;
    return QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n';
}

bool append(const QString &fileName, const QByteArray &line)
{
    QFile file(fileName);
    if (file.open(QIODevice::WriteOnly | QIODevice::Append) && file.write(line) == line.size() && file.flush())
        return true;
    std::fprintf(stderr, "日志文件“%s”写不进去：%s。\n", fileName.toUtf8().constData(), file.errorString().toUtf8().constData());
    return false;
}

} // namespace

bool ReportLog::add(const ReportJob &job, const ReportOutcome &outcome)
{
    const QString told = outcome.message.isEmpty() ? outcome.cut : outcome.message;
    if (!told.isEmpty())
        std::fprintf(stderr, "%s\n", QString(job.screen + u'：' + told).toUtf8().constData());
    const QByteArray line = lineOf(job, outcome);
    const bool isKept = m_fileName.isEmpty() || append(m_fileName, line);
    if (m_fileName.isEmpty() || !isKept) {
        std::fputs(line.constData(), stdout);
        return std::fflush(stdout) == 0 && isKept;
    }
    return true;
}

} // namespace client
