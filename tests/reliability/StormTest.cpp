// Everything at once, with nothing to order it: knobs, switches and changes of amplifier from the panel, a
// client's requests, settings and uploads, time-outs and pulled cables, while the card's time runs as fast as
// it can. When it is over, engine, models, files and the client's view must say the same.
#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <fstream>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <numbers>
#include <optional>
#include <random>
#include <thread>
#include <utility>
#include <vector>

#include "client/ClientClock.h"
#include "client/ClientError.h"
#include "client/Requests.h"
#include "client/Session.h"
#include "client/SocketLink.h"
#include "proj/models/Model.h"
#include "reliability/DeskAmplifier.h"
#include "utility/Log.h"

namespace fs = std::filesystem;
namespace requests = tvk::client::requests;
using namespace std::chrono_literals;
using tvk::client::ClientError;

namespace {

constexpr int kPanelFrames = 600;
constexpr int kClientRequests = 150;
constexpr int kUnplugs = 6;

constexpr std::array<const char*, 11> kKnobs = {"PA_0", "PA_1", "PA_2", "PA_3", "PA_4", "PA_5",
                                                "PA_6", "PA_7", "PB_0", "PC_0", "PC_1"};

// The pause between two looks at what the card has done. A thread that only yields would take as much of a
// processor as the audio thread, where that has no priority. A fourteenth of a period (726 us) of the
// machine's time, since these threads run free of the card's: how long it lasts decides nothing but how long
// the test takes.
void giveWay() {
    std::this_thread::sleep_for(50us);
}

// Ordered by the card's time, waited for in the machine's.
class FreeClock final : public tvk::client::ClientClock {
public:
    explicit FreeClock(const tvk::desk::VirtualTime& time) : time_(time) {}

    std::chrono::nanoseconds now() override { return time_.now(); }
    bool runsByItself() const override { return true; }
    bool receive(tvk::client::Link& link, tvk::client::Report& report,
                 std::chrono::milliseconds limit) override {
        const auto end = now() + limit;
        while (!link.receive(report, 1ms))
            if (now() >= end) return false;
        return true;
    }

private:
    const tvk::desk::VirtualTime& time_;
};

tvk::desk::Script cable() {
    tvk::desk::Script script;
    for (int pull = 0; pull < kUnplugs; ++pull)
        for (const bool isPlug : {false, true}) {
            tvk::desk::ScriptEvent event;
            event.kind = isPlug ? tvk::desk::ScriptEvent::Kind::Plug : tvk::desk::ScriptEvent::Kind::Unplug;
            event.at = std::chrono::seconds(4 * pull + 3) + (isPlug ? 700ms : 0ms);
            script.add(event);
        }
    return script;
}

// Takes what the amplifier plays, which would wait for somebody to do so.
class Listener {
public:
    explicit Listener(tvk::desk::VirtualCard& card) : thread_([this, &card] { run(card); }) {}
    ~Listener() {
        isEnding_ = true;
        thread_.join();
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    long seconds() const { return seconds_; }
    std::array<double, 2> last() const { return {rms_[0], rms_[1]}; }

private:
    void run(tvk::desk::VirtualCard& card) {
        std::vector<tvk::desk::FrameRing::Frame> frames(1024);
        std::array<double, 2> sums{};
        for (std::size_t count = 0; !isEnding_;) {
            const std::size_t most = std::min(frames.size(), std::size_t{DeskAmplifier::kRateHz} - count);
            const std::size_t got = card.takeOutput(frames.data(), most);
            for (std::size_t i = 0; i < got; ++i) {
                sums[0] += std::pow(static_cast<double>(frames[i].speaker), 2.0);
                sums[1] += std::pow(static_cast<double>(frames[i].line), 2.0);
            }
            count += got;
            if (got == 0) giveWay();
            if (count < DeskAmplifier::kRateHz) continue;
            for (std::size_t feed = 0; feed < sums.size(); ++feed)
                rms_[feed] = std::sqrt(std::exchange(sums[feed], 0.0) / static_cast<double>(count));
            count = 0;
            ++seconds_;
        }
    }

    std::array<std::atomic<double>, 2> rms_{};
    std::atomic<long> seconds_{0};
    std::atomic<bool> isEnding_{false};
    std::thread thread_;
};

class Storm : public ::testing::Test {
protected:
    void SetUp() override {
        for (auto& guitar : desk_.settings.guitars)
            for (int i = 0; i < DeskAmplifier::kRateHz; ++i)
                guitar.push_back(0.02f * static_cast<float>(std::sin(2.0 * std::numbers::pi * 440.0 * i /
                                                                     DeskAmplifier::kRateHz)));
    }

