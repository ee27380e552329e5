#pragma once

#include "platform/connection/socket_connection.h"
#include "platform/dataset/client_data_set.h"
#include "platform/toolkit/form.h"

/// The shared command datasets and the host's connection, over which every statement of the plug-in runs.
class Tdm_BasicData : public TDataModule {
    Q_OBJECT

public:
    Tdm_BasicData();

    PUBLISHED(TSocketConnectionEx, temp); ///< the datasets' connection by design; never opened
    PUBLISHED(TClientDataSetEx, comm);
    PUBLISHED(TClientDataSetEx, comm1);
    PUBLISHED(TClientDataSetEx, comm2);

    TCustomRemoteServer *HostConnection = nullptr; ///< the host's, set by exec
};

extern Tdm_BasicData *dm_BasicData;
