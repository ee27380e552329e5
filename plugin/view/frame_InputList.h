#pragma once

#include "platform/toolkit/form.h"

#include <QCheckBox>
#include <QFrame>
#include <QPlainTextEdit>
#include <QToolButton>

namespace plugin {

/// A text box for waybill numbers, one a line. What is pasted from a sheet or a message falls into lines; an input method for Han
/// text is not wanted in it.
class BillMemo : public QPlainTextEdit {
    Q_OBJECT

public:
    explicit BillMemo(QWidget *parent = nullptr);
    /// The lines as they stand; an empty one behind the last line break is none.
    QStringList lines() const;

protected:
    /// Enter begins a new line, and the form must not take the person out of the list.
    void keyPressEvent(QKeyEvent *event) override;
    void insertFromMimeData(const QMimeData *source) override;
};

} // namespace plugin

/// The waybill numbers by which a screen queries instead of by its other conditions.
class TInputList : public TFrame {
    Q_OBJECT

public:
    TInputList();

    PUBLISHED(QFrame, Panel1);
    PUBLISHED(QCheckBox, CheckBox1);
    PUBLISHED(plugin::BillMemo, Memo1);
    PUBLISHED(QToolButton, SpeedButton1);

    /// The numbers as the list of an IN condition, the last line first; "" when the screen must not query, which the user has
    /// been told.
    void GetBillList(QString &BillList);

protected:
    void changeEvent(QEvent *event) override;

private:
    void SpeedButton1Click();
    void takeTextScale();
};
