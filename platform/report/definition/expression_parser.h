#pragma once

#include "platform/report/definition/expression.h"

#include <QStringView>

namespace report {

/// The expression that the text holds, nothing else beside it. Throws SyntaxError, also for one that is nested too deep.
Expression parseExpression(QStringView source);

} // namespace report
