// A library without IOProcessFunc.

#include <windows.h>

extern "C" __declspec(dllexport) int SomethingElse() {
    return 1;
}
