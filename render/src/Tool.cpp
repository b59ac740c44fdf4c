#include "render/Tool.h"

#include <exception>
#include <filesystem>
#include <fstream>
#include <ostream>

#include "CommandLine.h"
#include "OutputFiles.h"
#include "WarningCollector.h"
#include "core/ProductProfile/ProductProfile.h"
#include "core/System/DspUnitInputVoltageMappingConfig.h"
#include "render/PresetText.h"
#include "render/Renderer.h"
#include "shared/DspUnitInfo/DefaultDspUnitDatabase.h"
#include "utility/Exception.h"
#include "utility/ProductPaths.h"
#include "wav/WavWriter.h"

namespace tvk::render {

namespace {

constexpr int kRefused = 2;
constexpr char kProductHome[] = TARVEK_PRODUCT_HOME;
constexpr char kCostFile[] = "PU_Ostrel_RX.json";

std::string presetText(const CommandLine& line, const DspUnitDatabase& database) {
    const int sources = line.slot.has_value() + !line.presetFile.empty() + !line.unit.empty();
    if (sources != 1) TVK_THROW("one of --slot, --preset and --unit is needed");
    std::vector<ParameterSetting> settings;
    for (const std::string& text : line.sets)
        settings.push_back(ParameterSetting::parse(text));
    const std::string text = line.slot           ? presetOfSlot(*line.slot)
                             : line.unit.empty() ? presetOfFile(line.presetFile)
                                                 : presetOfUnit(database, line.unit);
    return withSettings(text, settings, database);
}

float inputVoltage(const CommandLine& line) {
    if (line.inputVoltage) return *line.inputVoltage;
    const std::string path = std::string(kProductHome) + "/product_profile.json";
    const float volts = ProductProfile(path).getInputVoltageMapping();
    if (!(volts > 0.0f))
        TVK_THROW("product profile '%s' gives no input voltage; use --input-voltage", path.c_str());
    return volts;
}

// In the working folder, then beside the product profile.
std::string costFile() {
    return std::filesystem::exists(kCostFile) ? kCostFile : std::string(kProductHome) + "/" + kCostFile;
}

RenderPlan makePlan(const CommandLine& line) {
    RenderPlan plan;
    plan.blockLength = line.blockLength;
    plan.rateHz = line.rateHz;
    plan.settleSeconds = line.settleSeconds;
    plan.tailSeconds = line.tailSeconds;
    for (const auto& [seconds, text] : line.changes)
        plan.changes.push_back({seconds, ParameterSetting::parse(text)});
    return plan;
}

void writeReport(const RenderReport& report, const PendingFile& file) {
    if (!file.isWanted()) return;
    std::ofstream stream(file.temporary());
    stream << report.toJson();
    if (!stream.flush()) TVK_THROW("cannot write the report");
}

void checkWritable(const PendingFile& file, const std::string& path) {
    if (!file.isWanted()) return;
    if (std::filesystem::is_directory(path) || !std::ofstream(file.temporary()))
        TVK_THROW("cannot write '%s'", path.c_str());
}

void renderFiles(const CommandLine& line, const DspUnitDatabase& database, std::ostream& out) {
    if (line.inputFile.empty() || line.outputFile.empty()) TVK_THROW("--in and --out are needed");
    const WarningCollector collector(out);
    // First, since its device has the cabinet convolver that units ask for when they are made.
    OfflineEngine engine(database, line.blockLength, line.rateHz, costFile());
    const std::string preset = presetText(line, database);
    const GuitarFile guitar(line.inputFile, line.rateHz);
    const RenderPlan plan = makePlan(line);
    DspUnitInputVoltageMappingConfig::set(inputVoltage(line));
    engine.device().loadPreset(preset);
    checkChanges(plan, engine, guitar.frames());

    PendingFile wavFile(line.outputFile);
    PendingFile reportFile(line.reportFile);
    checkWritable(wavFile, line.outputFile);
    checkWritable(reportFile, line.reportFile);
    WavWriter writer(wavFile.temporary(), line.rateHz, OfflineEngine::kChannels);
    RenderReport report = render(plan, engine, guitar, [&](const float* interleaved, std::size_t frames) {
        writer.write(interleaved, frames);
    });
    writer.close();
    report.warnings = collector.warnings();
    writeReport(report, reportFile);
    wavFile.commit();
    reportFile.commit();
}

void run(const CommandLine& line, std::ostream& out) {
    const DefaultDspUnitDatabase database;
    if (!line.helpText.empty()) {
        out << line.helpText;
    } else if (line.list) {
        for (const std::string& id : database.getIds())
            out << id << '\n';
    } else if (!line.describe.empty()) {
        if (!database.contains(line.describe))
            TVK_THROW("unknown unit '%s'; --list shows all", line.describe.c_str());
        out << database.getDefinition(line.describe) << '\n';
    } else {
        renderFiles(line, database, out);
    }
}

}  // namespace

int runTool(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
    // The product's own files, wherever this machine keeps them.
    ProductPaths::set(kProductHome, ProductPaths::kUserData);
    try {
        run(parseCommandLine(argc, argv), out);
        return 0;
    } catch (const std::exception& fault) {
        err << "tarvek-render: " << fault.what() << std::endl;
        return kRefused;
    }
}

}  // namespace tvk::render
