#include "platform/toolkit/application.h"
#include "platform/toolkit/library_loader.h"
#include "platform/toolkit/screen.h"
#include "plugin/data/udm_BasicData.h"
#include "plugin/data/udm_GlobalData.h"
#include "plugin/util/dataset_features.h"
#include "plugin/util/guest_query.h"
#include "plugin/view/layout_storage.h"
#include "plugin/view/udm_Print.h"

#include <QDir>

#include <memory>
#include <utility>

using namespace platform;
using namespace plugin;

TIniPropStorageManEh *IniStorageManager = nullptr;

namespace {

TApplication *SavedApplication = nullptr;
TScreen *SavedScreen = nullptr;
/// How grids sort each kind of dataset, registered while they live.
struct SortingFeatures {
    TCDSDatasetFeaturesEh clientDataSets;
    TADOSQLDatasetFeaturesEh queries;
    TADOCommandTextDatasetFeaturesEh commands;
};
std::unique_ptr<SortingFeatures> sortingFeatures;

void startUp()
{
    SavedScreen = Screen;
    SavedApplication = Application;
    sortingFeatures = std::make_unique<SortingFeatures>();
    dm_BasicData = new Tdm_BasicData;
    dm_GlobalData = new Tdm_GlobalData;
    dm_Print = new Tdm_Print;
    IniStorageManager = new TIniPropStorageManEh;
    IniStorageManager->setIniFileName(
        QDir::toNativeSeparators(Application->settingsDirectory() + QStringLiteral("/WindowsIni/Kelvara1.ini")));
}

void detach()
{
    Screen = SavedScreen;
    Application = SavedApplication;
    unloadGuest();
    delete std::exchange(dm_BasicData, nullptr);
    delete std::exchange(dm_GlobalData, nullptr);
    delete std::exchange(dm_Print, nullptr);
    delete std::exchange(IniStorageManager, nullptr);
    sortingFeatures.reset();
}

const LibraryRegistration registration({ startUp, detach });

} // namespace
