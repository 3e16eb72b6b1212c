// Undo, redo and batch; places, names and notes.
#include "HostTest.h"

#include <algorithm>
#include <map>
#include <random>
#include <set>

namespace {

class History : public CHostTest {
protected:
    /// All that a file of the scene would hold. The steps left the same.
    std::string Scene() {
        const auto file = m_folder.Path() / "compared.json";
        const std::string strLeft = SceneText(m_pSession->SceneLeft());
        Must("save file=" + Quote(file));
        EXPECT_EQ(ReadAll(file), strLeft);
        return strLeft;
    }

    OrderedJson Steps() {
        OrderedJson names = OrderedJson::array();
        const OrderedJson history = Must("history");
        for (const OrderedJson& step : history["steps"]) {
            names.push_back(step["name"]);
        }
        return names;
    }
};

TEST_F(History, EveryChangeIsAStepThatCanBeUndoneAndRedone) {
    const struct {
        const char* pszRequest;
        const char* pszName; ///< of the step
    } changes[] = {
        {R"(create node=k type=keyboard clip=Intro graph="Keyboard 1")", "Add Keyboard 1"},
        {R"(create node=s type=string_send clip=Intro graph="Send 1")", "Add Send 1"},
        {R"(create node=m type=mouse clip=Outro graph="")", "Add m"},
        {R"(edit node=s param=1505 string="a text")", "Change Send 1"},
        {R"(set node=s param=1505 string="own" own=true)", "Change Send 1"},
        {R"(link from=k output=154 to=s input=1505)", "Link Keyboard 1 to Send 1"},
        {R"(link from=k output=152 to=s input=1507)", "Link Keyboard 1 to Send 1"},
        {R"(unlink from=k output=154 to=s input=1505)", "Unlink Keyboard 1 from Send 1"},
        {R"(link from=k output=154 to=s input=1505)", "Link Keyboard 1 to Send 1"},
        {R"(drop node=s param=1507 from=["own","inputs"])", "Change Send 1"},
        {R"(rename node=k graph="Keys")", "Rename Keyboard 1 to Keys"},
        {R"(place nodes={"k":{"x":1.5,"y":-2},"s":{"x":300,"y":0,"folded":true}})", "Move 2 nodes"},
        {R"(place notes={"n":{"x":0,"y":0,"width":100,"height":50,"text":"a note"},"o":{"x":0,"y":9,"width":1,"height":5,"text":""}})",
         "Change notes"},
        {R"(place notes={"n":null})", "Change notes"},
        {R"(object clip=Stage name=Box matrix=[1,0,0,0,0,1,0,0,0,0,1,0,5,6,7,1])", "Add object Box"},
        {R"(object clip=Stage name=Ball)", "Add object Ball"},
        {R"(change_object clip=Stage name=Box to=Cube matrix=[1,0,0,0,0,1,0,0,0,0,1,0,8,9,7,1])", "Change object Box"},
        {R"(remove_object clip=Stage name=Cube)", "Remove object Cube"},
        {R"(devices list=[{"id":3,"name":"Wall","parser":"direct"}])", "Change devices"},
        {R"(destroy node=k)", "Delete Keys"},
        {R"(create node=k type=mouse clip=null graph="Mouse 2" event_window=false)", "Add Mouse 2"},
        {R"(batch name="Two at once" requests=[{"op":"destroy","node":"m"},{"op":"rename","node":"s","graph":"Sender"}])",
         "Two at once"},
        {R"(load scene={"format":"iohost scene","version":1,"nodes":[]})", "Open a scene"},
    };
    std::vector<std::string> scenes = {Scene()};
    for (const auto& [pszRequest, pszName] : changes) {
        Must(pszRequest);
        scenes.push_back(Scene());
        EXPECT_NE(scenes.back(), *(scenes.end() - 2)) << pszRequest;
        EXPECT_EQ(Steps().back(), pszName);
    }
    for (int nTimes = 0; nTimes < 2; ++nTimes) {
        for (size_t i = std::size(changes); i > 0; --i) {
            EXPECT_EQ(Must("undo")["step"]["name"], changes[i - 1].pszName);
            EXPECT_EQ(Scene(), scenes[i - 1]) << "without " << changes[i - 1].pszRequest;
        }
        EXPECT_EQ(Refusal("undo"), "op: there is nothing to undo");
        for (size_t i = 0; i < std::size(changes); ++i) {
            EXPECT_EQ(Must("redo")["step"]["name"], changes[i].pszName);
            EXPECT_EQ(Scene(), scenes[i + 1]) << "with " << changes[i].pszRequest;
        }
        EXPECT_EQ(Refusal("redo"), "op: there is nothing to redo");
    }
}

TEST_F(History, AStepUndoesWhatItChangedAndNothingElse) {
    Must(R"(create node=s type=string_send clip=Intro graph="Send 1")");
    Must("edit node=s param=1505 string=first");
    Must("edit node=s param=1506 choice=1");
    // What a node or a script does to other parameters meanwhile stays.
    m_pSession->Scene().Find("s")->pGraphNode->m_lstInputGroup.GetHead()->m_strDisplay = L"renamed meanwhile";
    Must("undo");
    Talk(R"(inspect node=s => {"inputs":{"1505":{"string":"first"},"1506":{"int":0}}})");
    EXPECT_EQ(Must("inspect node=s")["inputs"][0]["display"], "renamed meanwhile");
}

TEST_F(History, WhatChangesNothingIsNoStep) {
    Must(CREATE_MOUSE);
    Must("rename node=m graph=\"Mouse 1\"");
    Must("process frame=true");

    EXPECT_EQ(Steps(), OrderedJson({"Add Mouse 1"}));
}

TEST_F(History, WhatIsSetByRunningIsNoStepAndUndoingAStepLeavesIt) {
    Must("create node=s type=string_send clip=Clip graph=S");
    Must("set node=s param=1503 int=3");
    const OrderedJson history = Must("history");
    Must("set node=s param=1505 string=typed step=false");
    EXPECT_EQ(Must("history"), history);
    Must("undo");
    Talk(R"(inspect node=s => {"inputs":{"1503":{"int":0},"1505":{"string":"typed"}}})");
}

/// What the nodes of one scene came to isn't handed on to those of the other that have their names.
TEST_F(History, UndoingAndRedoingALoadMakesItsNodesAnew) {
    const std::string strNode =
        R"("node":"t","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B02}","clip":"Clip","graph":"T")";
    Must(R"({"op":"create",)" + strNode + "}");
    Must("object clip=Clip name=Box");
    Must(
        R"({"op":"load","scene":{"format":"iohost scene","version":1,"clips":[{"name":"Clip","objects":[{"name":"Box"}]}],)"
        R"("nodes":[{)" +
        strNode + "}]}}");
    const OrderedJson objects = Must("objects");
    const auto run = [this] {
        Talk(R"(
            set node=t param=202 string=a step=false
            trigger node=t param=203
            process
            inspect node=t => {"inputs":{"202":{"string":"a"}},"outputs":{"253":{"string":"a"}}}
        )");
        VEKClip& clip = *m_pSession->Scene().FindClip(CString(L"Clip"));
        clip.FindObject(L"Box", 0)->m_fMatrix[12] = 5;
        m_pSession->TakeChangedCounts();
    };
    for (const char* pszMove : {"undo", "redo", "undo"}) {
        run();
        Must(pszMove);
        Must("process");
        Talk(R"(inspect node=t => {"inputs":{"202":{"string":""}},"outputs":{"253":{"string":""}}})");
        EXPECT_EQ(Must("objects"), objects) << pszMove;
        EXPECT_EQ(m_pSession->TakeChangedCounts().nodes.size(), 1U) << "whoever shows it knows nothing of the new node";
    }
}

