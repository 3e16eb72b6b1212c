// How often the program, with all libraries that it loads, has asked the heap for memory.
#pragma once

/// Allocations so far, by whatever function of the C library; operator new rests on them.
unsigned long long AllocationCount();
