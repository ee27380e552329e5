#pragma once

#include <QFile>

#include <string_view>

/// A file that is written beside its place and takes it at the end; removed when that does not happen.
class ExportFile {
public:
    /// Throws Exception when nothing can be written there; so do the others.
    explicit ExportFile(const QString &fileName);
    ExportFile(const ExportFile &) = delete;
    ~ExportFile();

    void write(std::string_view bytes);
    /// Where the file lies meanwhile, for somebody who opens it by its name.
    QString path() const { return m_part.fileName(); }
    void commit();
    /// Throws the Exception that says that the file could not be written and why.
    [[noreturn]] void fail(const QString &reason) const;

private:
    QString m_fileName;
    QFile m_part;
};
