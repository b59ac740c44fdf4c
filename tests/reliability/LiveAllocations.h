// How many pieces of memory the process holds, and how many bytes they are: counted by definitions of malloc
// and its kin that the linker takes in place of the C library's.
#pragma once

#include <cstddef>

struct LiveAllocations {
    long pieces;
    long bytes;

    static LiveAllocations now();
};
