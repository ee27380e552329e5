#pragma once

#include "platform/dataset/quick_filter.h"

#include <QDialog>

#include <optional>

class QCheckBox;
class QDialogButtonBox;
class QLineEdit;
class QListWidget;

namespace platform {

/// Asks which values of a column to see: a list to tick, with how often each stands there, and a line that narrows the list by
/// texts or pinyin.
class ValueDialog : public QDialog {
public:
    struct Value {
        QString text; ///< as the cells hold it
        QString name; ///< as a person reads it
        int rows;
        Qt::CheckState state; ///< ticked: seen now
    };
    enum class List { Whole, Cut }; ///< Cut: the column has more values than are listed

    ValueDialog(const QString &title, const QList<Value> &values, List list, QWidget *parent);

    /// What was ticked; nothing when that is everything.
    struct Choice {
        QStringList texts;
        QuickFilter::Keep keep;
    };
    std::optional<Choice> choice() const;

private:
    void narrow(const QString &text);
    void tickAll(Qt::CheckState state);
    void showTicks();

    QLineEdit *m_text;
    QListWidget *m_list;
    QCheckBox *m_all;
    QDialogButtonBox *m_buttons;
};

} // namespace platform
