// The yardstick of all ratios: a forward and an inverse real transform of 8192 points, out of place.
#pragma once

#include <memory>

namespace bench {

class Reference {
public:
    Reference();
    ~Reference();
    // One forward and one inverse transform.
    void run();
    // The library and how it planned.
    static const char* name();

private:
    struct Plans;
    std::unique_ptr<Plans> plans_;
};

}  // namespace bench
