#include "nodes/input/KeyCheckNode.h"

#include "host/NodeTypeGuid.h"
#include "nodes/shared/NodeSupport.h"
#include "nodes/shared/SharedRows.h"

namespace {

enum { INPUT_KEY_VALUE = 1102, INPUT_INTERVAL = 1103 };
enum { OUTPUT_KEY_DOWN = 1152, OUTPUT_HOLD_DOWN = 1153, OUTPUT_KEY_UP = 1154 };

// "KeyValue": the virtual-key code in the low 8 bits, the required modifiers above it. 0: no key.
constexpr int KEY_CODE_MASK = 0xFF;

struct ModifierRow {
    int nBit;        ///< of "KeyValue": this modifier is required
    int nVirtualKey; ///< whose state is read
};

constexpr ModifierRow MODIFIERS[] = {{0x100, VK_SHIFT}, {0x200, VK_CONTROL}, {0x400, VK_MENU}};

constexpr ParamRow INPUTS[] = {
    ENABLE_ROW,
    {INPUT_KEY_VALUE, L"KeyValue", L"IO_PROCESS_KEYBOARD_KEYTEXT", PARAM_KEY_CODE, ParamRange{0, 0, 256, 1}, FLAGS_NONE,
     0},
    // Milliseconds. The range is given 100, but the value that the node reads starts at 200.
    IntegerRow(INPUT_INTERVAL, L"Interval", L"IO_PROCESS_INTERVAL_MS", {100, 40, 10000, 1}, 200),
};

constexpr ParamRow OUTPUTS[] = {
    EventRow(OUTPUT_KEY_DOWN, L"KeyDown", L"IO_PROCESS_KEYBOARD_KEYDOWN"),
    EventRow(OUTPUT_HOLD_DOWN, L"HoldDown", L"IO_PROCESS_KEYBOARD_HOLD_DOWN"),
    EventRow(OUTPUT_KEY_UP, L"KeyUp", L"IO_PROCESS_KEYBOARD_KEYUP"),
};

constexpr GroupRow OUTPUT_GROUPS[] = {{1151, L"Output", L"IO_PROCESS_KEY_CHECK", OUTPUTS}};

bool IsKeyDown(int nVirtualKey) {
    return GetKeyState(nVirtualKey) < 0;
}

/// Whether the host has a main window that takes input.
bool HostTakesInput() {
    CWinApp* pApp = AfxGetApp();
    CWnd* pMainWindow = pApp != nullptr ? pApp->GetMainWnd() : nullptr;
    return pMainWindow != nullptr && pMainWindow->IsWindowEnabled();
}

} // namespace

const NodeType CKeyCheckProcess::TYPE{
    GUID_IOPROCESS_KEY_CHECK, {1101, L"Base param", L"IO_PROCESS_KEY_CHECK", INPUTS}, OUTPUT_GROUPS};

int CKeyCheckProcess::ProcessNode(SGraphNode* pGraphNode) try {
    m_pGraphNode = pGraphNode;
    if (pGraphNode == nullptr || !HostTakesInput()) {
        return 0;
    }
    const auto [pKeyValue, pInterval] = FindInputs(*this, *pGraphNode, INPUT_KEY_VALUE, INPUT_INTERVAL);
    if (pKeyValue == nullptr || pInterval == nullptr || IntegerOf(*pKeyValue) == 0 ||
        !ReadEnable(*this, *pGraphNode, m_bEnable)) {
        return 0;
    }
    for (const ModifierRow& modifier : MODIFIERS) {
        if ((IntegerOf(*pKeyValue) & modifier.nBit) != 0 && !IsKeyDown(modifier.nVirtualKey)) {
            if (m_bKeyDown) {
                m_bKeyDown = false;
                FireGeneralEvent(this, OUTPUT_KEY_UP);
            }
            return 0;
        }
    }
    const bool bDown = IsKeyDown(IntegerOf(*pKeyValue) & KEY_CODE_MASK);
    if (bDown != m_bKeyDown) {
        FireGeneralEvent(this, bDown ? OUTPUT_KEY_DOWN : OUTPUT_KEY_UP);
    } else if (bDown) {
        // The press doesn't restart the interval: it runs from the last "HoldDown", in wrapping 32-bit ticks.
        const DWORD nTick = GetTickCount();
        if (nTick >= m_nLastHoldTick + static_cast<DWORD>(IntegerOf(*pInterval))) {
            m_nLastHoldTick = nTick;
            FireGeneralEvent(this, OUTPUT_HOLD_DOWN);
        }
    }
    m_bKeyDown = bDown;
    return 1;
} catch (...) {
    return EndException();
}

int CKeyCheckProcess::DevIOEventOccurred(EventRecordPtr /*pRecord*/) {
    return 0; // keys are polled
}
