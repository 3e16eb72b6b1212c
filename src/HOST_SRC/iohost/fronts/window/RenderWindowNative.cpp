#include "fronts/window/RenderWindow.h"

#include <iostream>

int RunRenderWindow(CSession& /*session*/, const SWindowOptions& /*options*/) {
    std::cerr << "iohost: --window: only the Windows build has windows; --listen serves a page to the same end\n";
    return 1;
}
