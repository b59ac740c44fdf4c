#include "proj/models/FactoryIRModel.h"

#include <mutex>
#include <utility>

#include "AmplifierFiles.h"
#include "CatalogueFiles.h"
#include "proj/models/IRName.h"
#include "proj/models/Model.h"
#include "utility/Log.h"

namespace tvk {

FactoryIRModel::FactoryIRModel(Model& model, Storage& storage)
    : model_(model), storage_(storage), ownObserver_(addAmplifierObserver([this](int id) { load(id); })) {}

std::vector<std::string> FactoryIRModel::getFactoryIRList() const {
    const std::shared_lock lock(mutex_);
    return names_;
}

std::string FactoryIRModel::getFactoryIRFilePath(const std::string& name) const {
    const std::shared_lock lock(mutex_);
    return irDirectory_.empty() ? kNoIR : irDirectory_ + name;
}

void FactoryIRModel::amplifierChanged(int id) {
    amplifierSignal_(id);
}

nod::connection FactoryIRModel::addAmplifierObserver(std::function<void(int)> observer) {
    return amplifierSignal_.connect(std::move(observer));
}

void FactoryIRModel::load(int amplifier) {
    store("", {});
    const std::string& familyName = model_.getProductFamily();
    const ProductFamily family = productFamilyOf(familyName);
    const AmplifierFiles* const files = amplifierFiles(family, amplifier);
    if (files)
        store(files->directory, readCatalogue(files->catalogue));
    else if (family == ProductFamily::SlatePanel)
        TVK_WARN("No Slate Panel IRs for specified amp.");
    else if (family == ProductFamily::Fawn)
        TVK_WARN("No Fawn IRs for specified amp.");
    else
        TVK_WARN("No IRs for specified product family: %s.", familyName.c_str());
}

std::vector<std::string> FactoryIRModel::readCatalogue(const std::string& path) const {
    try {
        std::string text;
        if (storage_.load(path, text) == Storage::Load::Done) return parseFactoryCatalogue(text);
    } catch (const std::exception&) {
        // Said below: every way to have no catalogue is the same to the client.
    }
    TVK_ERROR("Failed to load factory IR database.");
    return {};
}

void FactoryIRModel::store(std::string directory, std::vector<std::string> names) {
    const std::unique_lock lock(mutex_);
    irDirectory_ = std::move(directory);
    names_ = std::move(names);
}

}  // namespace tvk
