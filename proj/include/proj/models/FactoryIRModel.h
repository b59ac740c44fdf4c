// The impulse responses that ship with this amplifier: a catalogue chosen by the product family and by the
// amplifier, once the control processor has told which it is. Empty until then.
//
// Threads: any but the audio thread.
#pragma once

#include <functional>
#include <shared_mutex>
#include <string>
#include <vector>

#include "proj/models/Storage.h"
#include "utility/Signal.h"

class Model;

namespace tvk {

class FactoryIRModel {
public:
    explicit FactoryIRModel(Model& model, Storage& storage = Storage::machine());
    FactoryIRModel(const FactoryIRModel&) = delete;
    FactoryIRModel& operator=(const FactoryIRModel&) = delete;

    // Names in the order of the catalogue.
    std::vector<std::string> getFactoryIRList() const;

    // Directory and name, without extension; "None" while no catalogue's directory is in force.
    std::string getFactoryIRFilePath(const std::string& name) const;

    // The amplifier id signal of the catalogue. The controller emits it here first and on the cabinet model
    // (CabsimModel::amplifierChanged) next, which finds the catalogue loaded. id: 0 Arvel, 1 Corvin, 2 Lisko,
    // 3 Sorrel. Observers run on the caller's thread, the catalogue's own reload first.
    void amplifierChanged(int id);
    [[nodiscard]] nod::connection addAmplifierObserver(std::function<void(int)> observer);

private:
    void load(int amplifier);
    std::vector<std::string> readCatalogue(const std::string& path) const;
    void store(std::string directory, std::vector<std::string> names);

    Model& model_;
    Storage& storage_;
    mutable std::shared_mutex mutex_;  // on the directory and the names
    std::string irDirectory_;
    std::vector<std::string> names_;
    nod::signal_type<int> amplifierSignal_;
    nod::connection ownObserver_;
};

}  // namespace tvk