TEST_F(History, UndoingARenameLeavesAnObjectWhereItWasMovedTo) {
    Talk(R"(
        object clip=Clip name=Lamp
        object clip=Clip name=Box
        object clip=Clip name=Ball
        create node=v type=handle clip=Clip graph=Hand
        change_object clip=Clip name=Box to=Cube
        set node=v param=802 string=Cube step=false
        process
    )");
    Must(Event(3, 0, HandSample()));
    OrderedJson objects = Must("objects");
    EXPECT_EQ(objects["objects"][1]["matrix"][13], -20.25);
    Must("undo");
    objects["objects"][1]["name"] = "Box";
    EXPECT_EQ(Must("objects"), objects);
    Must("redo");
    objects["objects"][1]["name"] = "Cube";
    EXPECT_EQ(Must("objects"), objects);
    Must("change_object clip=Clip name=Cube to=Box matrix=[1,0,0,0,0,1,0,0,0,0,1,0,8,9,7,1]");
    Must("undo");
    EXPECT_EQ(Must("objects"), objects) << "where the step moved it";

    Must(R"({"op":"batch","requests":[{"op":"remove_object","clip":"Clip","name":"Lamp"},
        {"op":"change_object","clip":"Clip","name":"Cube","to":"Lamp"}]})");
    Must("undo");
    EXPECT_EQ(Must("objects"), objects) << "another's name";
}

