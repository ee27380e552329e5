#include "plugin/view/udm_Print.h"

#include "plugin/data/host_data.h"

Tdm_Print *dm_Print = nullptr;

Tdm_Print::Tdm_Print() { DataModuleCreate(); }

void Tdm_Print::DataModuleCreate()
{
    Site = GlobalValueAddr(QStringLiteral("site"));
    EmployeeName = GlobalValueAddr(QStringLiteral("employeeName"));
    EmployeeCode = GlobalValueAddr(QStringLiteral("employeeCode"));
    CompanyName = GlobalValueAddr(QStringLiteral("CompanyName"));
}
