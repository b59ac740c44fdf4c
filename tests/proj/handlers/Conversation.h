// A client that talks to the models through connection, processor and handler, over a link in the test's
// hand.
#pragma once

#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "TarvekMessage.pb.h"
#include "proj/handlers/MessageHandler.h"
#include "proj/models/CabsimModel.h"
#include "proj/models/FactoryIRModel.h"
#include "proj/models/GlobalSettingsModel.h"
#include "proj/models/Model.h"
#include "proj/models/ProductFolders.h"
#include "proj/models/SystemInfoModel.h"
#include "proj/models/UserIRModel.h"
#include "proj/network/ClientManager.h"
#include "proj/network/FakeTransport.h"
#include "proj/network/MessageProcessor.h"
#include "support/LockstepClock.h"
#include "support/card/EngineOnCard.h"

// Everything that the program has for a client, as it starts them. Time passes while both threads of it wait;
// the client keeps talking unless a test says otherwise.
struct Amplifier {
    explicit Amplifier(tvk::Storage& storage)
        : factoryIRs(engine.model(), storage),
          userIRs(storage),
          settings(storage),
          cabsims(engine.model(), settings, factoryIRs, storage),
          clients(link.transport()),
          systemInfo(storage),
          handler(clients, systemInfo, cabsims, factoryIRs, userIRs, settings, storage),
          processor(clients, handler) {
        link.isTalking = true;
    }

    ~Amplifier() { time.release(); }
    Amplifier(const Amplifier&) = delete;
    Amplifier& operator=(const Amplifier&) = delete;

    // As the controller does it, without the preset.
    void become(int id) {
        engine.model().panel().productId.set(id);
        factoryIRs.amplifierChanged(id);
        cabsims.amplifierChanged(id);
    }

    EngineOnCard engine;
    LockstepClock time{2};  // the connection's thread and the processor's
    tvk::FactoryIRModel factoryIRs;
    tvk::UserIRModel userIRs;
    tvk::GlobalSettingsModel settings;
    tvk::CabsimModel cabsims;
    FakeLink link;
    tvk::ClientManager clients;
    tvk::SystemInfoModel systemInfo;
    tvk::MessageHandler handler;
    tvk::MessageProcessor processor;
};

class Conversation : public ProductFolders {
protected:
    using Texts = std::vector<std::string>;

    static TarvekMessage connectionRequest() {
        TarvekMessage message;
        message.mutable_connectionmessage()->mutable_connectionrequest()->set_dummy(true);
        return message;
    }

    // Returns when the connection is open and the response has come.
    void connect() {
        amplifier.link.send(connectionRequest());
        amplifier.link.awaitReplies();
        while (!amplifier.clients.isConnectionOpen(1))
            std::this_thread::yield();
    }

    // The client falls silent until the connection has ended.
    void fallSilent() {
        amplifier.link.isTalking = false;
        while (amplifier.clients.isConnectionOpen(1))
            std::this_thread::yield();
        amplifier.link.isTalking = true;
    }

    // Sends the requests and returns the replies to them as text, without the padding: all that comes before
    // the reply to one more.
    Texts ask(const std::vector<TarvekMessage>& requests) {
        for (const TarvekMessage& request : requests)
            amplifier.link.send(request);
        amplifier.link.send(mark());
        Texts texts;
        for (;;) {
            for (const TarvekMessage& reply : amplifier.link.awaitReplies()) {
                if (isMark(reply)) return texts;
                EXPECT_TRUE(reply.ignore_this_padding());
                texts.push_back(withoutPadding(reply));
            }
        }
    }
    Texts ask(const TarvekMessage& request) { return ask(std::vector{request}); }

    // The next replies, without asking for more.
    std::vector<TarvekMessage> awaitReplies(std::size_t count) {
        std::vector<TarvekMessage> replies;
        while (replies.size() < count)
            for (const TarvekMessage& reply : amplifier.link.awaitReplies())
                replies.push_back(reply);
        return replies;
    }

    void awaitLine(const std::string& line) const {
        while (!log.has(line))
            std::this_thread::yield();
    }

    // The list of the cabinet slots as text.
    static std::string list(const tvk::CabsimModel::Slots& slots) {
        TarvekMessage message;
        CabsimIRListResponse& response = *message.mutable_cabsimirlistresponse();
        response.set_dummy(true);
        for (std::uint32_t i = 0; i < slots.size(); ++i) {
            CabsimIRListRecord& record = *response.add_record();
            record.set_cabsimid(i);
            record.set_isfactory(slots[i].isFactory);
            record.set_irname(slots[i].irName);
            record.set_isdirty(slots[i].isDirty);
            record.set_hpf(slots[i].hpf);
            record.set_lpf(slots[i].lpf);
            record.set_level(slots[i].level);
        }
        return message.ShortDebugString();
    }

    Amplifier amplifier{storage};

private:
    // A connection request on an open connection: the one request whose reply no other has.
    static TarvekMessage mark() { return connectionRequest(); }
    static bool isMark(const TarvekMessage& reply) { return reply.connectionmessage().has_connectionerror(); }

    static std::string withoutPadding(TarvekMessage reply) {
        reply.clear_ignore_this_padding();
        return reply.ShortDebugString();
    }
};