TEST_F(History, FewerStepsAreKeptWhereTheyHoldLongTexts) {
    Must("create node=s type=string_send clip=Clip graph=S");
    const auto longText = [](wchar_t c) {
        return CString(c, static_cast<int>(CHistory::MOST_BYTES / sizeof(wchar_t) / 8));
    };
    for (const wchar_t c : std::wstring_view(L"abcde")) {
        m_pSession->Do(
            SSetCommand{"s", 1505, false, longText(c)}); // a step has the text before it and the one behind it
    }
    EXPECT_EQ(Steps(), OrderedJson({"Change S", "Change S", "Change S"}));
    for (const wchar_t c : std::wstring_view(L"fg")) {
        m_pSession->Do(SPlaceCommand{.notes = {{"1", SNote{.strText = longText(c)}}}});
    }
    EXPECT_EQ(Steps(), OrderedJson({"Change S", "Change S", "Change notes", "Change notes"}));
    const SNote note{.strText = longText(L'h')};
    SPlaceCommand eight;
    for (const char* pszNote : {"1", "2", "3", "4", "5", "6", "7", "8"}) {
        eight.notes.emplace_back(pszNote, note);
    }
    m_pSession->Do(eight);
    EXPECT_EQ(Steps(), OrderedJson({"Change notes"})) << "which alone is too long";
}

TEST_F(History, AStateIsGoneToOrRefusedWhateverOthersDidMeanwhile) {
    Must(CREATE_MOUSE);
    Must("rename node=m graph=a");
    Must("rename node=m graph=b");
    Must("rename node=m graph=c");
    const OrderedJson states = Must("history")["states"];
    ASSERT_EQ(states.size(), 5U);
    const auto undo = [&](size_t nState) { return "undo to=" + states[nState].dump(); };
    const auto redo = [&](size_t nState) { return "redo to=" + states[nState].dump(); };
    const auto name = [&] { return Must("scene")["nodes"][0]["graph"]; };
    EXPECT_EQ(Must(undo(2))["step"]["name"], "Rename a to b");
    EXPECT_EQ(name(), "a");
    EXPECT_EQ(Must(redo(4))["step"]["name"], "Rename b to c");
    EXPECT_EQ(name(), "c");
    EXPECT_EQ(Refusal(redo(3)), "op: there is nothing to redo");

    Must("undo");
    Must("rename node=m graph=other");
    EXPECT_EQ(Refusal(undo(4)), "to: the scene has no such state there");
    Must(undo(3));
    EXPECT_EQ(name(), "b");
    EXPECT_EQ(Refusal(redo(4)), "to: the scene has no such state there");
}

