// A second of playing between two marks, alone or with a client that asks without pause; for callgrind, which
// counts what AudioProcessor::computeBlock executes in between (process_instructions.sh).
#include <cmath>
#include <cstdio>
#include <cstring>

#include "client/Requests.h"
#include "client/Session.h"
#include "client/SocketLink.h"
#include "reliability/DeskAmplifier.h"
#include "support/SteppedClientClock.h"
#include "utility/Log.h"

using namespace std::chrono_literals;

extern "C" {
[[gnu::noinline]] void measurement_begins() {
    asm volatile("");
}
[[gnu::noinline]] void measurement_ends() {
    asm volatile("");
}
}

namespace {}  // namespace

int main(int argc, char** argv) {
    const bool isStreaming = argc == 2 && std::strcmp(argv[1], "streaming") == 0;
    DeskAmplifier desk;
    for (auto& guitar : desk.settings.guitars)
        for (int i = 0; i < DeskAmplifier::kRateHz; ++i)
            guitar.push_back(0.1f * static_cast<float>(std::sin(0.0627 * i)));
    int answers = 0;
    desk.run({}, true, {}, [&](Model&) {
        tvk::log::enableDebug(false);
        tvk::desk::VirtualTime& time = desk.card.virtualTime();
        tvk::client::SocketLink link(desk.endpoints.hid().string());
        SteppedClientClock clock = desk.clientClock();
        tvk::client::Session session(link, clock);
        session.connect();
        const auto begin = time.now();
        time.run(1s);
        measurement_begins();
        const auto end = time.now() + 1s;
        while (isStreaming && time.now() < end - 50ms)
            answers += session.ask(tvk::client::requests::cabsimIRList()).replies.empty() ? 0 : 1;
        time.run(end - time.now());
        measurement_ends();
        std::printf("%d answers in %.3f s of %.3f s\n", answers, 1.0,
                    std::chrono::duration<double>(time.now() - begin).count());
    });
    return 0;
}
