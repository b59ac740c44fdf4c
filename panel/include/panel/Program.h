// The program: its command line, and what each verb of it does. --help says it all.
#pragma once

#include <ostream>

namespace tvk::panel {

// out takes the results, err the line that says why nothing came of it. Returns the status: 0 done, 1 the
// check has found something, 2 bad use, 3 trouble with the line. stopDescriptor: ends what waits, as if its
// time were over, once it is readable; -1 for none.
int runProgram(int argc, const char* const* argv, std::ostream& out, std::ostream& err,
               int stopDescriptor = -1);

}  // namespace tvk::panel
