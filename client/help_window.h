#pragma once

#include "client/help_pages.h"

#include <QWidget>

class QLineEdit;
class QListWidget;
class QTextBrowser;

namespace client {

/// The help: its pages in a list that a search narrows, and the page that is read.
class HelpWindow : public QWidget {
    Q_OBJECT

public:
    explicit HelpWindow(QWidget *parent = nullptr);

    /// The page about the keys, which are the person's own; stands behind the general ones.
    void setKeys(const QString &markdown);
    /// Shows the page of that name, the first one when there is none.
    void showPage(const QString &name);

private:
    QList<HelpPage> pages() const;
    void narrow();
    void showCurrent();

    QString m_keys;
    QLineEdit *m_search;
    QListWidget *m_list;
    QTextBrowser *m_text;
};

} // namespace client