TEST_F(History, ABatchIsAllOrNothing) {
    Must(CREATE_MOUSE);
    Must(CREATE_KEYBOARD);
    Must("link from=k output=154 to=m input=2");
    const std::string strBefore = Scene();
    EXPECT_EQ(
        Refusal(
            R"(batch requests=[{"op":"destroy","node":"m"},{"op":"object","clip":"New","name":"Box"},)"
            R"({"op":"create","node":"n","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B03}","clip":"Third","graph":""},)"
            R"({"op":"rename","node":"m","graph":""}])"),
        "requests[3].node: there is no node \"m\"");
    EXPECT_EQ(Scene(), strBefore);
    EXPECT_EQ(Steps().size(), 3u);
    Talk(R"(
        batch requests=[5] => requests[0].request: must be an object
        batch requests=[{"op":"undo"}] => requests[0].op: can't be part of a batch
        batch requests=[{"op":"batch","requests":[]}] => requests[0].op: can't be part of a batch
        batch requests=[{"op":"load","file":"demo.json"}] => requests[0].op: can't be part of a batch
        batch requests=[{"op":"event"}] => requests[0].op: can't be part of a batch
        batch requests=[{"op":"rename","node":"m"}] => requests[0].graph: is missing
        batch requests=[{"op":"create","node":"n","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1BFF}","clip":null,"graph":""}] => requests[0].type: the module makes no such node
        batch requests=[]
        rename node=x graph="" => node: there is no node "x"
        place nodes={"m":{"x":1,"y":1},"x":{"x":1,"y":1}} => nodes: there is no node "x"
        place notes={"n":{"x":1,"y":2,"width":3,"height":4,"text":"b","length":9}} => notes.n.length: there is no note whose text could stay
        change_object clip=New name=Box => clip: there is no clip "New"
        remove_object clip=Intro name=Box => name: the clip has no object "Box"
        object clip=Intro name=Box
        object clip=Intro name=Ball
        change_object clip=Intro name=Box to=Ball => to: the clip has an object "Ball" already
    )");
}

TEST_F(History, WhatMovesTheSameInASeriesIsOneStep) {
    Must(CREATE_MOUSE);
    Must(CREATE_KEYBOARD);
    const auto place = [this](const char* pszNode, int nX, const char* pszSeries) {
        Must({{"op", "place"}, {"nodes", {{pszNode, {{"x", nX}, {"y", 0}}}}}, {"series", pszSeries}});
    };
    const auto told = [this] { return Steps().size(); };
    place("m", 1, "a");
    const std::string strBefore = Scene();
    place("m", 2, "b");
    Must("place nodes={\"m\":{\"x\":3,\"y\":0}}");
    EXPECT_EQ(told(), 5U) << "other series, and none";
    place("m", 4, "b");
    const OrderedJson before = Must("history");
    place("m", 5, "b");
    place("m", 6, "b");
    const OrderedJson history = Must("history");
    EXPECT_EQ(history["steps"].size(), 6U);
    EXPECT_NE(history["states"].back(), before["states"].back()) << "that state is gone";
    place("k", 6, "b");
    EXPECT_EQ(told(), 7U) << "another node";
    Must("undo");
    place("m", 7, "b");
    EXPECT_EQ(told(), 6U) << "what was undone is no step";
    const std::string strAfter = Scene();
    Must("undo");
    Talk(R"(scene => {"nodes":[{"node":"m","place":{"x":3}},{}]})");
    Must("redo");
    EXPECT_EQ(Scene(), strAfter);
    place("m", 8, "b");
    EXPECT_EQ(told(), 6U);
    EXPECT_EQ(Must("history")["unsaved"], true);
    place("m", 3, "b");
    EXPECT_EQ(told(), 5U) << "it led back";
}

TEST_F(History, StepsTellTheirParameterAndTimeAndWhichStateIsSaved) {
    const auto tBefore = TimeOfDayMs();
    Must("create node=s type=string_send clip=Intro graph=S");
    Must("edit node=s param=1505 string=text");
    Must("set node=s param=1505 string=text own=true");
    OrderedJson history = Must("history");
    EXPECT_FALSE(history.contains("saved")) << "there is no file";
    EXPECT_FALSE(history["steps"][0].contains("param"));
    const OrderedJson strParam = Must("inspect node=s")["inputs"][0]["params"][4]["display"];
    for (const int nStep : {1, 2}) {
        EXPECT_EQ(history["steps"][nStep]["param"], strParam);
        EXPECT_GE(history["steps"][nStep]["ms"], tBefore);
        EXPECT_LE(history["steps"][nStep]["ms"], TimeOfDayMs());
    }
    Scene(); // saves it
    Must("undo");
    history = Must("history");
    EXPECT_EQ(history["saved"], history["states"][3]);
    EXPECT_EQ(Must("undo")["step"], OrderedJson::parse(R"({"name":"Change S","op":"edit","of":"S"})"))
        << "as recordings have it";
    Must(R"(load scene={"format":"iohost scene","version":1,"nodes":[]} name=other.json unsaved=true)");
    EXPECT_FALSE(Must("history").contains("saved"));
}

