#include "plugin/forms/base/ufrm_BasicBoot.h"

#include "plugin/view/layout_storage.h"

void Tfrm_BasicBoot::FormCreate()
{
    Tfrm_Basic::FormCreate();
    Prop->setStorageManager(IniStorageManager);
}
