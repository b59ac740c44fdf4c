#include "client/tool/TextFile.h"

#include <fstream>
#include <iostream>
#include <sstream>

#include "client/ClientError.h"
#include "utility/EscapedText.h"

namespace tvk::client {

namespace {

constexpr std::size_t kMostBytes = 16 << 20;

std::string readAll(std::istream& input, const std::string& path) {
    std::string text(kMostBytes + 1, '\0');
    input.read(text.data(), static_cast<std::streamsize>(text.size()));
    const auto size = static_cast<std::size_t>(input.gcount());
    if (input.bad() || size > kMostBytes)
        throw ClientError(Failure::BadUse, escaped(path) + ": cannot be read, or is larger than 16 MiB");
    text.resize(size);
    return text;
}

}  // namespace

std::string readText(const std::string& path) {
    if (path == "-") return readAll(std::cin, path);
    std::ifstream file(path, std::ios::binary);
    if (!file) throw ClientError(Failure::BadUse, escaped(path) + ": cannot be opened; is the path right?");
    return readAll(file, path);
}

}  // namespace tvk::client
