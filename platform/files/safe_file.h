#pragma once

#include <QFile>

namespace files {

/// A file that is written beside its place under a name that nobody else has, and takes its place when it is whole. Until then, and
/// when anything fails, what stood there before stays as it is, and nothing is left beside it. It keeps the permissions of the file
/// that it replaces; where the name is a link, it replaces what the link names.
class SafeFile {
public:
    /// Documents wait for the disk before they replace an older file, so that a power cut cannot take both. What can be written again
    /// does not wait.
    enum class Kind { Copy, Document };

    /// Throws Exception when nothing can be written there. Each Exception of this class names the file and the reason.
    explicit SafeFile(const QString &fileName, Kind kind = Kind::Copy);
    SafeFile(const SafeFile &) = delete;
    ~SafeFile();

    /// Throws Exception when the disk does not take the bytes.
    void write(QByteArrayView bytes);
    /// For writers that take a device. A failed write is remembered: close() throws, even if later ones succeed.
    QFileDevice &device() { return m_part; }
    /// Where the file lies meanwhile, for writers that open it by its name.
    QString path() const { return m_part.fileName(); }

    /// Ends writing; throws Exception when the disk has not taken all of it. May wait for the disk.
    void close();
    /// Puts the file in its place, closing it first where close() was not called. Throws Exception when that fails.
    void commit();
    /// Throws the Exception that says that the file could not be written and why.
    [[noreturn]] void fail(const QString &reason) const;

private:
    /// The file meanwhile.
    class Part : public QFile {
    public:
        using QFile::QFile;
        FileError failure() const { return m_failure != NoError ? m_failure : error(); }

    protected:
        qint64 writeData(const char *data, qint64 size) override;

    private:
        FileError m_failure = NoError; ///< the first one; the base forgets it at the next write
    };

    QString reason() const;

    QString m_fileName;
    Part m_part;
    bool m_syncs = false;
    bool m_closed = false;
};

} // namespace files
