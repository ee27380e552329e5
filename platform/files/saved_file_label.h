#pragma once

#include <QLabel>
#include <QTimer>

namespace files {

/// Tells of a file that was written, with links that open it and its folder. Hidden until there is one, and again some minutes later.
class SavedFileLabel : public QLabel {
    Q_OBJECT

public:
    explicit SavedFileLabel(QWidget *parent = nullptr);

    /// `words`: what was done, "已导出 12 行".
    void tell(const QString &words, const QString &fileName);

private:
    void open(const QString &link);

    QString m_fileName;
    QTimer m_end;
};

} // namespace files
