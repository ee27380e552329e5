// What most tests on Qt include.
#include "qt.h"
#include "test.h"

#include <QProcess>
#include <QTemporaryDir>
