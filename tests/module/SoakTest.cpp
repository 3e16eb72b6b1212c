// A long run: what nodes and events take of the heap they give back.
#include <random>

#include "HeapUse.h"
#include "ModuleHost.h"

namespace {

/// Everything that the nodes at work can be given, in random order from a fixed seed.
class Soak : public ModuleTest {
protected:
    static constexpr int STEPS_BETWEEN_PUMPING = 100;

    Soak() {
        m_host.KeepNothing();
        // The message queue keeps the room that it once needed; here it gets more than the run will need.
        for (int i = 0; i < 10 * STEPS_BETWEEN_PUMPING; ++i) {
            PostMessageW(m_host.Window(), WM_NULL, 0, 0);
        }
        m_host.TakeOtherMessages();
    }

    void Run(int nSteps) {
        for (int i = 1; i <= nSteps; ++i) {
            Step();
            if (i % STEPS_BETWEEN_PUMPING == 0) {
                m_host.Pump();
            }
        }
    }

    /// Heap in use with the nodes in one and the same state.
    size_t RestingHeap() {
        for (NodeScene* pScene : {&m_keyboard, &m_mouse}) {
            pScene->Input(2).m_nValue = 1;
            pScene->Evaluate();
        }
        m_keyboard.Send(0, 2002);
        m_keyboard.Evaluate();
        m_host.Call(1, nullptr, nullptr);
        m_host.Pump();
        return HeapBytesInUse();
    }

private:
    int Random(int nLeast, int nMost) { return std::uniform_int_distribution(nLeast, nMost)(m_random); }

    void Step() {
        NodeScene& scene = Random(0, 1) != 0 ? m_mouse : m_keyboard;
        switch (Random(0, 15)) {
        case 0:
            scene.Input(2).m_nValue = Random(0, 3) != 0;
            break;
        case 1:
            scene.m_pNode->DevIOEventOccurred(nullptr);
            break;
        case 2:
            scene.m_pNode->ProcessNode(Random(0, 3) != 0 ? &scene.m_graphNode : nullptr);
            break;
        case 3:
            scene.m_pNode->GetNodeOutput(&scene.m_graphNode);
            scene.m_pNode->GetNodeParamInfoGrpAr();
            break;
        case 4:
        case 5:
        case 6:
            scene.Evaluate();
            break;
        case 7:
            if (Random(0, 99) == 0) {
                m_host.CreateNode(Random(0, 1) != 0 ? TYPE_MOUSE : TYPE_KEYBOARD);
            }
            break;
        case 8:
        case 9:
        case 10: {
            SKeyEventData key;
            key.m_strText = CString(L'x', Random(0, 40));
            scene.Send(0, Random(2001, 2004), Random(0, 7) != 0 ? &key : nullptr);
            break;
        }
        default: {
            SQORMouseData sample(0, static_cast<float>(Random(0, 1000)), static_cast<float>(Random(0, 1000)),
                                 CPoint(Random(-10, 2000), Random(-10, 2000)), Random(0, 1));
            scene.Send(Random(0, 7) != 0, Random(3000, 3014), Random(0, 7) != 0 ? &sample : nullptr);
            break;
        }
        }
    }

    std::mt19937 m_random{20240229};
    NodeScene m_keyboard{m_host, TYPE_KEYBOARD};
    NodeScene m_mouse{m_host, TYPE_MOUSE};
};

TEST_F(Soak, MillionEventsAndEvaluationsLeaveTheHeapAsItWas) {
    Run(1'000);
    const size_t nBefore = RestingHeap();
    const long long nEventsBefore = m_host.EventCount();
    Run(999'000);
    EXPECT_EQ(RestingHeap(), nBefore);
    EXPECT_GT(m_host.EventCount() - nEventsBefore, 100'000) << "the run has to fire";
    EXPECT_GT(m_host.LogCount(), m_host.EventCount());
}

} // namespace
