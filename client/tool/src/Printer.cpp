#include "client/tool/Printer.h"

#include "client/MessageJson.h"
#include "client/MessageWords.h"

namespace tvk::client {

void Printer::message(const TarvekMessage& message) {
    out_ << (isJson_ ? jsonOf(message) : wordsOf(message)) << '\n' << std::flush;
}

void Printer::note(const std::string& text) {
    complain(text);
}

void Printer::failure(Failure failure, const std::string& text) {
    if (isJson_)
        out_ << "{\"failure\":{\"status\":" << static_cast<int>(failure) << ",\"text\":" << jsonString(text)
             << "}}\n"
             << std::flush;
    complain(text);
}

void Printer::progress(const std::string& what, std::size_t done, std::size_t total) {
    const int tenths = static_cast<int>(done * 10 / total);
    if (done < total && tenths == shownTenths_) return;
    shownTenths_ = done < total ? tenths : 0;
    errors_ << (isTerminal_ ? "\r" : "") << what << ": " << done << " of " << total << " frames"
            << (isTerminal_ && done < total ? "" : "\n") << std::flush;
}

void Printer::complain(const std::string& text) {
    errors_ << "tarvek-client: " << text << '\n' << std::flush;
}

}  // namespace tvk::client
