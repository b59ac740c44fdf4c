#include "core/units/filter/DUBS_IRLoader.h"

#include <utility>

#include "algorithms/cabsim/CabinetLimits.h"

DUBS_IRLoader::DUBS_IRLoader(std::string tarvekId, int blockLength, float sampleRate)
    : ControlledUnit(std::move(tarvekId), blockLength, sampleRate, "DUBS_IRLoader", ControlLog::Call),
      cabinet_(blockLength, sampleRate) {
    addControl("idCabinet", "Cabinet", std::string("none"),
               [this](const std::string& name, bool) { cabinet_.setFile(name); });
    addControl("idCabinetHPF", "CabinetHPF", 20.0f,
               [this](float hz, bool isInit) { cabinet_.setHPF(cabinet::limitHpfHz(hz), isInit); });
    addControl("idCabinetLPF", "CabinetLPF", 20000.0f,
               [this](float hz, bool isInit) { cabinet_.setLPF(cabinet::limitLpfHz(hz), isInit); });
    addControl("idCabinetLevel", "CabinetLevel", -12.0f,
               [this](float db, bool isInit) { cabinet_.setOutputLevel(cabinet::limitLevelDb(db), isInit); });
}

void DUBS_IRLoader::process(float* inLeft, float* inRight, float* outLeft, float* outRight) {
    cabinet_.process(inLeft, inRight, outLeft, outRight);
}
