#pragma once

#include "vek/Api.h"

enum EVEKIODevice { eIOKeyboard, eIOPointer };

struct VEKIOEvent {
    EVEKIODevice Device;
    DWORD EventID;
    LPVOID Data;
};
