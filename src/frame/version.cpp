#include "orvo.h"

// The one constant record of the library, valid from load time on.
static const orvoLibraryVersion kLibraryVersion = {
    7,                   // major
    0,                   // minor
    205,                 // majorBuild
    989,                 // build
    {'q', '7', 0, 0},    // targetCode: x86-64 with AVX
    "orvoq7-7.0.dll",    // name
    "7.0 build 205.58",  // version
    "Apr 18 2011",       // buildDate
};

extern "C" const orvoLibraryVersion* orvoGetLibVersion(void) { return &kLibraryVersion; }
