// A host of two channels that runs without audio hardware, and helpers that write presets for it.
#pragma once

#include <array>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "GraphUnits.h"
#include "core/System/DspUnitHost.h"
#include "support/AudioWhileWaiting.h"
#include "support/LogRecorder.h"

class HostTest : public testing::Test {
protected:
    static constexpr int kBlock = 8;
    static constexpr float kRate = 44100.0f;

    HostTest() {
        host.connectInput(0, in[0].data(), 0);
        host.connectInput(1, in[1].data(), 0);
        openGains();
    }

    static std::string node(const std::string& id, const std::string& type, double value = 0.0) {
        return R"({"nodeId":")" + id + R"(","nodeType":"dspUnit","TarvekId":")" + type +
               R"(","dspUnitParameters":{"value":)" + std::to_string(value) + "}}";
    }
    static std::string edge(const std::string& from, int fromIndex, const std::string& to, int toIndex) {
        return R"({"input":{"nodeId":")" + from + R"(","index":)" + std::to_string(fromIndex) +
               R"(},"output":{"nodeId":")" + to + R"(","index":)" + std::to_string(toIndex) + "}}";
    }
    // Both channels from one node to the next.
    static std::vector<std::string> chain(const std::vector<std::string>& ids) {
        std::vector<std::string> edges;
        for (size_t i = 0; i + 1 < ids.size(); ++i)
            for (int c = 0; c < 2; ++c)
                edges.push_back(edge(ids[i], c, ids[i + 1], c));
        return edges;
    }
    static std::string join(const std::vector<std::string>& items) {
        std::string text;
        for (const auto& item : items)
            text += (text.empty() ? "" : ",") + item;
        return text;
    }
    static std::string preset(const std::vector<std::string>& nodes, const std::vector<std::string>& edges,
                              int inputs = 2) {
        return R"({"nodeType":"preset","nodeId":"preset","version":"1.1","numInputs":)" +
               std::to_string(inputs) +
               R"(,"numOutputs":2,"info":{"displayName":"","preset_id":"","author":"","source_id":"",)"
               R"("timestamp":0,"created_at":0,"product_id":"","is_factory_default":true,"bpm":0},)"
               R"("audioGraph":{"nodes":[)" +
               join(nodes) + R"(],"connections":[)" + join(edges) + "]}}";
    }

    void load(const std::string& text) {
        DspArchive archive(text);
        host.init(archive);
    }
    std::string add(const std::string& nodeText) {
        DspArchive archive(nodeText);
        return host.addDspUnit(archive);
    }
    std::string archived() {
        DspArchive archive;
        host.getArchive(archive);
        return archive.toString();
    }

    // Runs blocks until the host's mute ramps stand at their targets.
    void openGains() {
        for (int i = 0; i < 200; ++i)
            host.process();
    }
    // One block with a constant on each input; the last sample of each output.
    std::array<float, 2> run(float left, float right) {
        in[0].assign(kBlock, left);
        in[1].assign(kBlock, right);
        host.process();
        return {host.getOutputAddr(0)[kBlock - 1], host.getOutputAddr(1)[kBlock - 1]};
    }
    void expectOutput(float left, float right, float inLeft = 0.25f, float inRight = 0.5f) {
        const auto out = run(inLeft, inRight);
        // The ramps rest a few roundings below 1.
        EXPECT_NEAR(out[0], left, 1e-5f * (1.0f + left));
        EXPECT_NEAR(out[1], right, 1e-5f * (1.0f + right));
    }

    LogRecorder log;
    GraphDatabase database;
    std::array<std::vector<float>, 2> in{std::vector<float>(kBlock), std::vector<float>(kBlock)};
    DspUnitHost host{"host", kBlock, 2, 2, &database, kRate};
    AudioWhileWaiting clock{kBlock / static_cast<double>(kRate), [this] { host.process(); }};
};
