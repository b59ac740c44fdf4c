// Sends messages of a desktop client, alone and in batches, to the models through connection and processor.
//
// The input is a run of messages: two bytes, the low one first, that are the number of the bytes that follow,
// and these. Each is cut into frames as a client cuts it.
//
// Laws: every reply is padded; the last message of a batch that follows is carried out and told, whatever
// waited, and nothing waits then; the slots and the list stay what they may be.
#include <algorithm>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "FuzzedDisk.h"
#include "proj/handlers/MessageHandler.h"
#include "proj/models/CabsimModel.h"
#include "proj/models/FactoryIRModel.h"
#include "proj/models/GlobalSettingsModel.h"
#include "proj/models/SystemInfoModel.h"
#include "proj/models/UserIRModel.h"
#include "proj/network/ClientManager.h"
#include "proj/network/FakeTransport.h"
#include "proj/network/MessageProcessor.h"
#include "support/LockstepClock.h"

namespace {

// Everything that stands behind a client. It is not taken down.
struct Amplifier {
    Amplifier() {
        factoryIRs.amplifierChanged(0);
        cabsims.amplifierChanged(0);
        link.isTalking = true;
        link.send(connectionRequest());
        while (!clients.isConnectionOpen(tvk::ClientManager::kClientId))
            std::this_thread::yield();
    }

    static TarvekMessage connectionRequest() {
        TarvekMessage message;
        message.mutable_connectionmessage()->mutable_connectionrequest()->set_dummy(true);
        return message;
    }

    static TarvekMessage lastOfBatch(std::uint32_t taper) {
        TarvekMessage message;
        message.set_batchstatus(3);
        message.mutable_reverbtapertype()->set_value(taper);
        return message;
    }

    // Sends the last message of a batch, and returns when it was told and, behind it, one more connection
    // request was refused. taper: a value that no input has.
    void finishBatch(std::uint32_t taper) {
        link.send(lastOfBatch(taper));
        link.send(connectionRequest());
        for (bool isTold = false;;) {
            for (const TarvekMessage& reply : link.awaitReplies()) {
                REQUIRE(reply.ignore_this_padding());
                if (isTold && reply.connectionmessage().has_connectionerror()) return;
                isTold = isTold || reply.reverbtapertype().value() == taper;
            }
        }
    }

    QuietLog quiet;
    Model& engine = fuzzed::engine();
    LockstepClock time{2};  // the connection's thread and the processor's
    DiskModel disk{
        DiskKind::NamesByFolder,
        fuzzed::disk({{fuzzed::kFactoryCatalogue, R"({"factoryIRs": [{"name": "A1"}, {"name": "A2"}]})"}})};
    tvk::Storage storage{disk};
    tvk::FactoryIRModel factoryIRs{engine, storage};
    tvk::UserIRModel userIRs{storage};
    tvk::GlobalSettingsModel settings{storage};
    tvk::CabsimModel cabsims{engine, settings, factoryIRs, storage};
    FakeLink link;
    tvk::ClientManager clients{link.transport()};
    tvk::SystemInfoModel systemInfo{storage};
    tvk::MessageHandler handler{clients, systemInfo, cabsims, factoryIRs, userIRs, settings, storage};
    tvk::MessageProcessor processor{clients, handler};
};

void requireGoodModels(const Amplifier& amp) {
    using Limits = tvk::CabsimLimits;
    for (const tvk::CabsimIR& slot : amp.cabsims.getCabsimIRList()) {
        REQUIRE(tvk::isValidIRName(slot.irName));
        REQUIRE(slot.hpf == Limits::clampHpf(slot.hpf));
        REQUIRE(slot.lpf == Limits::clampLpf(slot.lpf));
        REQUIRE(slot.level == Limits::clampLevel(slot.level));
    }
    const std::vector<tvk::UserIR> records = amp.userIRs.getUserIRList();
    REQUIRE(records.size() <= tvk::UserIRModel::kMaxUserIRs);
    for (const tvk::UserIR& record : records)
        REQUIRE(tvk::isValidUserIRName(record.name));
    REQUIRE(amp.cabsims.getVirtualCabsim() < tvk::CabsimModel::kSlots);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Amplifier& amp = *new Amplifier;
    static std::uint32_t taper = 1u << 30;
    for (std::size_t i = 0; i + 2 < size;) {
        const std::size_t length = std::min<std::size_t>(data[i] | data[i + 1] << 8, size - i - 2);
        amp.link.sendBytes(tvk::Bytes(data + i + 2, data + i + 2 + length));
        i += 2 + length;
    }
    amp.finishBatch(++taper);
    REQUIRE(amp.settings.getReverbTaperType() == taper);
    requireGoodModels(amp);
    return 0;
}
