#pragma once

#include <QTabBar>

class TForm;

namespace client {

/// The open screens as tabs.
class WindowTabs : public QTabBar {
    Q_OBJECT

public:
    WindowTabs();

    void showForms(const QList<TForm *> &forms, const TForm *active);

Q_SIGNALS:
    void chosen(TForm *form);
    void closeWanted(TForm *form);

private:
    void addClosableTab();

    QList<TForm *> m_forms; ///< one a tab; refreshed whenever a screen opens or closes
};

} // namespace client
