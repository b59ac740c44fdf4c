#include "proj/models/ControlProcessorBootManager.h"

#include <utility>

#include "utility/Log.h"

namespace {

constexpr const char* kTag = "ControlProcessorBootManager";

}  // namespace

ControlProcessorBootManager::ControlProcessorBootManager(Shell shell, std::string gpioRoot)
    : shell_(std::move(shell)), gpioRoot_(std::move(gpioRoot)) {
    tvk::log::debug(kTag, "gpio export 3, ret = %d", write("3", "export"));
    tvk::log::debug(kTag, "gpio export 6, ret = %d", write("6", "export"));
    tvk::log::debug(kTag, "ret = %d", write("110", "export"));
    tvk::log::debug(kTag, "ret = %d", write("in", "gpio110/direction"));
    tvk::log::debug(kTag, "ret = %d", write("both", "gpio110/edge"));
    tvk::log::debug(kTag, "ret = %d", write("1", "gpio110/active_low"));
}

void ControlProcessorBootManager::resetAndBootUpdateMode() {
    write("low", "gpio3/direction");
    write("high", "gpio6/direction");
    write("high", "gpio3/direction");
}

int ControlProcessorBootManager::write(const std::string& text, const std::string& file) const {
    return shell_("echo " + text + " > " + gpioRoot_ + "/" + file);
}
