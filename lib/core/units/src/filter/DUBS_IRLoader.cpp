#include "core/units/filter/DUBS_IRLoader.h"

#include <utility>

#include "algorithms/cabsim/CabinetLimits.h"

namespace {

constexpr const char* kTag = "DUBS_IRLoader";

}  // namespace

DUBS_IRLoader::DUBS_IRLoader(std::string tarvekId, int blockLength, float sampleRate)
    : DspUnitBypassStereo(std::move(tarvekId), blockLength, sampleRate), cabinet_(blockLength, sampleRate) {
    addControl("idCabinet", "Cabinet", std::string("none"),
               [this](const std::string& name, bool) { cabinet_.setFile(name); });
    addControl("idCabinetHPF", "CabinetHPF", 20.0f,
               [this](float hz, bool isInit) { cabinet_.setHPF(cabinet::limitHpfHz(hz), isInit); });
    addControl("idCabinetLPF", "CabinetLPF", 20000.0f,
               [this](float hz, bool isInit) { cabinet_.setLPF(cabinet::limitLpfHz(hz), isInit); });
    addControl("idCabinetLevel", "CabinetLevel", -12.0f,
               [this](float db, bool isInit) { cabinet_.setOutputLevel(cabinet::limitLevelDb(db), isInit); });
}

template <typename T, typename Apply>
void DUBS_IRLoader::addControl(const char* parameterName, const char* logName, const T& initial,
                               Apply apply) {
    controls_.push_back(
        std::make_unique<ModelControl<T>>(kTag, parameterName, logName, initial, std::move(apply)));
    addParameter(controls_.back()->parameter());
}

void DUBS_IRLoader::process(float* inLeft, float* inRight, float* outLeft, float* outRight) {
    cabinet_.process(inLeft, inRight, outLeft, outRight);
}

void DUBS_IRLoader::initDerived(DspArchive& archive) {
    for (const auto& control : controls_)
        control->read(archive);
}

void DUBS_IRLoader::getArchiveDerived(DspArchive& archive) {
    for (const auto& control : controls_)
        control->write(archive);
}
