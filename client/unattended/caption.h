#pragma once

#include "platform/toolkit/exception.h"

#include <QStringList>

namespace client {

/// What was asked for is not there: the command line or the plan must be changed before it is tried again.
class WrongRequest : public Exception {
public:
    using Exception::Exception;
};

/// A caption as people write it: without its remarks in brackets, marks of shortcuts, colons and blanks.
QString plainCaption(QString caption);

/// The index of a caption among others, as people write them; -1 when there is none.
qsizetype captionIndex(const QStringList &captions, const QString &given);

/// Says that there is no such thing, and which ones come near; all of them when none does and there are few.
WrongRequest notAmong(const QString &what, const QString &given, const QStringList &known);

} // namespace client
