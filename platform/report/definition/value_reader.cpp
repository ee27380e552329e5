#include "platform/report/definition/value_reader.h"

#include <cmath>

namespace report {

bool ValueReader::atEnd()
{
    while (m_position < m_value.size() && m_value[m_position].isSpace())
        ++m_position;
    return m_position == m_value.size();
}

QString ValueReader::word()
{
    if (atEnd())
        fail(QStringLiteral("此处缺少内容"), offset());
    if (m_value[m_position] == u'"')
        return quoted();
    const qsizetype begin = m_position;
    while (m_position < m_value.size() && !m_value[m_position].isSpace())
        ++m_position;
    return m_value.mid(begin, m_position - begin).toString();
}

QString ValueReader::quoted()
{
    const int begin = offset();
    QString text;
    for (++m_position; m_position < m_value.size(); ++m_position) {
        const int at = offset();
        QChar character = m_value[m_position];
        if (character == u'"') {
            ++m_position;
            return text;
        }
        if (character == u'\\') {
            if (++m_position == m_value.size())
                break;
            const QChar escaped = m_value[m_position];
            if (escaped != u'n' && escaped != u'"' && escaped != u'\\')
                fail(QStringLiteral("“\\”之后只能是 n、\" 或 \\"), at);
            character = escaped == u'n' ? QChar(u'\n') : escaped;
        }
        m_offsets.append(at);
        text += character;
    }
    fail(QStringLiteral("引号没有结束"), begin);
}

qreal ValueReader::number(qreal least, qreal greatest)
{
    const bool missing = atEnd();
    const int at = offset();
    bool ok = false;
    const qreal value = missing ? 0 : word().toDouble(&ok);
    if (!ok || !std::isfinite(value))
        fail(QStringLiteral("此处应是数字"), at);
    if (value < least || value > greatest)
        fail(QStringLiteral("数字应在 %1 和 %2 之间").arg(least).arg(greatest), at);
    return value;
}

int ValueReader::length(qreal least, qreal greatest) { return int(std::lround(number(least, greatest) * millimetre)); }

QColor ValueReader::color()
{
    const bool missing = atEnd();
    const int at = offset();
    const QString name = missing ? QString() : word();
    if (name == u"none")
        return {};
    const QColor color = QColor::isValidColor(name) ? QColor(name) : QColor();
    if (!color.isValid() || color.alpha() != 255)
        fail(QStringLiteral("颜色应写成 #rrggbb、英文颜色名或 none"), at);
    return color;
}

bool ValueReader::yesOrNo()
{
    static constexpr const char *choices[] { "no", "yes" };
    return choice(choices) == 1;
}

int ValueReader::choice(std::span<const char *const> choices)
{
    const bool missing = atEnd();
    const int at = offset();
    const QString given = missing ? QString() : word();
    QStringList names;
    for (const char *name : choices) {
        if (given == QLatin1StringView(name))
            return int(names.size());
        names.append(QString::fromLatin1(name));
    }
    fail(QStringLiteral("“%1”不可用，应是：").arg(given.left(40)) + names.join(QStringLiteral("、")), at);
}

QString ValueReader::text()
{
    m_offsets.clear();
    if (atEnd())
        return {};
    if (m_value[m_position] == u'"')
        return quoted();
    const QString text = m_value.mid(m_position).trimmed().toString();
    for (int index = 0; index < text.size(); ++index)
        m_offsets.append(offset() + index);
    m_position = m_value.size();
    return text;
}

void ValueReader::requireEnd()
{
    if (!atEnd())
        fail(QStringLiteral("此后多出“%1”").arg(m_value.mid(m_position, 40)), offset());
}

} // namespace report
