#pragma once

#include "client/conditions/condition_set.h"

class TForm;

namespace client {

/// What stands in the conditions of a screen now; a range of time that has a name on this day is known by it.
QList<ConditionValue> conditionsOf(const TForm &screen);

/// Puts conditions back as a person would: enters each control that can be seen and used, changes it and leaves it, so that the
/// screen's own rules run; controls that stand as wanted are left alone. Returns a line for each condition that could not be put
/// back or that the screen no longer offers.
QStringList putBack(TForm &screen, const QList<ConditionValue> &values);

} // namespace client
