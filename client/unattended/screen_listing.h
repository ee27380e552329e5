#pragma once

#include <QString>

#include <functional>

class TForm;

namespace client {

/// What can be set and shown on a screen, for whoever writes a report of it: conditions with their present values and those that they can
/// take, result pages with their columns, buttons that print.
QString describeScreen(const TForm &screen);
/// The screens for which `isPermitted` holds, by the menus.
QString describeScreens(const std::function<bool(const QString &name)> &isPermitted);

} // namespace client
