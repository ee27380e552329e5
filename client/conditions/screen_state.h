#pragma once

#include "client/conditions/condition_set.h"

class QWidget;
class TForm;

namespace client {

/// The value of a condition as text; "1" or "0" for what is ticked; nothing for other components.
std::optional<QString> conditionText(const QObject &component);
/// Gives a condition another value as a person would: enters it, types or chooses, and leaves it; what can be ticked is clicked.
/// Throws Exception where a person could not do it.
void putCondition(QWidget *widget, const QString &text);

/// What stands in the conditions of a screen now; a range of time that has a name on this day is known by it.
QList<ConditionValue> conditionsOf(const TForm &screen);

/// Puts conditions back as a person would: enters each control that can be seen and used, changes it and leaves it, so that the
/// screen's own rules run; controls that stand as wanted are left alone. Returns a line for each condition that could not be put
/// back or that the screen no longer offers.
QStringList putBack(TForm &screen, const QList<ConditionValue> &values);

} // namespace client
