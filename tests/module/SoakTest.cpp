// A long run: what nodes and events take of the heap they give back.
#include <memory>
#include <random>

#include "HeapUse.h"
#include "ModuleHost.h"
#include "TestMachine.h"

namespace {

const unsigned char TYPES[] = {TYPE_KEYBOARD, TYPE_KEY_CHECK, TYPE_TEXT_FIELD,
                               TYPE_MOUSE,    TYPE_GESTURE,   TYPE_VR_HANDLE};
const wchar_t* const TEXTS[] = {L"",          L"a",      L"Shift+1", L"Num 7",
                                L"Backspace", L"中文字", L"Hand",    L"a text of some length"};

/// Everything that the input nodes can be given, in random order from a fixed seed.
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
        for (const unsigned char nTypeByte : TYPES) {
            m_scenes.push_back(std::make_unique<NodeScene>(m_host, nTypeByte));
            NodeScene& scene = *m_scenes.back();
            scene.m_clip.m_lstObject.AddTail(new VEKObject(L"Hand"));
            if (nTypeByte == TYPE_TEXT_FIELD) {
                scene.AddGraphInput(203, 26, 7);
                scene.AddGraphInput(204, 26, 7);
            }
            scene.m_pNode->StoreParameters();
        }
    }

    /// Take steps until there were so many events and evaluations together, counted from the beginning.
    void RunUntil(long long nCalls) {
        for (int i = 1; m_nEvents + m_nEvaluations < nCalls; ++i) {
            Step(*m_scenes[static_cast<size_t>(Random(0, std::size(TYPES) - 1))]);
            if (i % STEPS_BETWEEN_PUMPING == 0) {
                m_host.Pump();
            }
        }
    }

    /// Heap in use with the nodes in one and the same state: no text, no stroke, no object's name.
    size_t RestingHeap() {
        m_keyboard.ReleaseAll();
        m_application.ShowMainWindow(true);
        m_application.EnableMainWindow(true);
        for (const auto& pScene : m_scenes) {
            pScene->m_pNode->RestoreParameters();
            SetGraphInputs(*pScene, 1); // which clears the text
            pScene->Evaluate();
            SetGraphInputs(*pScene, 0);
            pScene->Send(0, 2002);
            for (int nPointer = -1; nPointer <= MOST_POINTER; ++nPointer) {
                SQORMouseData sample(nPointer, 0, 0, CPoint(0, 0), 0);
                pScene->Send(1, 3006, &sample);
            }
            pScene->Evaluate();
        }
        m_host.Call(1, nullptr, nullptr);
        m_host.Pump();
        return HeapBytesInUse();
    }

    long long m_nEvents = 0;
    long long m_nEvaluations = 0;

private:
    static constexpr int MOST_POINTER = 2;

    int Random(int nLeast, int nMost) { return std::uniform_int_distribution(nLeast, nMost)(m_random); }
    bool OneIn(int nChances) { return Random(1, nChances) == 1; }
    float RandomFloat(float fMost) { return static_cast<float>(Random(-1000, 1000)) / 1000.0f * fMost; }

    static void SetGraphInputs(NodeScene& scene, int nValue) {
        for (const VEKParamGroup* pGroup : Items(scene.m_graphNode.m_lstInputGroup)) {
            for (VEKParam* pParam : Items(pGroup->m_lstParam)) {
                pParam->m_nValue = nValue;
            }
        }
    }

    void Step(NodeScene& scene) {
        switch (Random(0, 9)) {
        case 0:
            ChangeInputs(scene);
            break;
        case 1:
            scene.m_pNode->InitParam();
            scene.m_pNode->GetNodeOutput(&scene.m_graphNode);
            scene.m_pNode->GetNodeParamInfoGrpAr();
            if (OneIn(100)) {
                m_host.CreateNode(TYPES[Random(0, std::size(TYPES) - 1)]);
            }
            break;
        case 2:
        case 3:
        case 4:
            ++m_nEvaluations;
            scene.m_pNode->ProcessNode(OneIn(20) ? nullptr : &scene.m_graphNode);
            break;
        default:
            ++m_nEvents;
            SendEvent(scene);
            break;
        }
    }

    /// What the node reads: its parameters, keyboard, main window.
    void ChangeInputs(NodeScene& scene) {
        for (VEKParam* pParam : Items(scene.m_pNode->m_lstParamGroup.GetHead()->m_lstParam)) {
            if (pParam->m_guid.Data1 == 2) {
                pParam->m_nValue = !OneIn(8);
            } else {
                pParam->m_nValue = OneIn(8) ? Random(0, 1) : 65;
                pParam->m_strValue = TEXTS[Random(0, std::size(TEXTS) - 1)];
            }
        }
        SetGraphInputs(scene, Random(0, 1));
        m_keyboard.ReleaseAll();
        if (OneIn(2)) {
            m_keyboard.Hold(65);
        }
        m_application.EnableMainWindow(!OneIn(8));
        m_application.ShowMainWindow(!OneIn(8));
    }

    /// Each device's events with its payload, whichever node they come to.
    void SendEvent(NodeScene& scene) {
        SKeyEventData key;
        key.m_strText = CString(L'x', Random(0, 40));
        SQORMouseData pointer(OneIn(4) ? Random(-1, MOST_POINTER) : 0, RandomFloat(1000), RandomFloat(1000),
                              CPoint(Random(-10, 2000), Random(-10, 2000)), Random(0, 1));
        SVRPluginData controller;
        controller.m_nHand = OneIn(4) ? 0 : 65;
        controller.m_bTriggerPressed = Random(0, 1);
        controller.m_bTouchPadPressed = Random(0, 1);
        controller.m_fTouchPadX = RandomFloat(1);
        controller.m_nReleaseTime = static_cast<unsigned>(Random(0, 1000));
        const bool bPayload = !OneIn(8);
        switch (Random(0, 7)) {
        case 0:
            scene.m_pNode->DevIOEventOccurred(nullptr);
            break;
        case 1:
        case 2:
            scene.Send(0, Random(2001, 2004), bPayload ? &key : nullptr);
            break;
        case 3:
        case 4:
            scene.Send(3, 0, bPayload ? &controller : nullptr);
            break;
        default: // presses and releases come up more often than other events
            scene.Send(1, OneIn(2) ? Random(3000, 3014) : Random(3005, 3006), bPayload ? &pointer : nullptr);
            break;
        }
    }

    std::mt19937 m_random{20240229};
    TestApplication m_application;
    TestKeyboard m_keyboard;
    std::vector<std::unique_ptr<NodeScene>> m_scenes;
};

// A call that looks at keys or windows asks the window server; under Wine that's a process of its own, and the question
// takes far longer than the call.
#ifdef WIN32
constexpr long long CALLS = 20'000;
#else
constexpr long long CALLS = 1'000'000;
#endif

TEST_F(Soak, EventsAndEvaluationsLeaveTheHeapAsItWas) {
    constexpr long long FIRST_CALLS = 1'000;
    RunUntil(FIRST_CALLS);
    const size_t nBefore = RestingHeap();
    const long long nFiredBefore = m_host.EventCount();
    RunUntil(FIRST_CALLS + CALLS);
    EXPECT_EQ(RestingHeap(), nBefore);
    EXPECT_GT(m_nEvents, CALLS / 4);
    EXPECT_GT(m_nEvaluations, CALLS / 4);
    EXPECT_GT(m_host.EventCount() - nFiredBefore, CALLS / 20) << "the run has to fire";
    EXPECT_GT(m_host.LogCount(), m_host.EventCount());
}

} // namespace