/// Remembers what the last command changed of the scene.
class CLastChange final : private ISessionObserver {
public:
    explicit CLastChange(CSession& session) : m_session(session) { m_session.Attach(*this); }
    ~CLastChange() { m_session.Detach(*this); }

    SSceneChange m_change;

private:
    void OnDone(const SDone& done) override { m_change = done.change; }

    CSession& m_session;
};

TEST_F(History, WhatAStepChangesIsToldWithItAndWhenItIsUndone) {
    Must(CREATE_MOUSE);
    Must("create node=s type=string_send clip=Intro graph=S");
    const struct {
        const char* pszRequest;
        bool bList;
        std::set<std::string> nodes;
    } steps[] = {
        {"link from=m output=358 to=s input=1507", true, {}},
        {R"(place notes={"n":{"x":0,"y":0,"width":1,"height":5,"text":""}})", true, {}},
        {R"(place nodes={"m":{"x":1,"y":2}})", true, {}},
        {"rename node=m graph=Mouse", true, {}},
        {"edit node=s param=1505 string=text", false, {"s"}},
        {"destroy node=s", true, {"s"}},
    };
    const CLastChange last(*m_pSession);
    for (const auto& [pszRequest, bList, nodes] : steps) {
        for (const char* pszOp : {pszRequest, "undo", "redo"}) {
            Must(pszOp);
            EXPECT_EQ(last.m_change.bList, bList) << pszRequest << ", " << pszOp;
            EXPECT_EQ(last.m_change.nodes, nodes) << pszRequest << ", " << pszOp;
            EXPECT_FALSE(last.m_change.bEverything) << pszRequest << ", " << pszOp;
        }
    }
    for (const char* pszOp : {R"(load scene={"format":"iohost scene","version":1,"nodes":[]})", "undo", "redo"}) {
        Must(pszOp);
        EXPECT_TRUE(last.m_change.bEverything) << pszOp;
    }
}

TEST_F(History, PlacesNamesAndNotesAreTold) {
    Must(CREATE_MOUSE);
    EXPECT_FALSE(Must("scene")["nodes"][0].contains("place"));
    EXPECT_FALSE(Must("scene").contains("notes"));
    Must(
        R"(place nodes={"m":{"x":1.5,"y":-2,"folded":true}} notes={"n":{"x":1,"y":2,"width":3,"height":4,"text":"触发"}})");
    Talk(R"(scene => {"notes":{"n":{"x":1,"y":2,"width":3,"height":4,"text":"触发"}}})");
    EXPECT_EQ(Must("scene")["nodes"][0]["place"], OrderedJson::parse(R"({"x":1.5,"y":-2.0,"folded":true})"));
}

/// Connections are told only the beginning of a long one, and move it by that.
TEST_F(History, ANoteThatComesBackWithItsLengthKeepsItsText) {
    const auto note = [this] {
        const OrderedJson told = Must("scene")["notes"]["n"];
        return std::pair(told["x"].get<int>(), told["text"].get<std::string>());
    };
    Must(R"(place notes={"n":{"x":1,"y":2,"width":3,"height":4,"text":"beginning and end"}})");
    Must(R"(place notes={"n":{"x":9,"y":2,"width":3,"height":4,"text":"beginning","length":17}})");
    EXPECT_EQ(note(), std::pair(9, std::string("beginning and end")));
    EXPECT_FALSE(Must("scene")["notes"]["n"].contains("length"));
    Must("undo");
    EXPECT_EQ(note(), std::pair(1, std::string("beginning and end")));
    Must("redo");
    EXPECT_EQ(note(), std::pair(9, std::string("beginning and end")));
}

