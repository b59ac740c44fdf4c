#include "utility/File.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "FileImpl.h"
#include "utility/Exception.h"
#include "utility/Log.h"

namespace tvk {

namespace {

const char* modeText(File::IoMode mode) {
    switch (mode) {
        case File::IoMode::Read:
            return "r+";
        case File::IoMode::Write:
            return "w+";
        case File::IoMode::Append:
            return "a+";
    }
    TVK_THROW("FileImpl::FileImpl() ioMode parameter has unknown value");
}

}  // namespace

FileImpl::FileImpl(const std::string& path, File::IoMode mode) : stream_(nullptr), pathName_(path) {
    if (path.empty()) TVK_THROW("FileImpl::FileImpl() pathName parameter is empty");
    const char* const text = modeText(mode);
    stream_ = std::fopen(path.c_str(), text);
    if (!stream_)
        TVK_THROW("Can't open file '%s' (using mode %s): %s", path.c_str(), text, std::strerror(errno));
}

FileImpl::~FileImpl() {
    if (std::fclose(stream_) != 0) TVK_WARN("Can't close file '%s'", pathName_.c_str());
}

bool FileImpl::readLine(std::string& line) {
    char* buffer = nullptr;
    std::size_t capacity = 0;
    const ssize_t length = getline(&buffer, &capacity, stream_);
    const int error = errno;
    if (length >= 0) line.assign(buffer, static_cast<std::size_t>(length));
    std::free(buffer);
    if (length == -1 && std::ferror(stream_))
        TVK_THROW("Can't read line from file '%s': %s", pathName_.c_str(), std::strerror(error));
    if (length == -1) return false;
    if (!line.empty() && line.back() == '\n') line.pop_back();
    return true;
}

void FileImpl::write(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stream_) != text.size())
        TVK_THROW("Can't write to file '%s': %s", pathName_.c_str(), std::strerror(errno));
}

void FileImpl::flush() {
    if (std::fflush(stream_) != 0)
        TVK_THROW("Can't flush to file '%s': %s", pathName_.c_str(), std::strerror(errno));
}

File::File(const std::string& path, IoMode mode) : impl_(std::make_unique<FileImpl>(path, mode)) {}

File::~File() = default;

bool File::readLine(std::string& line) {
    return impl_->readLine(line);
}

void File::write(const std::string& text) {
    impl_->write(text);
}

void File::flush() {
    impl_->flush();
}

}  // namespace tvk
