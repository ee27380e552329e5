#pragma once

#include <QString>

namespace platform {

/// A message in two parts: what a person needs to read, and what systems and databases said of it in words of their own.
struct SplitMessage {
    QString text;
    QString foreignWords; ///< a line for each; "" when there are none
};

/// Takes the foreign words out of a Chinese message: English between a colon or a bracket and the end of the clause. What stands in
/// quotes, and single words such as names, stay.
SplitMessage withoutForeignWords(const QString &message);

} // namespace platform