TEST_F(History, TheScenesFileAndWhetherItHasTheSceneAreKnown) {
    const auto file = m_folder.Path() / "show.json";
    const std::string strSave = "save file=" + Quote(file);
    const OrderedJson saved = {{"file", Json::parse(Quote(file))}, {"unsaved", false}};
    const auto state = [this] {
        const OrderedJson history = Must("history");
        return OrderedJson{{"file", history["file"]}, {"unsaved", history["unsaved"]}};
    };
    EXPECT_EQ(state(), OrderedJson({{"file", nullptr}, {"unsaved", false}}));
    Must(CREATE_MOUSE);
    EXPECT_EQ(state(), OrderedJson({{"file", nullptr}, {"unsaved", true}}));
    Must(strSave);
    EXPECT_EQ(state(), saved);
    Must("rename node=m graph=other");
    EXPECT_EQ(state()["unsaved"], true);
    Must("undo");
    EXPECT_EQ(state(), saved);
    Must("redo");
    Must(R"(load scene={"format":"iohost scene","version":1})");
    EXPECT_EQ(state(), OrderedJson({{"file", nullptr}, {"unsaved", false}}));
    Must("undo");
    EXPECT_EQ(state()["unsaved"], true);
    Must(strSave);
    Must("redo");
    Must("undo");
    EXPECT_EQ(state(), saved);
    Must("load file=" + Quote(file));
    EXPECT_EQ(state(), saved);
    EXPECT_EQ(Must("undo")["step"]["of"], saved["file"]);
    EXPECT_EQ(state(), saved);
}

TEST_F(History, AFileHasOneStateOnly) {
    const std::string strFile = Quote(m_folder.Path() / "show.json");
    Must(CREATE_MOUSE);
    Must("save file=" + strFile);
    Must("rename node=m graph=two");
    Must("load file=" + strFile);
    Must("rename node=m graph=three");
    Must("save file=" + strFile);
    for (int i = 0; i < 3; ++i) {
        Must("undo");
    }
    Talk(R"(history => {"done":1,"unsaved":true})");
}

TEST_F(History, ANodeIsToldWhatUndoingChanges) {
    Must("create node=s type=string_send clip=Intro graph=Send");
    Must("process");
    Must("edit node=s param=1502 int=1");
    Must("edit node=s param=1502 int=0");
    const OrderedJson all = Must("inspect node=s")["own"];
    Must("undo");
    Must("edit node=s param=1502 int=0");
    EXPECT_EQ(Must("inspect node=s")["own"], all);
}

TEST_F(History, UndoingADropLeavesTheOtherValues) {
    Must(CREATE_MOUSE);
    const auto sample = [this](double x) { Must(Event(1, 3013, PointerSample({{"rx", x}, {"x", 5}}))); };
    sample(0.5);
    Must("process");
    Must(R"(drop node=m param=352 from=["outputs"])");
    sample(0.75);
    Must("process");
    const OrderedJson value = Param("m", "outputs", 372);
    Must("undo");
    EXPECT_EQ(Param("m", "outputs", 372), value);
    EXPECT_FALSE(Param("m", "outputs", 352).is_null());
}

using ProbeHistory = CProbeTest;

/// The 8 makes it raise when it's made again.
TEST_F(ProbeHistory, NodesThatRaiseComeBackAllTheSame) {
    Must(CREATE_PROBE);
    Must(CREATE_SECOND_PROBE);
    Must("set node=p param=10 int=8 own=true");
    Must("link from=p output=101 to=q input=10");
    const OrderedJson before = WholeScene();
    Must("destroy node=p");
    Must("undo");
    EXPECT_EQ(WholeScene(), before);
    EXPECT_EQ(AskObject(R"(batch requests=[{"op":"destroy","node":"p"},{"op":"rename","node":"zz","graph":""}])")["ok"],
              false);
    EXPECT_EQ(WholeScene(), before);
    Must(R"(load scene={"format":"iohost scene","version":1})");
    Must("undo");
    EXPECT_EQ(WholeScene(), before);
}

/// The 12 makes the module raise when it's asked for the node again: the steps that are left don't fit the scene.
TEST_F(ProbeHistory, AStepThatCantBeTakenBackEndsTheHistory) {
    const CLastChange last(*m_pSession);
    for (const char* pszFailing :
         {"undo", R"(batch requests=[{"op":"destroy","node":"p"},{"op":"rename","node":"zz","graph":""}])"}) {
        Must(CREATE_PROBE);
        Must("set node=p param=10 int=12 own=true");
        if (pszFailing == std::string("undo")) {
            Must("destroy node=p");
        }
        EXPECT_EQ(AskObject(pszFailing)["ok"], false);
        EXPECT_TRUE(last.m_change.bEverything) << pszFailing;
        Talk(R"(
            history => {"steps":[]}
            scene => {"nodes":[]}
        )");
    }
}

