#include "platform/report/definition/report_file.h"

#include "platform/report/definition/report_properties.h"

#include <QFile>
#include <QHash>
#include <QSet>
#include <QStringDecoder>

#include <algorithm>
#include <optional>

namespace report {

namespace {

constexpr qint64 largestFile = 1 << 20;
constexpr int mostBands = 100;
constexpr int mostObjects = 2000;

const QHash<QStringView, BandKind> bandKinds {
    { u"title", BandKind::Title },
    { u"page-header", BandKind::PageHeader },
    { u"column-header", BandKind::ColumnHeader },
    { u"group-header", BandKind::GroupHeader },
    { u"master", BandKind::Master },
    { u"group-footer", BandKind::GroupFooter },
    { u"column-footer", BandKind::ColumnFooter },
    { u"summary", BandKind::Summary },
    { u"page-footer", BandKind::PageFooter },
};

const QHash<QStringView, ObjectKind> objectKinds {
    { u"memo", ObjectKind::Memo },
    { u"line", ObjectKind::Line },
    { u"rectangle", ObjectKind::Rectangle },
    { u"picture", ObjectKind::Picture },
    { u"barcode", ObjectKind::BarCode },
    { u"chart", ObjectKind::Chart },
};

/// Reads the file line by line: a line either opens a block or sets a property of the block at hand.
class Parser {
public:
    explicit Parser(const QString &fileName) { m_report.fileName = fileName; }

    Definition parse(const QByteArray &bytes)
    {
        const QString text = decoded(bytes);
        for (const QStringView line : QStringView(text).split(u'\n')) {
            ++m_line;
            readLine(line);
        }
        if (!m_ended)
            fail(1, QStringLiteral("缺少最后一行“end”，文件可能不完整"));
        check();
        return m_report;
    }

private:
    [[noreturn]] void fail(int column, const QString &what) const { throw FileError(m_report.fileName, { m_line, column }, what); }

    QString decoded(const QByteArray &bytes)
    {
        QStringDecoder decoder(QStringDecoder::Utf8);
        const QString text = decoder(bytes);
        const qsizetype wrong = std::max(text.indexOf(QChar::Null), decoder.hasError() ? text.indexOf(QChar::ReplacementCharacter) : -1);
        if (wrong < 0)
            return text;
        const QStringView before = QStringView(text).left(wrong);
        m_line = int(before.count(u'\n')) + 1;
        fail(int(wrong - before.lastIndexOf(u'\n')), QStringLiteral("不是 UTF-8 文本，报表文件应是文本文件"));
    }

    void readLine(QStringView line)
    {
        if (line.endsWith(u'\r'))
            line.chop(1);
        const QStringView content = line.trimmed();
        if (content.isEmpty() || content.startsWith(u'#'))
            return;
        const int indent = int(content.data() - line.data());
        if (m_ended)
            fail(indent + 1, QStringLiteral("“end”之后不能再有内容"));
        const qsizetype equals = content.indexOf(u'=');
        const qsizetype space = content.indexOf(u' ');
        if (!m_begun)
            begin(content);
        else if (equals > 0 && (space < 0 || content.left(equals).trimmed().indexOf(u' ') < 0))
            readProperty(content.left(equals).trimmed(), content.mid(equals + 1), indent, indent + int(equals) + 1);
        else
            openBlock(content, indent);
    }

    void begin(QStringView content)
    {
        if (content != u"report 1")
            fail(1, QStringLiteral("第一行应是“report 1”"));
        m_begun = true;
    }

    void openBlock(QStringView content, int indent)
    {
        ValueReader words(content);
        m_keys.clear();
        try {
            const QString kind = words.word();
            const bool alone = words.atEnd();
            const int column = indent + words.offset() + 1;
            const QString first = alone ? QString() : words.word();
            if (kind == u"end") {
                m_ended = true;
            } else if (kind == u"page") {
                m_band = nullptr;
                m_object = nullptr;
            } else if (kind == u"band") {
                openBand(first, column, indent);
                m_band->name = words.atEnd() ? QString() : words.word();
            } else if (const auto object = objectKinds.constFind(kind); object != objectKinds.cend()) {
                openObject(*object, first, indent);
            } else {
                fail(indent + 1, QStringLiteral("不认识的对象“%1”").arg(kind.left(40)));
            }
            words.requireEnd();
        } catch (const ValueError &error) {
            fail(indent + error.offset + 1, error.what);
        }
    }

