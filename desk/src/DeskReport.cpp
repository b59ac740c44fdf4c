#include "desk/DeskReport.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <nlohmann/json.hpp>

#include "utility/Exception.h"

namespace tvk::desk {

namespace {

nlohmann::ordered_json toJson(const std::string& name, const ThreadTimes& times) {
    const Histogram& wall = times.wall();
    const Histogram& processor = times.processor();
    nlohmann::ordered_json thread;
    thread["name"] = name;
    thread["mean_us"] = wall.meanUs();
    thread["p50_us"] = wall.quantileUs(0.5);
    thread["p99_us"] = wall.quantileUs(0.99);
    thread["max_us"] = wall.maxUs();
    thread["deadline_us"] = static_cast<double>(times.deadline().count()) * 1e-3;
    thread["overruns"] = times.wallOverruns();
    thread["cpu_mean_us"] = processor.meanUs();
    thread["cpu_p50_us"] = processor.quantileUs(0.5);
    thread["cpu_p99_us"] = processor.quantileUs(0.99);
    thread["cpu_max_us"] = processor.maxUs();
    thread["cpu_overruns"] = times.processorOverruns();
    return thread;
}

}  // namespace

std::string DeskReport::toJson() const {
    nlohmann::ordered_json threads =
        nlohmann::ordered_json::array({desk::toJson("AudioProcessor", blocks.times())});
    jobs.forEach([&threads](const std::string& name, const ThreadTimes& times) {
        threads.push_back(desk::toJson(name, times));
    });

    nlohmann::ordered_json json;
    json["seconds"] = static_cast<double>(levels.frames()) / rateHz;
    json["blocks"] = blocks.times().wall().count();
    json["xruns"] = xruns;
    json["threads"] = threads;
    json["machine"] = {{"wake_p50_us", wakeLateness.quantileUs(0.5)},
                       {"wake_p99_us", wakeLateness.quantileUs(0.99)},
                       {"wake_max_us", wakeLateness.maxUs()}};
    json["peak"] = {levels.peak(0), levels.peak(1)};
    json["rms_dbfs"] = {levels.rmsDbfs(0), levels.rmsDbfs(1)};
    return json.dump(4) + "\n";
}

void DeskReport::save(const std::string& path) const {
    const std::string unfinished = path + ".tmp";
    {
        std::ofstream file(unfinished);
        file << toJson();
        file.close();
        if (!file) TVK_THROW("cannot write %s", unfinished.c_str());
    }
    if (std::rename(unfinished.c_str(), path.c_str()) != 0)
        TVK_THROW("cannot write %s: %s", path.c_str(), std::strerror(errno));
}

}  // namespace tvk::desk
