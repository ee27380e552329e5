#include "client/automation/line_reader.h"

#include <iostream>
#include <mutex>
#include <thread>

namespace client {

/// Where the thread finds the reader as long as there is one.
struct LineReader::Mailbox {
    std::mutex mutex;
    LineReader *reader;

    template <class Work>
    void post(Work work)
    {
        const std::lock_guard lock(mutex);
        if (reader)
            QMetaObject::invokeMethod(
                reader, [reader = reader, work] { work(reader); }, Qt::QueuedConnection);
    }
};

LineReader::LineReader()
    : m_mailbox(std::make_shared<Mailbox>())
{
    m_mailbox->reader = this;
}

LineReader::~LineReader()
{
    const std::lock_guard lock(m_mailbox->mutex);
    m_mailbox->reader = nullptr;
}

void LineReader::start()
{
    std::thread([mailbox = m_mailbox] {
        std::string line;
        while (std::getline(std::cin, line))
            mailbox->post([text = QByteArray::fromStdString(line)](LineReader *reader) { Q_EMIT reader->lineRead(text); });
        mailbox->post([](LineReader *reader) { Q_EMIT reader->ended(); });
    }).detach();
}

} // namespace client