    void openBand(const QString &kind, int column, int indent)
    {
        const auto found = bandKinds.constFind(kind);
        if (found == bandKinds.cend())
            fail(column, QStringLiteral("不认识的带区“%1”").arg(kind.left(40)));
        if (m_report.bands.size() == mostBands)
            fail(indent + 1, QStringLiteral("带区超过 %1 个").arg(mostBands));
        m_report.bands.append({ .kind = *found, .place = { m_line, indent + 1 } });
        m_band = &m_report.bands.last();
        m_object = nullptr;
    }

    void openObject(ObjectKind kind, const QString &name, int indent)
    {
        if (!m_band)
            fail(indent + 1, QStringLiteral("对象必须在带区之内：此前缺少 band"));
        if (++m_objects > mostObjects)
            fail(indent + 1, QStringLiteral("对象超过 %1 个").arg(mostObjects));
        if (!name.isEmpty() && m_names.contains(name.toUpper()))
            fail(indent + 1, QStringLiteral("对象名“%1”重复").arg(name.left(40)));
        m_names.insert(name.toUpper());
        m_band->objects.append({ .kind = kind, .name = name, .place = { m_line, indent + 1 } });
        m_object = &m_band->objects.last();
    }

    void readProperty(QStringView key, QStringView text, int keyOffset, int offset)
    {
        ValueReader value(text);
        const Property property { value, { m_line, offset + 1 } };
        try {
            if (m_keys.contains(key.toString()))
                fail(keyOffset + 1, QStringLiteral("属性“%1”重复").arg(key.left(40)));
            m_keys.insert(key.toString());
            if (!set(key, property))
                fail(keyOffset + 1, QStringLiteral("不认识的属性“%1”").arg(key.left(40)));
            value.requireEnd();
        } catch (const ValueError &error) {
            fail(offset + error.offset + 1, error.what);
        }
    }

    bool set(QStringView key, const Property &property)
    {
        if (m_object)
            return setProperty(*m_object, key, property);
        return m_band ? setProperty(*m_band, key, property) : setProperty(m_report, key, property);
    }

    /// What can only be seen of the whole.
    void check() const
    {
        QSet<BandKind> kinds;
        QSet<QString> groups;
        for (const Band &band : m_report.bands) {
            const auto refuse = [&](const QString &what) { throw FileError(m_report.fileName, band.place, what); };
            const bool group = band.kind == BandKind::GroupHeader || band.kind == BandKind::GroupFooter;
            if (!group && kinds.contains(band.kind))
                refuse(QStringLiteral("这种带区只能有一个"));
            kinds.insert(band.kind);
            if (band.kind == BandKind::GroupHeader && band.groupBy.isEmpty())
                refuse(QStringLiteral("分组头缺少属性“by”"));
            if (band.kind == BandKind::GroupHeader)
                groups.insert(band.name);
            if (band.kind == BandKind::GroupFooter && !groups.contains(band.name))
                refuse(QStringLiteral("分组尾“%1”之前没有同名的分组头").arg(band.name));
            checkObjects(band);
        }
        if (m_report.bands.isEmpty())
            throw FileError(m_report.fileName, { m_line, 1 }, QStringLiteral("报表没有带区"));
    }

    void checkObjects(const Band &band) const
    {
        for (const Object &object : band.objects) {
            if (object.kind == ObjectKind::Chart && (object.label.isEmpty() || object.value.isEmpty()))
                throw FileError(m_report.fileName, object.place, QStringLiteral("图表缺少属性“label”或“value”"));
            if (object.box.y() + object.box.height() > band.height)
                throw FileError(m_report.fileName, object.place, QStringLiteral("对象超出带区的高度"));
        }
    }

    Definition m_report;
    Band *m_band = nullptr;
    Object *m_object = nullptr;
    QSet<QString> m_names;
    QSet<QString> m_keys;
    int m_line = 0;
    int m_objects = 0;
    bool m_begun = false;
    bool m_ended = false;
};

} // namespace

FileError::FileError(const QString &fileName, FilePosition place, const QString &what)
    : Exception(QStringLiteral("报表文件“%1”第 %2 行第 %3 列：").arg(fileName).arg(place.line).arg(place.column) + what + u"。")
    , m_place(place)
{
}

Definition loadDefinition(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw Exception(QStringLiteral("报表文件“%1”打不开：").arg(fileName) + file.errorString());
    if (file.size() > largestFile)
        throw Exception(QStringLiteral("报表文件“%1”超过 1 MB，不像报表文件。").arg(fileName));
    return parseDefinition(file.read(largestFile), fileName);
}

Definition parseDefinition(const QByteArray &text, const QString &fileName) { return Parser(fileName).parse(text); }

} // namespace report
