#include "client/unattended/report_plan.h"

#include "client/unattended/caption.h"

#include <QFile>
#include <QFileInfo>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <functional>

namespace client {
namespace {

using Json = nlohmann::ordered_json; // conditions are set in the order in which they stand

/// One object of the plan, and where it stands.
struct Part {
    const Json &json;
    QString place;
};

[[noreturn]] void refuse(const QString &place, const QString &key, const QString &wanted)
{
    throw WrongRequest(QStringLiteral("%1：“%2”应是%3。").arg(place, key, wanted));
}

QString textOf(const Part &part, const char *key)
{
    const auto found = part.json.find(key);
    if (found == part.json.end())
        return {};
    if (!found->is_string())
        refuse(part.place, QString::fromLatin1(key), QStringLiteral("文字"));
    return QString::fromStdString(found->get<std::string>());
}

bool flagOf(const Part &part, const char *key)
{
    const auto found = part.json.find(key);
    if (found != part.json.end() && !found->is_boolean())
        refuse(part.place, QString::fromLatin1(key), QStringLiteral(" true 或 false"));
    return found != part.json.end() && found->get<bool>();
}

/// One text, or a list of them.
QStringList textsOf(const Part &part, const char *key)
{
    const auto found = part.json.find(key);
    if (found == part.json.end())
        return {};
    QStringList texts;
    for (const Json &item : found->is_array() ? *found : Json::array({ *found })) {
        if (!item.is_string())
            refuse(part.place, QString::fromLatin1(key), QStringLiteral("文字，或文字的列表"));
        texts.append(QString::fromStdString(item.get<std::string>()));
    }
    return texts;
}

QList<std::pair<QString, QString>> conditionsOf(const Part &part)
{
    QList<std::pair<QString, QString>> conditions;
    const auto found = part.json.find("set");
    if (found == part.json.end())
        return conditions;
    if (!found->is_object())
        refuse(part.place, QStringLiteral("set"), QStringLiteral("对象，如 {\"扫描网点\":\"北京\"}"));
    for (const auto &[caption, value] : found->items()) {
        if (!value.is_string())
            refuse(part.place, QString::fromStdString(caption), QStringLiteral("文字"));
        conditions.append({ QString::fromStdString(caption), QString::fromStdString(value.get<std::string>()) });
    }
    return conditions;
}

void refuseUnknownKeys(const Part &part, const QStringList &known)
{
    for (const auto &[key, value] : part.json.items()) {
        if (!known.contains(QString::fromStdString(key)))
            throw WrongRequest(part.place + u'：' + notAmong(QStringLiteral("键"), QString::fromStdString(key), known).message());
    }
}

const QStringList jobKeys { QStringLiteral("screen"), QStringLiteral("site"), QStringLiteral("for"), QStringLiteral("set"),
    QStringLiteral("page"), QStringLiteral("drill"), QStringLiteral("drillColumn"), QStringLiteral("to"), QStringLiteral("printButton"),
    QStringLiteral("encoding"), QStringLiteral("failIfEmpty") };

ReportJob jobOf(const Part &part)
{
    if (!part.json.is_object())
        throw WrongRequest(part.place + QStringLiteral("：应是对象，如 {\"screen\":\"扫描员到件统计\",\"to\":\"到件 {昨天}.xlsx\"}。"));
    refuseUnknownKeys(part, jobKeys);
    const ReportJob job {
        .screen = textOf(part, "screen"),
        .site = textOf(part, "site"),
        .day = textOf(part, "for"),
        .conditions = conditionsOf(part),
        .page = textOf(part, "page"),
        .drills = textsOf(part, "drill"),
        .drillColumn = textOf(part, "drillColumn"),
        .files = textsOf(part, "to"),
        .printButton = textOf(part, "printButton"),
        .encoding = textOf(part, "encoding"),
        .failIfEmpty = flagOf(part, "failIfEmpty"),
    };
    if (job.screen.isEmpty() || job.files.isEmpty())
        throw WrongRequest(part.place + QStringLiteral("：缺少“screen”（窗口）或“to”（文件）。"));
    return job;
}

Json parse(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw WrongRequest(QStringLiteral("计划文件“%1”打不开：%2。").arg(fileName, file.errorString()));
    const QByteArray text = file.readAll();
    try {
        return Json::parse(text.begin(), text.end());
    } catch (const Json::parse_error &error) {
        const qsizetype line = text.first(std::min<qsizetype>(text.size(), qsizetype(error.byte))).count('\n') + 1;
        throw WrongRequest(QStringLiteral("计划文件“%1”第 %2 行附近不是 JSON，请检查引号、逗号和括号。").arg(fileName).arg(line));
    }
}

} // namespace

QList<ReportJob> readPlan(const QString &fileName, const QString &day)
{
    const Json json = parse(fileName);
    const QString place = QStringLiteral("计划文件“%1”").arg(fileName);
    if (!json.is_object() || !json.contains("reports") || !json["reports"].is_array() || json["reports"].empty())
        throw WrongRequest(place + QStringLiteral("：应是 {\"reports\":[…]}，其中至少有一个报表。"));
    const Part plan { json, place };
    refuseUnknownKeys(plan, { QStringLiteral("for"), QStringLiteral("site"), QStringLiteral("reports") });
    QList<ReportJob> jobs;
    for (const Json &report : json["reports"]) {
        ReportJob job = jobOf({ report, QStringLiteral("%1的第 %2 个报表").arg(place).arg(jobs.size() + 1) });
        job.folder = QFileInfo(fileName).absolutePath();
        job.site = job.site.isEmpty() ? textOf(plan, "site") : job.site;
        job.day = !day.isEmpty() ? day : job.day.isEmpty() ? textOf(plan, "for") : job.day;
        jobs.append(job);
    }
    return jobs;
}

} // namespace client
