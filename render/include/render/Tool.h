// The program tarvek-render: guitar file in, amplifier file out.
#pragma once

#include <iosfwd>

namespace tvk::render {

// Runs one command line. Status 0, or 2 with one line on err when the command asks for what cannot be done;
// nothing is written then. What the run itself warns of goes to out and to the report.
int runTool(int argc, const char* const* argv, std::ostream& out, std::ostream& err);

}  // namespace tvk::render
