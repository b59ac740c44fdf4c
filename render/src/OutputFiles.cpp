#include "OutputFiles.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>
#include <utility>

#include "utility/Exception.h"

namespace tvk::render {

PendingFile::PendingFile(std::string path)
    : path_(std::move(path)), temporary_(path_ + ".tmp" + std::to_string(getpid())) {}

PendingFile::~PendingFile() {
    if (isWanted() && !isCommitted_) std::remove(temporary_.c_str());
}

void PendingFile::commit() {
    if (!isWanted()) return;
    if (std::rename(temporary_.c_str(), path_.c_str()) != 0)
        TVK_THROW("cannot write '%s': %s", path_.c_str(), std::strerror(errno));
    isCommitted_ = true;
}

}  // namespace tvk::render
