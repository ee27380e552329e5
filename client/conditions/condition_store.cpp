#include "client/conditions/condition_store.h"

#include "platform/files/safe_file.h"
#include "platform/toolkit/exception.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QUrl>

#include <algorithm>

namespace client {
namespace {

constexpr qint64 largestFile = 1024 * 1024;

/// As a file name on every system; a text that is too long for one is known by its digest.
QString fileNameOf(const QString &text)
{
    constexpr int longest = 120;
    const QByteArray name = QUrl::toPercentEncoding(text, {}, ".~");
    const QByteArray shortened = name.size() <= longest ? name : QCryptographicHash::hash(name, QCryptographicHash::Sha256).toHex();
    return QString::fromLatin1(shortened);
}

/// Renames a file that cannot be read and throws what the person has to know.
[[noreturn]] void setAside(const QString &fileName)
{
    const QString aside = fileName + u".broken";
    QFile::remove(aside);
    const bool renamed = QFile::rename(fileName, aside);
    throw Exception(QStringLiteral("保存条件的文件“%1”已损坏，").arg(QDir::toNativeSeparators(fileName))
        + (renamed ? QStringLiteral("它已改名为 .broken，以后的条件照常保存。") : QStringLiteral("它也不能改名，请删除它。")));
}

} // namespace

ConditionSet *KeptConditions::find(const QString &name)
{
    const auto found = std::find_if(named.begin(), named.end(), [&name](const ConditionSet &set) { return set.name == name; });
    return found == named.end() ? nullptr : &*found;
}

QString conditionFolder(const QString &settingsDirectory, const QString &user, const QString &loginSite)
{
    return settingsDirectory + u"/Conditions/" + fileNameOf(user + u'@' + loginSite);
}

ConditionStore::ConditionStore(const QString &folder)
    : m_folder(folder)
{
}

QString ConditionStore::fileOf(const QString &name) const { return m_folder + u'/' + fileNameOf(name) + u".json"; }

QJsonObject ConditionStore::readFile(const QString &name) const
{
    QFile file(fileOf(name));
    if (!file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly))
        throw Exception(
            QStringLiteral("保存条件的文件“%1”打不开：%2。").arg(QDir::toNativeSeparators(file.fileName()), file.errorString()));
    const QJsonDocument document = file.size() <= largestFile ? QJsonDocument::fromJson(file.readAll()) : QJsonDocument();
    file.close();
    if (!document.isObject())
        setAside(file.fileName());
    return document.object();
}

void ConditionStore::writeFile(const QString &name, const QJsonObject &json) const
{
    const QByteArray text = QJsonDocument(json).toJson();
    if (text.size() > largestFile)
        throw Exception(QStringLiteral("保存的条件太多，请先在“管理”里删除一些。"));
    QDir().mkpath(m_folder);
    files::SafeFile file(fileOf(name));
    file.write(text);
    file.commit();
}

KeptConditions ConditionStore::read(const QString &screen) const
{
    const QJsonObject json = readFile(screen);
    KeptConditions kept;
    if (json.contains(u"last"))
        kept.last = conditionSetFrom(json[u"last"].toObject());
    for (const QJsonValue &named : json[u"named"].toArray())
        kept.named.append(conditionSetFrom(named.toObject()));
    return kept;
}

void ConditionStore::write(const QString &screen, const KeptConditions &kept) const
{
    QJsonObject json;
    if (kept.last)
        json[u"last"] = toJson(*kept.last);
    QJsonArray named;
    for (const ConditionSet &set : kept.named)
        named.append(toJson(set));
    json[u"named"] = named;
    writeFile(screen, json);
}

QStringList ConditionStore::readList(const QString &name) const
{
    QStringList list;
    for (const QJsonValue &word : readFile(name)[u"list"].toArray())
        list.append(word.toString());
    return list;
}

void ConditionStore::writeList(const QString &name, const QStringList &list) const
{
    writeFile(name, { { QStringLiteral("list"), QJsonArray::fromStringList(list) } });
}

} // namespace client
