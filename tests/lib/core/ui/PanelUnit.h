// A unit with one parameter of each type, and definitions for it.
#pragma once

#include <string>

#include "core/DspUnitBypassStereo/DspUnitBypassStereo.h"

class PanelUnit : public DspUnitBypassStereo {
public:
    PanelUnit() : DspUnitBypassStereo("DUBS_Panel", 32, 44100.0f) {
        for (IParameter* parameter :
             std::initializer_list<IParameter*>{&level.parameter, &voice.parameter, &bright.parameter,
                                                &cents.parameter, &noteDivision.parameter})
            addParameter(parameter);
    }
    using DspUnitBypassStereo::process;
    void process(float*, float*, float*, float*) override {}
    void initDerived(DspArchive&) override {}
    void getArchiveDerived(DspArchive&) override {}
    void setTapTimeBPM(float bpm) override { tempoSet = bpm; }
    void initTapTimeBPM(float bpm) override { tempoInit = bpm; }

    template <typename T>
    struct Property {
        explicit Property(const std::string& name)
            : parameter(name, PropertySlot(this, &Property::get, &Property::set, &Property::set)) {}
        T get() const { return value; }
        void set(const T& v) {
            value = v;
            ++numSets;
        }
        T value{};
        int numSets = 0;
        Parameter<T> parameter;
    };
    Property<float> level{"level"};
    Property<std::string> voice{"voice"};
    Property<bool> bright{"bright"};
    Property<int> cents{"cents"};
    Property<std::string> noteDivision{"noteDivision"};
    float tempoSet = 0.0f, tempoInit = 0.0f;
};

// An item of uiParameters for a parameter; extra: further members, each with a comma before it.
inline std::string item(const std::string& type, const std::string& id, const std::string& extra = "") {
    return R"({"controlType":")" + type + R"(","controlId":")" + id + R"(","displayName":"Show )" + id +
           R"(","displayType":"multi","paramGuiObjectNameMinimized":"min )" + id +
           R"(","paramGuiObjectNameMaximized":"max )" + id + "\"" + extra + "}";
}

inline std::string continuous(const std::string& extra = R"(,"min":0,"max":1,"numTicks":101)") {
    return item("continuous", "level", extra);
}

inline std::string definition(const std::string& items, const std::string& ui = "") {
    return R"({"nodeType":"dspUnit","TarvekId":"DUBS_Panel","defaultDspUnitParameters":{},)"
           R"("info":{"displayName":"Panel","audioGuiObjectNameMinimized":"pnl","audioGuiObjectNameMaximized":"PANEL",)"
           R"("category":"effect","subcategory":"test"},)"
           R"("ui":{"hasBypass":true,"hasTap":true)" +
           ui + R"(,"uiParameters":[)" + items + "]}}";
}
