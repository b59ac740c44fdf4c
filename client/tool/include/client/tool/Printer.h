// What the program shows: the amplifier's messages on its output, everything else on its errors' stream.
#pragma once

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>

#include "TarvekMessage.pb.h"
#include "client/ClientError.h"

namespace tvk::client {

class Printer {
public:
    // isJson: messages, and a failure besides, as one JSON object a line; otherwise in words.
    // isTerminal: errors can be written over, as the progress of an upload is.
    Printer(std::ostream& out, std::ostream& errors, bool isJson, bool isTerminal)
        : out_(out), errors_(errors), isJson_(isJson), isTerminal_(isTerminal) {}

    void message(const TarvekMessage& message);
    void note(const std::string& text);
    void failure(Failure failure, const std::string& text);
    void progress(const std::string& what, std::size_t done, std::size_t total);

private:
    void complain(const std::string& text);

    std::ostream& out_;
    std::ostream& errors_;
    const bool isJson_;
    const bool isTerminal_;
    int shownTenths_ = 0;  // of the upload under way
};

}  // namespace tvk::client
