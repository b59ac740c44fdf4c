// The calibration of the guitar inputs, read by the factories of the amps: how many volts at the jack a
// sample of full scale stands for.
//
// Process-wide. Set on a control thread from the product profile before the first preset is loaded.
#pragma once

class DspUnitInputVoltageMappingConfig {
public:
    // Volts at the jack for a sample of 1.0.
    static void set(float inputVoltageMapping);

    // The value of set. Before it, an error line and 0.
    static float get();

    // Two further calibrations of sibling products, 0 in this one.
    static float getPreGain();
    static float getPostGain();
};
