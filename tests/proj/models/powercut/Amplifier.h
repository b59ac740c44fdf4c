// The models as one start of the program has them, on a disk of the test.
#pragma once

#include <optional>

#include "proj/models/CabsimModel.h"
#include "proj/models/FactoryIRModel.h"
#include "proj/models/GlobalSettingsModel.h"
#include "proj/models/Model.h"
#include "proj/models/Storage.h"
#include "proj/models/SystemInfoModel.h"
#include "proj/models/UserIRModel.h"

class Amplifier {
public:
    Amplifier(Model& engine, tvk::OsFiles& disk) : storage(disk), info(storage), engine_(engine) {}

    void start() {
        factoryIRs.emplace(engine_, storage);
        userIRs.emplace(storage);
        settings.emplace(storage);
        cabsim.emplace(engine_, *settings, *factoryIRs, storage);
        factoryIRs->amplifierChanged(0);
        cabsim->amplifierChanged(0);
    }

    tvk::Storage storage;
    tvk::SystemInfoModel info;
    std::optional<tvk::FactoryIRModel> factoryIRs;
    std::optional<tvk::UserIRModel> userIRs;
    std::optional<tvk::GlobalSettingsModel> settings;
    std::optional<tvk::CabsimModel> cabsim;

private:
    Model& engine_;
};
