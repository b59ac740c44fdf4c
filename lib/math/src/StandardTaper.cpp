#include "math/StandardTaper.h"

#include "math/Tapers.h"
#include "utility/Log.h"

namespace {

enum class Law { Exponential, Logarithmic };

// Four names share a base: a law, its S-curve, and the two of the inverse law.
struct Row {
    Law law;
    double base;
    const char* plain;
    const char* sCurve;
    const char* inverse;
    const char* inverseSCurve;
};

constexpr Row kRows[] = {
    {Law::Exponential, 361.0, "t5", "t5s", "t5i", "t5si"},
    {Law::Logarithmic, 1048499.0, "t5r", "t5rs", "t5ri", "t5rsi"},
    {Law::Exponential, 81.0, "t10", "t10s", "t10i", "t10si"},
    {Law::Logarithmic, 1013.99, "t10r", "t10rs", "t10ri", "t10rsi"},
    {Law::Exponential, 32.111, "t15", "t15s", "t15i", "t15si"},
    {Law::Logarithmic, 94.725, "t15r", "t15rs", "t15ri", "t15rsi"},
    {Law::Exponential, 16.0, "t20", "t20s", "t20i", "t20si"},
    {Law::Logarithmic, 26.61, "t20r", "t20rs", "t20ri", "t20rsi"},
    {Law::Exponential, 9.0, "t25", "t25s", "t25i", "t25si"},
    {Law::Logarithmic, 11.4445, "t25r", "t25rs", "t25ri", "t25rsi"},
    {Law::Exponential, 5.44445, "t30", "t30s", "t30i", "t30si"},
    {Law::Logarithmic, 6.05615, "t30r", "t30rs", "t30ri", "t30rsi"},
    {Law::Exponential, 3.44899, "t35", "t35s", "t35i", "t35si"},
    {Law::Logarithmic, 3.5918, "t35r", "t35rs", "t35ri", "t35rsi"},
    {Law::Exponential, 2.25, "t40", "t40s", "t40i", "t40si"},
    {Law::Logarithmic, 2.27541, "t40r", "t40rs", "t40ri", "t40rsi"},
    {Law::Exponential, 1.49383, "t45", "t45s", "t45i", "t45si"},
    {Law::Logarithmic, 1.49585, "t45r", "t45rs", "t45ri", "t45rsi"},
};

std::unique_ptr<ITaper> makePlain(Law law, double base) {
    if (law == Law::Exponential) return std::make_unique<TaperExponential>(base);
    return std::make_unique<TaperLogarithmic>(base);
}

std::unique_ptr<ITaper> makeSCurve(Law law, double base) {
    if (law == Law::Exponential) return std::make_unique<TaperSCurve<TaperExponential>>(base);
    return std::make_unique<TaperSCurve<TaperLogarithmic>>(base);
}

std::unique_ptr<ITaper> makeTaper(const std::string& name) {
    if (name == "t50") return std::make_unique<TaperLinear>();
    for (const Row& row : kRows) {
        const Law inverse = row.law == Law::Exponential ? Law::Logarithmic : Law::Exponential;
        if (name == row.plain) return makePlain(row.law, row.base);
        if (name == row.sCurve) return makeSCurve(row.law, row.base);
        if (name == row.inverse) return makePlain(inverse, row.base);
        if (name == row.inverseSCurve) return makeSCurve(inverse, row.base);
    }
    TVK_ERROR("unrecognized taper type = %s", name.c_str());
    return std::make_unique<TaperLinear>();
}

}  // namespace

StandardTaper::StandardTaper(const std::string& name) : taper_(makeTaper(name)) {}
