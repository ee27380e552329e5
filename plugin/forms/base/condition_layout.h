#pragma once

#include "plugin/forms/base/condition_row.h"

#include <functional>

class QFrame;
class QLabel;
class TComponentOwner;
class TWorkPanel;

namespace plugin {

/// The label that arrange() has put before a control.
QLabel *labelOf(const QWidget *control);
/// Shows or hides a condition together with its label.
void setConditionVisible(QWidget *control, bool visible);

/// Lays a condition panel out, from the top line by line, the collapse button at its lower edge; the tab order follows. Labels that
/// have names become components of `owner`.
void arrange(TComponentOwner *owner, QFrame *panel, TWorkPanel *workPanel, const QList<ConditionLine> &lines);
/// Calls `visit` for every row in its order.
void forEachRow(const QList<ConditionLine> &lines, const std::function<void(const ConditionRow &)> &visit);

} // namespace plugin
