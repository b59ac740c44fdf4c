// The amplifier: no command line, everything that differs from a desk stands in the product's record.
#include "proj/runner/Runner.h"

int main() {
    return tvk::applicationMain(tvk::productPlatform());
}
