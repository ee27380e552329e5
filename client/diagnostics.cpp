#include "client/diagnostics.h"

#include "client/options.h"
#include "platform/files/safe_file.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/exception.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QMutex>
#include <QRegularExpression>
#include <QScreen>
#include <QSysInfo>

#include <functional>

using namespace platform;

namespace client {
namespace {

constexpr qsizetype mostLines = 300;
constexpr qsizetype mostRead = 8000; ///< characters of a text, before its values are taken out
constexpr qsizetype longestLine = 400; ///< characters

QString logFile() { return Application->settingsDirectory() + QStringLiteral("/diagnostics.log"); }

void write(const QString &fileName, const QString &text)
{
    files::SafeFile file(fileName);
    file.write(text.toUtf8());
    file.commit();
}

QString writable(const QString &folder) { return folder + (QFileInfo(folder).isWritable() ? QString() : QStringLiteral("（不能写入）")); }

/// An address may hold a password before its host.
QString withoutPassword(QString address)
{
    static const QRegularExpression password(
        QStringLiteral("(?<=://)[^@/]*(?=@)|(?<=pwd=|password=)[^;&]*"), QRegularExpression::CaseInsensitiveOption);
    return address.replace(password, QStringLiteral("…"));
}

} // namespace

QString withoutData(QString text)
{
    static const QRegularExpression quoted(QStringLiteral("'[^']*(?:'|$)(?:\\s*,\\s*'[^']*(?:'|$))*|“[^”]*”|\"[^\"]*\""));
    static const QRegularExpression number(QStringLiteral("\\b(?=\\w*\\d)[A-Za-z0-9]{6,}\\b"));
    text.truncate(mostRead);
    text.replace(quoted, QStringLiteral("'…'"));
    text.replace(number, QStringLiteral("…"));
    return text.simplified().left(longestLine);
}

/// The lines, which statements add to from other threads.
class Diagnostics::Log {
public:
    explicit Log(const QStringList &lines)
        : m_lines(lines)
    {
    }
    void add(const QString &line)
    {
        const QMutexLocker lock(&m_mutex);
        m_lines.append(dateTimeToText(Clock::now()) + u' ' + line);
        if (m_lines.size() > mostLines)
            m_lines.removeFirst();
    }
    QStringList lines() const
    {
        const QMutexLocker lock(&m_mutex);
        return m_lines;
    }

private:
    mutable QMutex m_mutex;
    QStringList m_lines;
};

class Diagnostics::TimedChannel : public StatementChannel {
public:
    TimedChannel(std::shared_ptr<StatementChannel> channel, std::shared_ptr<Log> log)
        : m_channel(std::move(channel))
        , m_log(std::move(log))
    {
    }
    packet::PacketPtr run(const std::string &statement, std::stop_token stop, const std::function<void(std::int64_t)> &progress) override
    {
        QElapsedTimer time;
        time.start();
        const auto keep = [&](const QString &result) {
            m_log->add(
                QStringLiteral("查询 %1 毫秒，%2：").arg(time.elapsed()).arg(result) + withoutData(QString::fromStdString(statement)));
        };
        try {
            packet::PacketPtr packet = m_channel->run(statement, std::move(stop), progress);
            keep(QStringLiteral("%1 行").arg(packet->rowCount()));
            return packet;
        } catch (...) {
            keep(QStringLiteral("没有结果"));
            throw;
        }
    }

    void logInAgain(const SessionEnded &ended) override { m_channel->logInAgain(ended); }

private:
    const std::shared_ptr<StatementChannel> m_channel;
    const std::shared_ptr<Log> m_log;
};

Diagnostics::Diagnostics()
    : m_log(std::make_shared<Log>(keptLines()))
{
    m_log->add(QStringLiteral("启动 ") + QApplication::applicationVersion());
    connect(Application, &TApplication::happened, this, &Diagnostics::hear);
}

Diagnostics::~Diagnostics()
{
    try {
        write(logFile(), m_log->lines().join(u'\n') + u'\n');
    } catch (const Exception &) {
        // Nobody could be told any more.
    }
}

QStringList Diagnostics::keptLines()
{
    QFile file(logFile());
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
}

QStringList Diagnostics::lines() const { return m_log->lines(); }

std::shared_ptr<StatementChannel> Diagnostics::timed(std::shared_ptr<StatementChannel> channel) const
{
    return std::make_shared<TimedChannel>(std::move(channel), m_log);
}

void Diagnostics::hear(const QString &kind, const QVariantMap &particulars)
{
    const QString what = kind == u"error" ? QStringLiteral("错误 ")
        : kind == u"message"              ? QStringLiteral("提示 ")
        : kind == u"cancelled"            ? QStringLiteral("取消 ")
                                          : QString();
    if (!what.isEmpty())
        m_log->add(what + withoutData(particulars[QStringLiteral("text")].toString()));
}

QString programDetails(const Options &options, const QString &place)
{
    const QScreen *screen = QApplication::primaryScreen();
    QStringList lines {
        QApplication::applicationDisplayName(),
        QStringLiteral("版本 %1，Qt %2").arg(QApplication::applicationVersion(), QString::fromLatin1(qVersion())),
        QStringLiteral("系统 %1，%2").arg(QSysInfo::prettyProductName(), QSysInfo::kernelVersion()),
        QStringLiteral("数据 ") + withoutPassword(place),
        QStringLiteral("设置目录 ") + writable(Application->settingsDirectory()),
        QStringLiteral("插件目录 ") + Application->pluginDirectory(),
    };
    if (screen)
        lines.append(QStringLiteral("显示 %1，%2×%3，%4 倍，字体 %5")
                         .arg(QApplication::platformName())
                         .arg(screen->size().width())
                         .arg(screen->size().height())
                         .arg(screen->devicePixelRatio())
                         .arg(QApplication::font().family()));
    if (!options.loginSite.isEmpty())
        lines.append(QStringLiteral("登录网点 ") + options.loginSite);
    if (options.compressed)
        lines.append(QStringLiteral("压缩传送"));
    if (!options.serverCertificate.isEmpty())
        lines.append(QStringLiteral("证书 ") + options.serverCertificate);
    return lines.join(u'\n');
}

void writeDiagnostics(const QString &fileName, const Options &options, const QString &place, const QStringList &lines)
{
    write(fileName,
        programDetails(options, place) + QStringLiteral("\n\n最近发生的事（语句和提示中的值已去掉）：\n") + lines.join(u'\n') + u'\n');
}

} // namespace client
