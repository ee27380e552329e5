#pragma once

#include <QTabWidget>

/// A page of a page control.
class TTabSheet : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

Q_SIGNALS:
    void shown(); ///< the page came to the front of its page control
};

/// Pages behind tabs; the tabs' order is the page order.
class TPageControl : public QTabWidget {
    Q_OBJECT

public:
    explicit TPageControl(QWidget *parent = nullptr);

    /// Adds a page at the end; the first one becomes active without being announced.
    void addPage(TTabSheet *sheet, const QString &caption);
    int activePageIndex() const { return currentIndex(); }
    void setActivePageIndex(int index) { setCurrentIndex(index); }
    TTabSheet *activePage() const;
    void setActivePage(TTabSheet *sheet) { setCurrentWidget(sheet); }
    void setTabVisible(TTabSheet *sheet, bool visible);
};
