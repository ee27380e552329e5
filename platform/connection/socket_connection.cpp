#include "platform/connection/socket_connection.h"

#include "platform/toolkit/long_work.h"

#include <new>

using namespace platform;

namespace {

packet::PacketPtr runOnChannel(StatementChannel &channel, const std::string &statement, WorkProgress &progress)
{
    try {
        return channel.run(statement, progress.stop.get_token(), [&progress](std::int64_t rows) { progress.rows = rows; });
    } catch (const Exception &) {
        throw;
    } catch (const std::bad_alloc &) {
        throw Exception(QStringLiteral("内存不足，查询结果放不下，请缩小查询范围后再查。"));
    } catch (const std::exception &exception) {
        throw Exception(QString::fromUtf8(exception.what()));
    }
}

} // namespace

packet::PacketPtr TSocketConnectionEx::runStatement(const QString &statement)
{
    if (!m_channel)
        throw Exception(QStringLiteral("没有连接到应用服务器，请重新登录后再查询。"));
    while (true) {
        const auto result = std::make_shared<packet::PacketPtr>();
        try {
            runLongWork(QStringLiteral("正在查询…"), QStringLiteral("查询已取消"),
                [channel = m_channel, text = statement.toStdString(), result](
                    WorkProgress &progress) { *result = runOnChannel(*channel, text, progress); });
            return *result;
        } catch (const SessionEnded &ended) {
            m_channel->logInAgain(ended);
        }
    }
}
