// Our own amplifiers' speakers, by their boxes:
//
//   Arvel    two 12-inch, open back       its curve is the one that the amplifier itself applies
//   Corvin   one 12-inch, open back
//   Lisko    one 10-inch, small open back
//   Sorrel   two 10-inch, closed back
//
// A smaller cone resonates higher; the closed box's stiffness raises the resonance and its losses widen it;
// the shelf follows the voice coil's inductance.
#include "algorithms/cabsim/CabinetTable.h"

#include <array>

#include "FactoryCabinet.h"
#include "FilterCabinet.h"
#include "SpeakerCurve.h"

namespace {

constexpr SpeakerCurveValues kArvelCurve{
    {{{6.9f, 74.5f, 1.5f}, {0.5f, 225.0f, 1.75f}, {-0.9f, 500.0f, 0.7f}, {-0.25f, 6000.0f, 1.0f}}},
    {7.0f, 850.0f, 0.7f},
    -1.0f};
constexpr SpeakerCurveValues kCorvinCurve{
    {{{6.2f, 82.0f, 1.7f}, {0.4f, 240.0f, 1.6f}, {-0.8f, 480.0f, 0.7f}, {-0.2f, 5500.0f, 1.0f}}},
    {6.5f, 900.0f, 0.7f},
    -1.0f};
constexpr SpeakerCurveValues kLiskoCurve{
    {{{5.8f, 98.0f, 1.9f}, {0.6f, 300.0f, 1.5f}, {-0.7f, 600.0f, 0.8f}, {-0.3f, 6500.0f, 1.0f}}},
    {6.0f, 1100.0f, 0.7f},
    -0.8f};
constexpr SpeakerCurveValues kSorrelCurve{
    {{{5.2f, 118.0f, 1.1f}, {0.7f, 320.0f, 1.4f}, {-0.8f, 650.0f, 0.8f}, {-0.3f, 6200.0f, 1.0f}}},
    {6.4f, 1000.0f, 0.7f},
    -0.9f};

// Low end as the box's, presence and roll-off as the cone's.
constexpr FilterCabinetValues kArvelNetwork{
    {82.0f, 0.9f},
    {{{2.5f, 125.0f, 1.2f}, {-4.0f, 420.0f, 0.8f}, {5.5f, 2700.0f, 0.9f}}},
    {{{5100.0f, 0.9f}, {6200.0f, 0.6f}}},
    -6.0f};
constexpr FilterCabinetValues kCorvinNetwork{
    {88.0f, 0.9f},
    {{{3.0f, 130.0f, 1.3f}, {-3.0f, 450.0f, 0.9f}, {5.0f, 2500.0f, 1.0f}}},
    {{{4900.0f, 0.9f}, {6000.0f, 0.6f}}},
    -6.0f};
constexpr FilterCabinetValues kLiskoNetwork{
    {108.0f, 0.85f},
    {{{2.0f, 170.0f, 1.2f}, {-2.5f, 560.0f, 0.9f}, {5.0f, 3100.0f, 1.0f}}},
    {{{5600.0f, 0.9f}, {6900.0f, 0.6f}}},
    -6.0f};
constexpr FilterCabinetValues kSorrelNetwork{
    {95.0f, 1.1f},
    {{{3.5f, 140.0f, 1.0f}, {-3.5f, 600.0f, 0.8f}, {6.0f, 2900.0f, 0.9f}}},
    {{{5400.0f, 0.9f}, {6600.0f, 0.6f}}},
    -6.5f};

template <const SpeakerCurveValues& values>
std::unique_ptr<SICQNSBase> makeCurve(int blockLength, float sampleRate) {
    return std::make_unique<SpeakerCurve>(values, blockLength, sampleRate);
}

template <const FilterCabinetValues& values>
std::unique_ptr<ICabSim> makeNetwork(int blockLength, float sampleRate) {
    return std::make_unique<FilterCabinet>(values, blockLength, sampleRate);
}

constexpr std::array<CabinetRow, 4> kTable{
    {{"Arvel", "/home/root/factoryIRs/Arvel-SlatePanel-IRs/Arvel-Near-Center", FactoryCabinet::load,
      makeCurve<kArvelCurve>, makeNetwork<kArvelNetwork>},
     {"Corvin", "/home/root/factoryIRs/Corvin-SlatePanel-IRs/Corvin-Near-Center", FactoryCabinet::load,
      makeCurve<kCorvinCurve>, makeNetwork<kCorvinNetwork>},
     {"Lisko", "/home/root/factoryIRs/Lisko-SlatePanel-IRs/Lisko-Near-Center", FactoryCabinet::load,
      makeCurve<kLiskoCurve>, makeNetwork<kLiskoNetwork>},
     {"Sorrel", "/home/root/factoryIRs/Sorrel-SlatePanel-IRs/Sorrel-Near-Center", FactoryCabinet::load,
      makeCurve<kSorrelCurve>, makeNetwork<kSorrelNetwork>}}};

}  // namespace

std::span<const CabinetRow> cabinetTable() {
    return kTable;
}
