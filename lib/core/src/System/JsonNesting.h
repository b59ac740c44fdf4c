// The bound on a document's nesting: copies and output recurse, and threads have small stacks.
#pragma once

#include <string>

constexpr int kMaxJsonNesting = 64;

// Throws the JSON library's parse_error if arrays and objects lie in each other deeper than kMaxJsonNesting.
// The text need not be valid JSON; then the parser that comes next finds its own fault.
void requireNestingWithinLimit(const std::string& text);
