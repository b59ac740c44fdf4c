// The requests of a client, ready to send.
//
// Cabinet slots count from 0 to 2, slots of uploaded responses from 1. Nothing is judged here: the amplifier
// answers what it does not like with an error.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "TarvekMessage.pb.h"

namespace tvk::client::requests {

// The connection.
TarvekMessage connection();
TarvekMessage heartbeat();

// The amplifier.
TarvekMessage currentAmplifier();
TarvekMessage firmware();
TarvekMessage productProfile();
TarvekMessage factoryRestore();

// Impulse responses. data: the bytes of a WAV or AIFF file.
TarvekMessage userIRList();
TarvekMessage factoryIRList();
TarvekMessage addUserIR(const std::string& name, std::string_view data);
TarvekMessage moveUserIR(std::uint32_t oldSlot, std::uint32_t newSlot);
TarvekMessage removeUserIR(std::uint32_t slot);

// Cabinet slots. HPF and LPF in Hz, level in dB.
TarvekMessage cabsimIRList();
TarvekMessage cabsimSelection();
TarvekMessage setCabsimSelection(std::uint32_t slot);
TarvekMessage assignFactoryIR(std::uint32_t slot, const std::string& name);
TarvekMessage assignUserIR(std::uint32_t slot, const std::string& name);
TarvekMessage setCabsimHpf(std::uint32_t slot, float hz);
TarvekMessage setCabsimLpf(std::uint32_t slot, float hz);
TarvekMessage setCabsimLevel(std::uint32_t slot, float db);
TarvekMessage saveCurrentState();
TarvekMessage syncCurrentState();

// Global settings.
TarvekMessage reverbTaperType();
TarvekMessage vibratoChannelBright();
TarvekMessage setReverbTaperType(std::uint32_t value);
TarvekMessage setVibratoChannelBright(bool isBright);

}  // namespace tvk::client::requests