/// Any steps, undone and redone at random, leave what the steps that are done leave in a new session.
TEST_F(History, RandomEditsUndosAndRedosEndWhereTheirEffectDoes) {
#if defined(_WIN32) // where it takes longer, and nothing of it depends on the system
    constexpr int SEQUENCES = 2;
#else
    constexpr int SEQUENCES = 10;
#endif
    constexpr int LENGTH = 2000;
    constexpr int LEAST = 2 * SEQUENCES; ///< times that each kind of request must have had an effect
    constexpr int MOST_STEPS = 200;      ///< are kept
    const std::string strEmpty = R"(load scene={"format":"iohost scene","version":1} step=false)";
    const std::string strOther =
        R"({"format":"iohost scene","version":1,"clips":[{"name":"a","objects":[{"name":"a"}]}],"nodes":[)"
        R"({"node":"a","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B01}","clip":"a","graph":"A","place":{"x":1,"y":2}},)"
        R"({"node":"b","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B0F}","clip":null,"graph":"B"}],)"
        R"("links":[{"from":"a","output":154,"to":"b","input":1505}],"devices":[{"id":1,"name":"D","parser":"none"}],)"
        R"("notes":{"a":{"x":1,"y":2,"width":3,"height":4,"text":"t"}}})";
    const std::string strFile = Quote(m_folder.Write("other.json", strOther));
    const std::pair<int, std::string> edits[] = {
        // how often, and what; a word of capitals becomes any of those below
        {12, "create NODE graph=NAME clip=NAME"},
        {6, "create NODE graph=NAME clip=null"},
        {4, "destroy node=NAME"},
        {8, "link OUTPUT INPUT"},
        {4, "unlink LINK"},
        {4, "edit PARAM int=NUMBER"},
        {4, "set PARAM string=NAME"},
        {4, "set PARAM int=NUMBER own=true"},
        {4, R"(drop PARAM from=["own"])"},
        {4, R"(drop PARAM from=["inputs"])"},
        {4, R"(drop PIN from=["outputs"])"},
        {8, "init node=d"},
        {4, "outputs node=d"},
        {4, "rename node=NAME graph=NAME"},
        {4, R"(place nodes={"NAME":{"x":NUMBER,"y":1}})"},
        {4, R"(place nodes={"NAME":{"x":NUMBER,"y":1,"folded":true}})"},
        {4, R"(place notes={"NAME":{"x":NUMBER,"y":1,"width":1,"height":1,"text":"NAME"}})"},
        {4, R"(place notes={"NAME":null})"},
        {4, "object clip=NAME name=NAME"},
        {8, "change_object clip=NAME name=NAME to=NAME"},
        {8, "change_object clip=NAME name=NAME matrix=[1,0,0,0,0,1,0,0,0,0,1,0,NUMBER,0,0,1]"},
        {4, "remove_object clip=NAME name=NAME"},
        {2, "device device=NUMBER name=NAME parser=PARSER"},
        {2, "remove_device device=NUMBER"},
        {1, R"(devices list=[{"id":NUMBER,"name":"NAME","parser":"PARSER"}])"},
        {1, "devices list=null"},
        {1, "load file=" + strFile},
        {1, "load scene=" + strOther},
    };
    std::map<std::string, std::vector<std::string>> words = {
        {"NODE",
         {"node=a type=keyboard", "node=b type=text_field", "node=b type=mouse", "node=c type=string_send",
          "node=d type=gesture"}},
        {"NAME", {"a", "b", "c", "d"}},
        {"NUMBER", {"0", "1", "2"}},
        {"PARAM",
         {"node=a param=2", "node=b param=2", "node=b param=202", "node=c param=1502", "node=c param=1505",
          "node=d param=7"}},
        {"OUTPUT", {"from=a output=152", "from=a output=154", "from=b output=253", "from=b output=358"}},
        {"INPUT", {"to=a input=2", "to=b input=202", "to=b input=203", "to=c input=1505", "to=c input=1507"}},
        {"PIN", {"node=a param=154", "node=b param=358", "node=d param=758"}},
        {"PARSER", {"framed", "direct", "json", "none"}},
        {"LINK", std::vector<std::string>(3, "from=a output=154 to=c input=1505")}, // some that were made
    };
    std::map<std::string, int> effects = {{"batch", 0}, {"undo", 0}, {"redo", 0}, {"undo to", 0}, {"redo to", 0}};
    std::vector<std::string> kinds;
    for (const auto& [nWeight, strEdit] : edits) {
        effects[strEdit] = 0;
        kinds.insert(kinds.end(), nWeight, strEdit);
    }
    std::mt19937 random(16);
    const auto upTo = [&random](size_t n) { return static_cast<int>(random() % n); };
    const auto any = [&](const std::vector<std::string>& list) { return list[upTo(list.size())]; };
    const auto filled = [&](std::string strEdit) {
        for (const auto& [strWord, choices] : words) {
            for (size_t n; (n = strEdit.find(strWord)) != std::string::npos;) {
                strEdit.replace(n, strWord.size(), any(choices));
            }
        }
        return strEdit;
    };
    const auto look = [this] {
        const SSceneDocument scene = m_pSession->SceneLeft();
        std::vector<SLinkDocument> links; // in the order in which they act
        for (const auto& pNode : m_pSession->Scene().Nodes()) {
            std::ranges::transform(pNode->arOutgoing, std::back_inserter(links),
                                   [](const SLink& link) { return DocumentOf(link); });
        }
        return std::tuple(scene.clips, scene.nodes, scene.devices, scene.notes, links);
    };
    const CHistory& history = m_pSession->History();
    int nForgotten = 0;
    for (int nSequence = 0; nSequence < SEQUENCES; ++nSequence) {
        Must(strEmpty);
        std::vector<Json> steps;
        std::vector looks = {look()}; // before the first and after each
        int nDone = 0;                // those behind were undone
        int nOldest = 0;              // those before can't be undone any more
        for (int i = 0; i < LENGTH; ++i) {
            const auto nState = history.State();
            std::string strKind = any(kinds);
            if (const int nWay = upTo(20); nWay < 5) {
                const bool bBack = nWay < 3;
                strKind = bBack ? "undo" : "redo";
                std::string strMove = strKind;
                int nTo = bBack ? nDone - 1 : nDone + 1;
                if (upTo(4) == 0) { // a state near this one, which may lie on the other side
                    nTo = std::clamp(nDone + upTo(11) - 5, nOldest, static_cast<int>(steps.size()));
                    strMove += " to=" + std::to_string(history.States()[nTo - nOldest]);
                    strKind += " to";
                }
                const bool bThere =
                    bBack ? nTo >= nOldest && nTo < nDone : nTo > nDone && nTo <= static_cast<int>(steps.size());
                ASSERT_EQ(AskObject(strMove)["ok"], bThere) << strMove;
                nDone = bThere ? nTo : nDone;
                ASSERT_TRUE(look() == looks[nDone]) << strMove << " at " << i << " of sequence " << nSequence;
            } else {
                const std::string strEdit = filled(strKind);
                Json request = Request(strEdit);
                if (upTo(8) == 0) {
                    strKind = "batch";
                    request = {{"op", "batch"}, {"requests", {request, Request(filled(any(kinds)))}}};
                }
                AskObject(request);
                if (history.State() != nState) {
                    steps.resize(nDone);
                    steps.push_back(request);
                    looks.resize(nDone + 1);
                    looks.push_back(look());
                    nOldest = std::max(nOldest, ++nDone - MOST_STEPS);
                    if (strKind.starts_with("link")) {
                        words["LINK"][upTo(3)] = strEdit.substr(5);
                    }
                }
            }
            effects[strKind] += history.State() != nState ? 1 : 0;
            ASSERT_EQ(static_cast<int>(history.Done()), nDone - nOldest);
        }
        nForgotten += nOldest;
        const std::string strScene = Scene();
        Must(strEmpty);
        steps.resize(nDone);
        for (const Json& step : steps) {
            Must(step);
        }
        ASSERT_EQ(Scene(), strScene) << "sequence " << nSequence;
        ASSERT_TRUE(look() == looks[nDone]) << "sequence " << nSequence;
    }
    for (const auto& [strKind, nTimes] : effects) {
        EXPECT_GE(nTimes, LEAST) << strKind;
    }
    EXPECT_GE(nForgotten, LEAST);
}

} // namespace