    // Lets the card's time pass.
    void pass(std::chrono::nanoseconds duration) const {
        const auto end = desk_.card.virtualTime().now() + duration;
        while (desk_.card.virtualTime().now() < end)
            giveWay();
    }

    // Up again at once: on a machine that starves this thread its next frame may be ten seconds later, and a
    // button that is held for so long wipes the files.
    void clickTheButton() const {
        desk_.endpoints.press(true);
        desk_.endpoints.press(false);
    }

    void stormOfThePanel() {
        std::minstd_rand random(1);
        for (int i = 0; i < kPanelFrames; ++i) {
            const auto choice = random();
            const float position = static_cast<float>(random() % 101) / 100.0f;
            if (i % 100 == 50)
                desk_.send(tvk::panel::intFrame("PF0_AND_PF1", 1));
            else if (i % 100 == 60)
                desk_.send(tvk::panel::intFrame("PF0_AND_PF1", 0));
            else if (i % 150 == 149)
                clickTheButton();
            else if (choice % 8 == 0)
                desk_.send(tvk::panel::intFrame("PB2_AND_PB10", static_cast<int>(random() % 3)));
            else if (choice % 8 == 1)
                desk_.send(tvk::panel::floatFrame("PB_1", position));
            else
                desk_.send(tvk::panel::floatFrame(kKnobs[choice % kKnobs.size()], position));
            pass(3ms);
        }
    }

    TarvekMessage someRequest(std::minstd_rand& random) const {
        const auto slot = static_cast<std::uint32_t>(random() % 3);
        const std::string name = "response " + std::to_string(random() % 6);
        switch (random() % 12) {
            case 0:
                return requests::addUserIR(name, response_);
            case 1:
                return requests::removeUserIR(1 + static_cast<std::uint32_t>(random() % 6));
            case 2:
                return requests::moveUserIR(1, 2);
            case 3:
                return requests::assignUserIR(slot, name);
            case 4:
                return requests::assignFactoryIR(slot, "Arvel-Far");
            case 5:
                return requests::setCabsimSelection(slot);
            case 6:
                return requests::setCabsimHpf(slot, static_cast<float>(20 + random() % 400));
            case 7:
                return requests::setCabsimLevel(slot, -static_cast<float>(random() % 30));
            case 8:
                return requests::setReverbTaperType(static_cast<std::uint32_t>(random() % 2));
            case 9:
                return requests::setVibratoChannelBright(random() % 2 == 0);
            case 10:
                return requests::saveCurrentState();
            default:
                return requests::syncCurrentState();
        }
    }

    // Until that many have been answered, whatever the cable does.
    void stormOfTheClient() {
        std::minstd_rand random(2);
        for (int answered = 0; answered < kClientRequests;) {
            try {
                tvk::client::SocketLink link(desk_.endpoints.hid().string());
                FreeClock clock(desk_.card.virtualTime());
                tvk::client::Session session(link, clock);
                session.connect();
                for (int i = 0; i < 20 && answered < kClientRequests; ++i, ++answered)
                    session.ask(someRequest(random));
                // Now and then longer than a connection lasts.
                if (random() % 3 == 0) pass(6s);
            } catch (const ClientError&) {
                pass(100ms);
            }
        }
    }

    // The same in every way of asking for it.
    std::vector<TarvekMessage> ask(const TarvekMessage& request) {
        for (int tries = 0; tries < 20; ++tries)
            try {
                tvk::client::SocketLink link(desk_.endpoints.hid().string());
                FreeClock clock(desk_.card.virtualTime());
                tvk::client::Session session(link, clock);
                session.connect();
                return session.ask(request).replies;
            } catch (const ClientError&) {
                pass(100ms);
            }
        ADD_FAILURE() << "no answer to " << request.ShortDebugString();
        return {};
    }

    // Of the two feeds in a second of sound that begins after the call.
    std::array<double, 2> loudness() const {
        const long begun = listener_.seconds();
        while (listener_.seconds() < begun + 2)
            giveWay();
        return listener_.last();
    }

