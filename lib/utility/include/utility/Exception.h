// The program's exception: a formatted text with the source position of the throw.
#pragma once

#include <stdexcept>
#include <string>

namespace tvk {

class Exception : public std::runtime_error {
public:
    Exception(const char* file, int line, const std::string& text)
        : std::runtime_error(text), file_(file), line_(line) {}

    const char* file() const { return file_; }
    int line() const { return line_; }

private:
    const char* file_;  // a __FILE__ literal, never freed
    int line_;
};

// printf into a string; used for the texts of exceptions and log lines.
std::string formatText(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace tvk

// Throws tvk::Exception with a printf text.
#define TVK_THROW(...) throw ::tvk::Exception(__FILE__, __LINE__, ::tvk::formatText(__VA_ARGS__))
