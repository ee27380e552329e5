#include "platform/toolkit/refusal.h"

#include "platform/toolkit/application.h"

namespace platform {

bool refuse(QStringView reason, const QString &title)
{
    Application->messageBox(u"详细：" + reason, title, mbIconWarning);
    return true;
}

} // namespace platform
