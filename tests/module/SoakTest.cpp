// A long run: what nodes and events take of the heap they give back.
#include <array>
#include <random>

#include "HeapUse.h"
#include "ModuleHost.h"
#include "TestMachine.h"

namespace {

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
        m_handle.m_clip.m_lstObject.AddTail(new VEKObject(L"Hand"));
    }

    /// Take steps until there were so many events and evaluations together, counted from the beginning.
    void RunUntil(long long nCalls) {
        for (int i = 1; m_nEvents + m_nEvaluations < nCalls; ++i) {
            Step();
            if (i % STEPS_BETWEEN_PUMPING == 0) {
                m_host.Pump();
            }
        }
    }

    long long EventsHandedOver() const { return m_nEvents; }
    long long Evaluations() const { return m_nEvaluations; }

    /// Heap in use with the nodes in one and the same state.
    size_t RestingHeap() {
        m_keyboardState.ReleaseAll();
        m_application.ShowMainWindow(true);
        m_application.EnableMainWindow(true);
        for (NodeScene* pScene : m_scenes) {
            pScene->Input(2).m_nValue = 1;
            pScene->Evaluate();
        }
        // No key text, no stroke, no object name, no edited text.
        m_keyboard.Send(0, 2002);
        m_keyboard.Evaluate();
        for (int nPointer = -1; nPointer <= MOST_POINTER; ++nPointer) {
            SQORMouseData sample(nPointer, 0, 0, CPoint(0, 0), 0);
            m_gesture.Send(1, 3006, &sample);
        }
        m_handle.Input(802).m_strValue.Empty();
        m_handle.Evaluate();
        m_inputText.m_strValue.Empty();
        m_textClear.m_nValue = 1;
        m_textField.Evaluate();
        m_textClear.m_nValue = 0;
        m_host.Call(1, nullptr, nullptr);
        m_host.Pump();
        return HeapBytesInUse();
    }

