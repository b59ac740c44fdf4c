// The program's objects from the engine to the controller, on the test's sound card, without panels and
// without a client's device. Their threads wait for the test to move the time. One a process at a time.
#pragma once

#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

#include "TarvekMessage.pb.h"
#include "proj/controllers/Controller.h"
#include "proj/models/CabsimModel.h"
#include "proj/models/FactoryIRModel.h"
#include "proj/models/GlobalSettingsModel.h"
#include "proj/models/Model.h"
#include "proj/models/SystemInfoModel.h"
#include "proj/network/ClientManager.h"
#include "proj/platform/Platform.h"
#include "support/HeldClock.h"
#include "support/LogRecorder.h"
#include "support/TemporaryFolder.h"
#include "support/card/TestCard.h"
#include "utility/ProductPaths.h"

class AmplifierOnCard {
public:
    AmplifierOnCard() {
        std::filesystem::create_directories(folder.path() / "home");
        std::filesystem::create_directories(folder.path() / "user/userIRs");
        tvk::ProductPaths::set(folder.file("home"), folder.file("user"));
        write("home/product_profile.json",
              R"({"inputVoltageMapping": 1.2, "dreGainDeltaDb": 12, "productFamily": "slatePanel"})");
        write("user/userCabsimConfig.json", R"({"cabsimIRs": [
            {"isFactory": false, "irName": "a", "isDirty": false, "hpf": 30, "lpf": 9000, "level": -1},
            {"isFactory": false, "irName": "b", "isDirty": false, "hpf": 40, "lpf": 8000, "level": -2},
            {"isFactory": false, "irName": "c", "isDirty": false, "hpf": 50, "lpf": 7000, "level": -3}]})");
        for (const char* const name : {"a", "b", "c"})
            write(std::string("user/userIRs/") + name + ".wav", "no sound");
        scope.card.beforePeriod = [this] { clock.keepPaceUntil(periodTime_ * ++periods_); };
        clock.awaitPace();
        platform.homeRoot = folder.path() / "home";
        platform.userData = folder.path() / "user";
        model.emplace(platform);
        factoryIRs.emplace(*model);
        settings.emplace();
        cabsim.emplace(*model, *settings, *factoryIRs);
        client.emplace(folder.file("no device"));
        controller.emplace(*model, *cabsim, *client, *factoryIRs);
        // The connection's own thread says this once.
        clock.advanceUntil([this] { return log.has("Warn Failed to open HID device."); });
    }
    ~AmplifierOnCard() {
        clock.release();
        controller.reset();
        client.reset();
        cabsim.reset();
        model.reset();
        scope.card.beforePeriod = nullptr;
        tvk::ProductPaths::set(tvk::ProductPaths::kHomeRoot, tvk::ProductPaths::kUserData);
    }
    AmplifierOnCard(const AmplifierOnCard&) = delete;
    AmplifierOnCard& operator=(const AmplifierOnCard&) = delete;

    // What MessageProcessor does with a client's request for a connection.
    void connectClient() {
        TarvekMessage request;
        request.mutable_connectionmessage()->mutable_connectionrequest()->set_dummy(true);
        client->handleConnectionMessage(tvk::ClientManager::kClientId, request);
    }

    LogRecorder log;
    TemporaryFolder folder;
    CardScope scope;
    HeldClock clock;
    tvk::Platform platform;
    std::optional<Model> model;
    std::optional<tvk::FactoryIRModel> factoryIRs;
    std::optional<tvk::GlobalSettingsModel> settings;
    std::optional<tvk::CabsimModel> cabsim;
    std::optional<tvk::ClientManager> client;
    std::optional<Controller> controller;
    tvk::SystemInfoModel systemInfo;

private:
    void write(const std::string& name, const std::string& text) const {
        std::ofstream(folder.file(name)) << text;
    }

    static constexpr std::chrono::nanoseconds periodTime_{725624};
    long periods_ = 0;
};
