#pragma once

#include "platform/report/definition/page_setup.h"

#include <QDialog>

class QComboBox;
class QDialogButtonBox;
class QDoubleSpinBox;
class QLabel;

namespace report {

/// Asks for the paper: its size and turn, the margins, and what becomes of columns that do not fit.
class PageSetupDialog : public QDialog {
    Q_OBJECT

public:
    PageSetupDialog(const PageSetup &setup, QWidget *parent);

    PageSetup setup() const;

private:
    QDoubleSpinBox *addLength(qreal value, qreal least, qreal most);
    void usePaper(int index);
    void showSense();

    QComboBox *m_papers;
    QDoubleSpinBox *m_width;
    QDoubleSpinBox *m_height;
    QComboBox *m_turns;
    QDoubleSpinBox *m_left;
    QDoubleSpinBox *m_top;
    QDoubleSpinBox *m_right;
    QDoubleSpinBox *m_bottom;
    QComboBox *m_wideColumns;
    QLabel *m_fault;
    QDialogButtonBox *m_buttons;
};

} // namespace report
