#pragma once

#include "plugin/forms/base/ufrm_Basic.h"

#include "platform/toolkit/prop_storage.h"

/// A screen with a property storage, which uses the library's INI file.
class Tfrm_BasicBoot : public Tfrm_Basic {
    Q_OBJECT

public:
    using Tfrm_Basic::Tfrm_Basic;

    PUBLISHED(TPropStorageEh, Prop);

    void FormCreate() override;
};
