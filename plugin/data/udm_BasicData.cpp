#include "plugin/data/udm_BasicData.h"

Tdm_BasicData *dm_BasicData = nullptr;

Tdm_BasicData::Tdm_BasicData()
{
    temp->serverGuid = QStringLiteral("{BC5C4BED-0B86-46A0-ACD7-B03EAF3608BE}");
    temp->serverName = QStringLiteral("ScktSrvr.Pooler8866");
    temp->port = 8866;
    temp->loginUser = QStringLiteral("QX");
    temp->loginPassword = QStringLiteral("Hatchen");
    for (TClientDataSetEx *dataSet : { comm, comm1, comm2 })
        dataSet->setRemoteServer(temp);
}
