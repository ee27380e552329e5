#pragma once

#include "plugin/forms/base/condition_layout.h"
#include "plugin/forms/base/frame_Panel.h"
#include "plugin/forms/base/ufrm_BasicBoot.h"
#include "plugin/util/conditions.h"
#include "plugin/view/frame_InputList.h"

#include "platform/toolkit/handler.h"
#include "platform/toolkit/screen.h"

#include <QCheckBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QPushButton>

#include <functional>

namespace plugin {

/// What the query screens share: a condition panel above the results, a range of time among the conditions, perhaps a list of waybills
/// in their place, and a hidden query button that the host's query command presses. A screen names its conditions, results and
/// statements, and nothing else.
class QueryScreen : public Tfrm_BasicBoot {
    Q_OBJECT
    Q_PROPERTY(QAbstractButton *PanelButton READ panelButton)

public:
    QueryScreen(TComponentOwner *owner, const QString &name, QStringView caption);

    PUBLISHED(QFrame, Panel1);
    PUBLISHED(TWorkPanel, WorkPanel1);
    PUBLISHED(QGroupBox, GroupBox1);
    PUBLISHED(TDBDateTimeEditEh, DBDateTimeEditEh1);
    PUBLISHED(TDBDateTimeEditEh, DBDateTimeEditEh2);
    PUBLISHED(QPushButton, Button1);

    /// Gives the conditions their lists and first values.
    void FormCreate() override;

protected:
    /// Lays the condition panel out.
    void arrange(const QList<ConditionLine> &lines);
    /// The range of time between DBDateTimeEditEh1 and DBDateTimeEditEh2, in GroupBox1.
    RangeBox range(QStringView caption) { return plugin::range(GroupBox1, caption, DBDateTimeEditEh1, DBDateTimeEditEh2); }
    /// Shows the one result of the screen below the conditions.
    void result(TDataView *view, TClientDataSetEx *dataSet, const platform::GridColumns &columns, int frozen = 0);
    /// Puts a widget below the conditions.
    void placeBelow(QWidget *widget) { m_column->addWidget(widget, 1); }
    /// Lets the person ask by the waybills of a list; at the screen's left edge.
    void placeLeft(TInputList *list);
    void askByList(TInputList *list) { m_list = list; }

    /// What the host's query command runs, within a QueryRun: asks by the waybills of the list where the person has chosen so, by the
    /// conditions otherwise.
    virtual void Button1Click();
    virtual void queryByConditions() = 0;
    /// `bills` is the list of an IN condition.
    virtual void queryByList(const QString & /*bills*/) { }
    void FormShow() override;

    /// Each tells the user why the query is refused and is true when it did. The focus moves to the condition at fault, but for a range.
    bool refuse(QStringView reason, QWidget *control = nullptr);
    bool refuseEmpty(TDBLookupComboboxEh *combo, QStringView reason);
    bool refuseRange(int mostDays);
    /// "where ... between ... and ..." for `column` and the range.
    QString whereInRange(QStringView column) const { return whereBetween(column, DBDateTimeEditEh1, DBDateTimeEditEh2); }

private:
    friend class QueryRun;
    QAbstractButton *panelButton() const { return WorkPanel1->ShowSpeed; }
    virtual void showFirstPage() { }

    QHBoxLayout *m_row;
    QVBoxLayout *m_column;
    TInputList *m_list = nullptr;
    TDataView *m_view = nullptr; ///< the one result
    TClientDataSetEx *m_dataSet = nullptr;
    QList<std::function<void()>> m_onCreate; ///< of the conditions
};

/// The frame of a query: the busy cursor and the focus on the work panel, so that the exit handler of the control that is being
/// edited has run; at the end, whatever happens, the first page and the default cursor.
class QueryRun {
public:
    explicit QueryRun(QueryScreen *screen);
    QueryRun(const QueryRun &) = delete;
    ~QueryRun();

private:
    QueryScreen *m_screen;
    const platform::BusyCursor m_busy;
};

} // namespace plugin
