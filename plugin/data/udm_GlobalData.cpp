#include "plugin/data/udm_GlobalData.h"

#include "plugin/data/host_data.h"

Tdm_GlobalData *dm_GlobalData = nullptr;

namespace {

struct Lookup {
    TClientDataSetEx *Tdm_GlobalData::*dataSet;
    TDataSource *Tdm_GlobalData::*source;
    QStringView hostName;
};

constexpr Lookup lookups[] = {
    { &Tdm_GlobalData::employee, &Tdm_GlobalData::ds_employee, u"loginSiteEmployeeOwner" },
    { &Tdm_GlobalData::customer, &Tdm_GlobalData::ds_customer, u"ownerCustomer" },
    { &Tdm_GlobalData::site, &Tdm_GlobalData::ds_site, u"site" },
    { &Tdm_GlobalData::scanType, &Tdm_GlobalData::ds_scanType, u"scanType" },
    { &Tdm_GlobalData::tabClass, &Tdm_GlobalData::ds_tabClass, u"Class" },
    { &Tdm_GlobalData::goodsType, &Tdm_GlobalData::ds_goodsType, u"GoodsType" },
    { &Tdm_GlobalData::problem, &Tdm_GlobalData::ds_problem, u"problem" },
    { &Tdm_GlobalData::QuoteData, &Tdm_GlobalData::ds_QuoteData, u"QuoteData" },
    { &Tdm_GlobalData::FastType, &Tdm_GlobalData::ds_FastType, u"FastType" },
    { &Tdm_GlobalData::loginSiteOwner, &Tdm_GlobalData::ds_loginSiteOwner, u"loginSiteOwner" },
    { &Tdm_GlobalData::AllSite, &Tdm_GlobalData::ds_AllSite, u"AllSite" },
    { &Tdm_GlobalData::area, &Tdm_GlobalData::ds_area, u"area" },
};

} // namespace

Tdm_GlobalData::Tdm_GlobalData() { DataModuleCreate(); }

void Tdm_GlobalData::DataModuleCreate()
{
    for (const Lookup &lookup : lookups)
        this->*lookup.dataSet = GlobalCdsAddr(lookup.hostName.toString());
    for (const Lookup &lookup : lookups)
        (this->*lookup.source)->setDataSet(this->*lookup.dataSet);
    ds_UserSite->setDataSet(UserSite);

    if (GlobalValueAddr(QStringLiteral("userSite")).isEmpty())
        return;
    UserSite->setData(AllSite->data());
    UserSite->setFilter(u"site_name in " + GlobalValueAddr(QStringLiteral("userSite")));
    UserSite->setFiltered(true);
}
