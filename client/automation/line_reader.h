#pragma once

#include <QObject>

#include <memory>

namespace client {

/// Reads the standard input on a thread of its own. The signals come on the thread of the reader, which may be destroyed at any
/// time; the thread itself ends with the program.
class LineReader : public QObject {
    Q_OBJECT

public:
    LineReader();
    ~LineReader() override;
    void start();

Q_SIGNALS:
    void lineRead(const QByteArray &line);
    void ended();

private:
    struct Mailbox;
    std::shared_ptr<Mailbox> m_mailbox;
};

} // namespace client