private:
    static constexpr int MOST_POINTER = 2;

    int Evaluate(NodeScene& scene) {
        ++m_nEvaluations;
        return scene.Evaluate();
    }

    int Send(NodeScene& scene, int nDevice, int nEvent, void* pPayload) {
        ++m_nEvents;
        return scene.Send(nDevice, nEvent, pPayload);
    }

    int Random(int nLeast, int nMost) { return std::uniform_int_distribution(nLeast, nMost)(m_random); }
    bool OneIn(int nChances) { return Random(1, nChances) == 1; }
    float RandomFloat(float fMost) { return static_cast<float>(Random(-1000, 1000)) / 1000.0f * fMost; }

    void Step() {
        NodeScene& scene = *m_scenes[static_cast<size_t>(Random(0, static_cast<int>(m_scenes.size()) - 1))];
        switch (Random(0, 15)) {
        case 0:
            scene.Input(2).m_nValue = !OneIn(4);
            break;
        case 1:
            ++m_nEvents;
            scene.m_pNode->DevIOEventOccurred(nullptr);
            break;
        case 2:
            ++m_nEvaluations;
            scene.m_pNode->ProcessNode(OneIn(4) ? nullptr : &scene.m_graphNode);
            break;
        case 3:
            scene.m_pNode->InitParam();
            scene.m_pNode->GetNodeOutput(&scene.m_graphNode);
            scene.m_pNode->GetNodeParamInfoGrpAr();
            break;
        case 4:
        case 5:
        case 6:
        case 7:
            Evaluate(scene);
            break;
        case 8:
            if (OneIn(100)) {
                const unsigned char TYPES[] = {TYPE_KEYBOARD, TYPE_KEY_CHECK, TYPE_TEXT_FIELD,
                                               TYPE_MOUSE,    TYPE_GESTURE,   TYPE_VR_HANDLE};
                m_host.CreateNode(TYPES[Random(0, 5)]);
            }
            break;
        case 9:
            SendKey(scene);
            break;
        case 10:
            ChangeMachine();
            break;
        case 11:
            TypeKey();
            break;
        case 12:
            SendController();
            break;
        default:
            SendPointer(scene);
            break;
        }
    }

    void SendKey(NodeScene& scene) {
        SKeyEventData key;
        key.m_strText = CString(L'x', Random(0, 40));
        const bool bKeyboard = &scene == &m_keyboard;
        Send(scene, 0, Random(2001, 2004), bKeyboard && !OneIn(8) ? &key : nullptr);
    }

    void SendPointer(NodeScene& scene) {
        SQORMouseData sample(OneIn(4) ? Random(-1, MOST_POINTER) : 0, RandomFloat(1000), RandomFloat(1000),
                             CPoint(Random(-10, 2000), Random(-10, 2000)), Random(0, 1));
        const bool bPointer = &scene == &m_mouse || &scene == &m_gesture;
        // Presses and releases come up more often than other events.
        const int nEvent = OneIn(2) ? Random(3000, 3014) : Random(3005, 3006);
        Send(scene, OneIn(8) ? 0 : 1, nEvent, bPointer && !OneIn(8) ? &sample : nullptr);
    }

    /// Keyboard, main window and the key that is checked.
    void ChangeMachine() {
        m_keyboardState.ReleaseAll();
        if (OneIn(2)) {
            m_keyboardState.Hold(65);
        }
        m_application.EnableMainWindow(!OneIn(8));
        m_application.ShowMainWindow(!OneIn(8));
        m_keyCheck.Input(1102).m_nValue = OneIn(8) ? 0 : 65;
        m_keyCheck.Input(1103).m_nValue = Random(0, 2);
        Evaluate(m_keyCheck);
    }

    void TypeKey() {
        const wchar_t* const NAMES[] = {L"a", L"Shift+1", L"Num 7", L"Space", L"Backspace", L"Backspace", L"中文字"};
        m_inputText.m_strValue = NAMES[Random(0, 6)];
        m_inputEvent.m_nValue = Random(0, 1);
        m_textClear.m_nValue = OneIn(20);
        Evaluate(m_textField);
        m_inputEvent.m_nValue = 0;
        m_textClear.m_nValue = 0;
    }

    void SendController() {
        SVRPluginData sample;
        sample.m_nHand = Random(0, 1);
        sample.m_bTriggerPressed = Random(0, 1);
        sample.m_bTouchPadPressed = Random(0, 1);
        sample.m_fTouchPadX = RandomFloat(1);
        sample.m_fTouchPadY = RandomFloat(1);
        sample.m_nPressTime = static_cast<unsigned>(Random(0, 1000));
        sample.m_nReleaseTime = static_cast<unsigned>(Random(0, 1000));
        m_handle.Input(802).m_strValue = OneIn(2) ? L"Hand" : L"Nobody";
        m_handle.Input(803).m_nValue = OneIn(20);
        Send(m_handle, 3, 0, OneIn(8) ? nullptr : &sample);
    }

    long long m_nEvents = 0;
    long long m_nEvaluations = 0;
    std::mt19937 m_random{20240229};
    TestApplication m_application;
    TestKeyboard m_keyboardState;
    NodeScene m_keyboard{m_host, TYPE_KEYBOARD};
    NodeScene m_keyCheck{m_host, TYPE_KEY_CHECK};
    NodeScene m_textField{m_host, TYPE_TEXT_FIELD};
    NodeScene m_mouse{m_host, TYPE_MOUSE};
    NodeScene m_gesture{m_host, TYPE_GESTURE};
    NodeScene m_handle{m_host, TYPE_VR_HANDLE};
    const std::array<NodeScene*, 6> m_scenes = {&m_keyboard, &m_keyCheck, &m_textField,
                                                &m_mouse,    &m_gesture,  &m_handle};
    VEKParam& m_inputText = m_textField.AddGraphInput(202, 1, 6);
    VEKParam& m_inputEvent = m_textField.AddGraphInput(203, 26, 7);
    VEKParam& m_textClear = m_textField.AddGraphInput(204, 26, 7);
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
    EXPECT_GT(EventsHandedOver(), CALLS / 4);
    EXPECT_GT(Evaluations(), CALLS / 4);
    EXPECT_GT(m_host.EventCount() - nFiredBefore, CALLS / 20) << "the run has to fire";
    EXPECT_GT(m_host.LogCount(), m_host.EventCount());
}

} // namespace
