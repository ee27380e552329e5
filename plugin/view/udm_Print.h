#pragma once

#include "platform/toolkit/form.h"

/// What heads every printed report: the company, the site and the person who prints.
class Tdm_Print : public TDataModule {
    Q_OBJECT

public:
    Tdm_Print();

    QString Site;
    QString EmployeeName;
    QString EmployeeCode;
    QString CompanyName;

private:
    void DataModuleCreate();
};

extern Tdm_Print *dm_Print;
