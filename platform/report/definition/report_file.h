#pragma once

#include "platform/report/definition/definition.h"
#include "platform/toolkit/exception.h"

namespace report {

/// What is wrong in a report file; the message names the file, the line and the column.
class FileError : public Exception {
public:
    FileError(const QString &fileName, FilePosition place, const QString &what);
    FilePosition place() const { return m_place; }

private:
    FilePosition m_place;
};

/// Reads a report file of the form that docs/report-files.md describes. Throws FileError; Exception when it cannot be opened.
Definition loadDefinition(const QString &fileName);
/// The same from text; `fileName` is for messages and pictures.
Definition parseDefinition(const QByteArray &text, const QString &fileName);

} // namespace report
