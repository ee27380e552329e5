#pragma once

#include "platform/connection/remote_server.h"
#include "platform/dataset/client_data_set.h"
#include "platform/dataset/data_source.h"
#include "platform/toolkit/form.h"

/// The host's code tables, each through a data source to which the screens bind their lookup combos. The datasets are the
/// host's own objects; only UserSite is a filtered copy, taken when the library is loaded.
class Tdm_GlobalData : public TDataModule {
    Q_OBJECT

public:
    Tdm_GlobalData();

    TClientDataSetEx *employee = nullptr;
    TClientDataSetEx *customer = nullptr;
    TClientDataSetEx *site = nullptr;
    TClientDataSetEx *scanType = nullptr;
    TClientDataSetEx *tabClass = nullptr;
    TClientDataSetEx *goodsType = nullptr;
    TClientDataSetEx *problem = nullptr;
    TClientDataSetEx *QuoteData = nullptr;
    TClientDataSetEx *FastType = nullptr;
    TClientDataSetEx *loginSiteOwner = nullptr;
    TClientDataSetEx *area = nullptr;
    TClientDataSetEx *AllSite = nullptr;

    PUBLISHED(TDataSource, ds_employee);
    PUBLISHED(TDataSource, ds_customer);
    PUBLISHED(TDataSource, ds_site);
    PUBLISHED(TDataSource, ds_scanType);
    PUBLISHED(TDataSource, ds_tabClass);
    PUBLISHED(TDataSource, ds_goodsType);
    PUBLISHED(TDataSource, ds_problem);
    PUBLISHED(TDataSource, ds_QuoteData);
    PUBLISHED(TDataSource, ds_FastType);
    PUBLISHED(TDataSource, ds_loginSiteOwner);
    PUBLISHED(TClientDataSetEx, UserSite); ///< the sites that the user may query; closed when the host names none
    PUBLISHED(TDataSource, ds_UserSite);
    PUBLISHED(TDataSource, ds_area);
    PUBLISHED(TDataSource, ds_AllSite);

    TCustomRemoteServer *SecondConnection = nullptr; ///< the host's second connection, set by exec

private:
    void DataModuleCreate();
};

extern Tdm_GlobalData *dm_GlobalData;
