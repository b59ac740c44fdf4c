// The USB port of an amplifier that has none: a HID gadget device for the amplifier, a host on a socket.
//
// The device is a terminal line behind a symlink, which plugging points to a new line and unplugging takes
// away. The socket is of type SEQPACKET, one packet a report of 64 bytes, as the device carries them: towards
// the host a zero id byte and 63 bytes of frame; towards the device the frame from byte 0, the last byte
// unused. One program at a time may be the host. Its end is no unplugging; while there is none, or it does
// not read, the amplifier's writes find the device busy.
//
// One thread.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "desk/PseudoTerminal.h"
#include "desk/Script.h"

namespace tvk::desk {

class UsbPort {
public:
    // Unplugged at first. isHostSimulated: reports come by send as well, and what nobody reads is thrown
    // away. Throws Refusal when the socket cannot be made.
    UsbPort(std::filesystem::path device, const std::filesystem::path& socket, bool isHostSimulated);
    ~UsbPort();
    UsbPort(const UsbPort&) = delete;
    UsbPort& operator=(const UsbPort&) = delete;

    // A program that is the host sees its socket closed when the cable is pulled.
    void plug();
    void unplug();

    // Moves at most one report each way; false when nothing came, went or changed.
    bool exchange();

    // One more report from the host.
    void send(const HidReport& report);

private:
    bool acceptHost();
    void dropHost();
    bool carryToDevice();
    bool carryToHost();

    const std::filesystem::path device_;
    const bool isHostSimulated_;
    std::unique_ptr<PseudoTerminal> line_;  // none while unplugged
    int listener_ = -1;
    int host_ = -1;
    std::vector<std::uint8_t> toHost_;  // the report under way
};

}  // namespace tvk::desk
