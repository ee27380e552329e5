#pragma once

#include <QStringList>

namespace report {

/// Files that are written one by one beside their places and come to stand there together; removed when that does not happen.
class FileSet {
public:
    FileSet() = default;
    FileSet(const FileSet &) = delete;
    ~FileSet();

    /// Where the file is to be written meanwhile.
    QString add(const QString &name);
    /// Throws Exception when a file cannot take its place.
    void commit();

private:
    QStringList m_names;
};

} // namespace report
