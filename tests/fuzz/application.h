#pragma once

#include <QApplication>

/// Makes the application without which texts cannot be measured with its fonts; none is shown.
inline void needApplication()
{
    static int argc = 1;
    static char name[] = "fuzz";
    static char *argv[] = { name, nullptr };
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QApplication application(argc, argv);
}
