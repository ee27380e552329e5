#include "plugin/data/host_data.h"

#include "platform/toolkit/application.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/plugin_interface.h"
#include "platform/toolkit/published.h"

using namespace platform;

namespace {

QString lowerAscii(const QString &text)
{
    QString lower = text;
    for (QChar &letter : lower)
        if (letter >= u'A' && letter <= u'Z')
            letter = QChar(letter.unicode() + (u'a' - u'A'));
    return lower;
}

/// Finds items of a published list by name and remembers where the last one stood: the same name asked again costs one comparison.
class RememberedSearch {
public:
    QObject *find(const TList &list, const QString &name)
    {
        const QString wanted = lowerAscii(name);
        if (m_last < list.size() && lowerAscii(list[m_last]->objectName()) == wanted)
            return list[m_last];
        for (qsizetype index = 0; index < list.size(); ++index) {
            if (lowerAscii(list[index]->objectName()) == wanted) {
                m_last = index;
                return list[index];
            }
        }
        return nullptr;
    }

private:
    qsizetype m_last = 0;
};

RememberedSearch dataSets;
RememberedSearch values;

} // namespace

TClientDataSetEx *GlobalCdsAddr(const QString &Name)
{
    const TList &list = publishedList(Application->mainForm(), published_by_host::dataSets);
    auto *dataSet = qobject_cast<TClientDataSetEx *>(dataSets.find(list, Name));
    if (!dataSet)
        throw Exception(QStringLiteral("全局数据集\"%1\"不存在！").arg(Name));
    return dataSet;
}

QString GlobalValueAddr(const QString &Name)
{
    const QObject *value = values.find(publishedList(Application->mainForm(), published_by_host::values), Name);
    return value ? value->property("text").toString() : QString();
}

QDateTime GetServerDateTime()
{
    const QDateTime server = dateTimeOfDays(publishedProperty(Application->mainForm(), published_by_host::serverTime).toDouble());
    const QString minute = server.toString(u"yyyy-MM-dd HH:mm");
    return textToDateTime(minute + u':' + QString::number(Clock::now().time().second()));
}
