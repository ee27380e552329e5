#pragma once

#include <QString>

/// A disk of a few kilobytes on a folder, while it lives. Needs root: others skip what is tried on it.
class SmallDisk {
public:
    SmallDisk(const QString &folder, qint64 bytes);
    SmallDisk(const SmallDisk &) = delete;
    ~SmallDisk();

    bool isMounted() const { return m_isMounted; }

private:
    QByteArray m_folder;
    bool m_isMounted = false;
};

/// No file can grow beyond so many bytes while it lives, as on a full disk; the failure comes in the middle of a write.
class FileSizeLimit {
public:
    explicit FileSizeLimit(qint64 bytes);
    FileSizeLimit(const FileSizeLimit &) = delete;
    ~FileSizeLimit();

private:
    quint64 m_before = 0;
};
