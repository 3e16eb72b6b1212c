// How often the program, with all libraries that it loads, has called what should be called seldom.
#pragma once

struct SCallCounts {
    unsigned long long nAllocations; ///< by whatever function of the C library; operator new rests on them
    unsigned long long nLookUps;     ///< of parameters, keys, the application, display texts, objects, devices
};

/// So far.
SCallCounts CallCounts();