    // The straps say another product; returns when its amplifier has been given all controls.
    void becomeProduct(int id) {
        const int before = desk_.replays();
        desk_.send(tvk::panel::intFrame("PF0_AND_PF1", id));
        while (desk_.replays() == before)
            pass(10ms);
    }

    // What the panel shows at the end: loud enough, without reverb and vibrato, which never stand still.
    void settleThePanel(Model& model) {
        for (const char* const knob : kKnobs)
            desk_.send(tvk::panel::floatFrame(knob, 0.37f));
        for (const char* const knob : {"PA_0", "PC_0"})
            desk_.send(tvk::panel::floatFrame(knob, 0.0f));
        desk_.send(tvk::panel::floatFrame("PB_1", 0.8f));
        desk_.send(tvk::panel::intFrame("PB2_AND_PB10", 1));
        desk_.send(tvk::panel::intFrame("PF0_AND_PF1", 0));
        pass(1s);
        const PanelState& panel = model.panel();
        EXPECT_EQ(panel.normalVolume.get(), 0.37f);
        EXPECT_EQ(panel.vibratoVolume.get(), 0.37f);
        EXPECT_EQ(panel.vibratoReverb.get(), 0.0f);
        EXPECT_EQ(panel.cabsim.get(), 1);
        EXPECT_EQ(panel.productId.get(), 0);
        EXPECT_TRUE(panel.footswitchReverb.get());
    }

    nlohmann::json file(const std::string& name) const {
        return nlohmann::json::parse(std::ifstream(desk_.root.userData / name));
    }

    void expectFilesAsTheClientSeesThem() {
        ask(requests::saveCurrentState());
        const auto slots = ask(requests::cabsimIRList());
        const nlohmann::json stored = file("userCabsimConfig.json").at("cabsimIRs");
        ASSERT_EQ(slots.back().cabsimirlistresponse().record_size(), 3);
        for (int i = 0; i < 3; ++i) {
            const CabsimIRListRecord& slot = slots.back().cabsimirlistresponse().record(i);
            const auto& record = stored.at(static_cast<std::size_t>(i));
            EXPECT_EQ(record.at("irName"), slot.irname());
            EXPECT_EQ(record.at("isFactory"), slot.isfactory());
            EXPECT_FLOAT_EQ(record.at("hpf").get<float>(), slot.hpf());
            EXPECT_FLOAT_EQ(record.at("level").get<float>(), slot.level());
            EXPECT_FALSE(slot.isdirty());
        }
        std::vector<std::string> names;
        const auto list = ask(requests::userIRList());
        for (const auto& record : list.back().userirlistresponse().record()) {
            EXPECT_TRUE(record.exists()) << record.name();
            names.push_back(record.name() + ".wav");
        }
        std::vector<std::string> files;
        for (const auto& entry : fs::directory_iterator(desk_.root.userData / "userIRs"))
            files.push_back(entry.path().filename().string());
        EXPECT_THAT(files, ::testing::UnorderedElementsAreArray(names));
    }

    DeskAmplifier desk_;
    Listener listener_{desk_.card};
    std::string response_;
};

}  // namespace

TEST_F(Storm, LeavesOneTruth) {
    std::ifstream stream(desk_.root.homeRoot / "IRs" / "TestCabinet1.wav", std::ios::binary);
    response_.assign(std::istreambuf_iterator<char>(stream), {});
    desk_.run(cable(), false, {}, [&](Model& model) {
        tvk::log::enableDebug(false);
        const auto start = desk_.card.virtualTime().now();
        std::thread panel([this] { stormOfThePanel(); });
        std::thread client([this] { stormOfTheClient(); });
        panel.join();
        client.join();
        // The last plug.
        while (desk_.card.virtualTime().now() < start + std::chrono::seconds(4 * kUnplugs + 1))
            pass(100ms);

        settleThePanel(model);
        expectFilesAsTheClientSeesThem();
        // The client's connection lapses, and the switch's slot is in force.
        pass(7s);
        const std::array<double, 2> before = loudness();
        EXPECT_GT(before[0], 1e-3);
        // A new amplifier is given everything from the models: nothing changes if the engine had it all.
        becomeProduct(1);
        becomeProduct(0);
        pass(3s);
        const std::array<double, 2> after = loudness();
        EXPECT_NEAR(after[0] / before[0], 1.0, 0.02);
        EXPECT_NEAR(after[1] / before[1], 1.0, 0.02);
    });
}
