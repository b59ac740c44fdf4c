// What keeps a request from being answered: one line of text that says what, where, and what to do about it.
#pragma once

#include <stdexcept>
#include <string>

namespace tvk::client {

// The numbers are the exit statuses of the command-line program.
enum class Failure {
    Refused = 1,  // the amplifier says no
    BadUse = 2,   // not worth sending
    NoLink = 3    // nothing to talk to, or no answer
};

class ClientError : public std::runtime_error {
public:
    ClientError(Failure failure, const std::string& text) : std::runtime_error(text), failure_(failure) {}

    Failure getFailure() const { return failure_; }

private:
    Failure failure_;
};

// The amplifier has ended the connection, after five seconds of silence or by a restart. The link is still
// there, and Session::connect opens it anew.
class ConnectionLapsed : public ClientError {
public:
    explicit ConnectionLapsed(const std::string& text) : ClientError(Failure::NoLink, text) {}
};

}  // namespace tvk::client
