// Undo, redo and batch; places, names and notes.
#include "HostTest.h"

#include <random>

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
    constexpr const char* CHANGES[] = {
        R"(create node=k type=keyboard clip=Intro graph="Keyboard 1")",
        R"(create node=s type=string_send clip=Intro graph="Send 1")",
        R"(create node=m type=mouse clip=Outro graph="")",
        R"(edit node=s param=1505 string="a text")",
        R"(set node=s param=1505 string="own" own=true)",
        R"(link from=k output=154 to=s input=1505)",
        R"(link from=k output=152 to=s input=1507)",
        R"(unlink from=k output=154 to=s input=1505)",
        R"(link from=k output=154 to=s input=1505)",
        R"(drop node=s param=1507 from=["own","inputs"])",
        R"(rename node=k graph="Keys")",
        R"(place nodes={"k":{"x":1.5,"y":-2},"s":{"x":300,"y":0,"folded":true}})",
        R"(place notes={"n":{"x":0,"y":0,"width":100,"height":50,"text":"a note"},"o":{"x":0,"y":9,"width":1,"height":5,"text":""}})",
        R"(place notes={"n":null})",
        R"(object clip=Stage name=Box matrix=[1,0,0,0,0,1,0,0,0,0,1,0,5,6,7,1])",
        R"(object clip=Stage name=Ball)",
        R"(change_object clip=Stage name=Box to=Cube matrix=[1,0,0,0,0,1,0,0,0,0,1,0,8,9,7,1])",
        R"(remove_object clip=Stage name=Cube)",
        R"(devices list=[{"id":3,"name":"Wall","parser":"direct"}])",
        R"(destroy node=k)",
        R"(create node=k type=mouse clip=null graph="Mouse 2" event_window=false)",
        R"(batch name="Two at once" requests=[{"op":"destroy","node":"m"},{"op":"rename","node":"s","graph":"Sender"}])",
        R"(load scene={"format":"iohost scene","version":1,"nodes":[]})",
    };
    constexpr const char* NAMES[] = {"Add Keyboard 1",
                                     "Add Send 1",
                                     "Add m",
                                     "Change Send 1",
                                     "Change Send 1",
                                     "Link Keyboard 1 to Send 1",
                                     "Link Keyboard 1 to Send 1",
                                     "Unlink Keyboard 1 from Send 1",
                                     "Link Keyboard 1 to Send 1",
                                     "Change Send 1",
                                     "Rename Keyboard 1 to Keys",
                                     "Move 2 nodes",
                                     "Change notes",
                                     "Change notes",
                                     "Add object Box",
                                     "Add object Ball",
                                     "Change object Box",
                                     "Remove object Cube",
                                     "Change devices",
                                     "Delete Keys",
                                     "Add Mouse 2",
                                     "Two at once",
                                     "Open a scene"};
    std::vector<std::string> scenes = {Scene()};
    for (const char* pszChange : CHANGES) {
        Must(pszChange);
        scenes.push_back(Scene());
        EXPECT_NE(scenes.back(), *(scenes.end() - 2)) << pszChange;
    }
    EXPECT_EQ(Steps(), OrderedJson(NAMES));
    for (int nTimes = 0; nTimes < 2; ++nTimes) {
        for (size_t i = std::size(CHANGES); i > 0; --i) {
            EXPECT_EQ(Must("undo")["step"]["name"], NAMES[i - 1]);
            EXPECT_EQ(Scene(), scenes[i - 1]) << "without " << CHANGES[i - 1];
        }
        EXPECT_EQ(Refusal("undo"), "op: there is nothing to undo");
        for (size_t i = 0; i < std::size(CHANGES); ++i) {
            EXPECT_EQ(Must("redo")["step"]["name"], NAMES[i]);
            EXPECT_EQ(Scene(), scenes[i + 1]) << "with " << CHANGES[i];
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

TEST_F(History, WhatWasUndoneIsGoneWithTheNextStep) {
    Must(CREATE_MOUSE);
    Must(CREATE_KEYBOARD);
    Must("undo");
    Must("rename node=m graph=Pointer");
    EXPECT_EQ(Refusal("redo"), "op: there is nothing to redo");
    EXPECT_EQ(Steps(), OrderedJson({"Add Mouse 1", "Rename Mouse 1 to Pointer"}));
    Talk(R"(history => {"done":2})");
    Must("undo");
    Talk(R"(history => {"done":1})");
}

TEST_F(History, WhatChangesNothingIsNoStep) {
    Must(CREATE_MOUSE);
    Must("rename node=m graph=\"Mouse 1\"");
    Must("process frame=true");

    EXPECT_EQ(Steps(), OrderedJson({"Add Mouse 1"}));
}

TEST_F(History, TheLast200StepsAreKept) {
    Must(CREATE_MOUSE);
    for (int i = 1; i <= 205; ++i) {
        Must({{"op", "rename"}, {"node", "m"}, {"graph", std::to_string(i)}});
    }
    EXPECT_EQ(Steps().size(), 200u);
    for (int i = 0; i < 200; ++i) {
        Must("undo");
    }
    EXPECT_EQ(Must("scene")["nodes"][0]["graph"], "5");
    EXPECT_EQ(Refusal("undo"), "op: there is nothing to undo");
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
    EXPECT_EQ(Refusal(undo(4)), "to: the scene has no such state there");

    Must("undo");
    Must("rename node=m graph=other");
    EXPECT_EQ(Must("history")["states"].size(), 5U);
    EXPECT_EQ(Refusal(undo(4)), "to: the scene has no such state there");
    Must(undo(3));
    EXPECT_EQ(name(), "b");
    EXPECT_EQ(Refusal(redo(4)), "to: the scene has no such state there");
    Must(undo(0));
    EXPECT_EQ(Must("scene")["nodes"].size(), 0U);
    EXPECT_EQ(Must("history")["done"], 0);
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
        batch => requests: is missing
        batch requests=5 => requests: must be a list
        batch requests=[5] => requests[0].request: must be an object
        batch requests=[{"op":"undo"}] => requests[0].op: can't be part of a batch
        batch requests=[{"op":"batch","requests":[]}] => requests[0].op: can't be part of a batch
        batch requests=[{"op":"rename","node":"m"}] => requests[0].graph: is missing
        batch requests=[]
        rename node=x graph="" => node: there is no node "x"
        place nodes={"m":{"x":1,"y":1},"x":{"x":1,"y":1}} => nodes: there is no node "x"
        place nodes={"m":{"x":1}} => nodes.m.y: is missing
        place notes={"n":5} => notes.n: must be an object
        change_object clip=New name=Box => clip: there is no clip "New"
        remove_object clip=Intro name=Box => name: the clip has no object "Box"
        object clip=Intro name=Box
        object clip=Intro name=Ball
        change_object clip=Intro name=Box to=Ball => to: the clip has an object "Ball" already
    )");
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

TEST_F(History, ABatchWhoseNodeIsntMadeIsRefused) {
    EXPECT_EQ(Refusal(R"(batch requests=[{"op":"create","node":"n","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1BFF}",)"
                      R"("clip":null,"graph":""}])"),
              "requests[0].type: the module makes no such node");
}

using ProbeHistory = CProbeTest;

TEST_F(ProbeHistory, ALoadThatFaultsIsNoStep) {
    Must(CREATE_PROBE);
    Must("set node=p param=10 int=8 own=true");
    Must("save file=" + Quote(m_folder.Path() / "faulty.json"));
    const OrderedJson history = Must("history");
    const OrderedJson reply = AskObject("load file=" + Quote(m_folder.Path() / "faulty.json"));
    EXPECT_EQ(reply["ok"], false);
    EXPECT_EQ(Must("history"), history);
}

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

TEST_F(History, LinksKeepTheOrderInWhichTheyWereMade) {
    Must(CREATE_KEYBOARD);
    Must("create node=a type=string_send clip=Intro graph=A");
    Must("create node=b type=string_send clip=Intro graph=B");
    Must("link from=k output=154 to=b input=1505");
    Must("link from=k output=154 to=a input=1505");
    const OrderedJson links = Must("scene")["links"];
    Must("destroy node=b");
    Must("undo");
    EXPECT_EQ(Must("scene")["links"], links);
    Must("unlink from=k output=154 to=b input=1505");
    Must("undo");
    EXPECT_EQ(Must("scene")["links"], links);
}

/// Any steps, undone and redone at random, leave what the steps that are done leave in a new session.
TEST_F(History, RandomEditsUndosAndRedosEndWhereTheirEffectDoes) {
    constexpr int SEQUENCES = 400;
    constexpr int LENGTH = 250;
    constexpr const char* TYPES[] = {"keyboard", "text_field", "mouse", "string_send", "object_json", "handle"};
    constexpr int INPUTS[] = {2, 202, 203, 402, 802, 1102, 1505, 1506, 1507};
    constexpr int OUTPUTS[] = {152, 154, 253, 352, 358, 1452};
    std::mt19937 random(16);
    const auto upTo = [&random](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    const auto node = [&] { return std::string(1, static_cast<char>('a' + upTo(5))); };
    const auto any = [&](const auto& list) { return list[upTo(static_cast<int>(std::size(list)))]; };
    const auto anyEdit = [&]() -> Json {
        switch (upTo(12)) {
        case 0:
        case 1:
        case 2: {
            Json request = Request(std::string("create type=") + any(TYPES));
            request.update({{"node", node()}, {"graph", node()}, {"clip", upTo(3) > 0 ? Json(node()) : Json()}});
            return request;
        }
        case 3:
            return {{"op", "destroy"}, {"node", node()}};
        case 4:
        case 5:
            return {{"op", "link"}, {"from", node()}, {"output", any(OUTPUTS)}, {"to", node()}, {"input", any(INPUTS)}};
        case 6:
            return {{"op", "edit"}, {"node", node()}, {"param", any(INPUTS)}, {"int", upTo(9)}};
        case 7:
            return {
                {"op", "drop"}, {"node", node()}, {"param", any(INPUTS)}, {"from", {upTo(2) > 0 ? "own" : "inputs"}}};
        case 8:
            return {{"op", upTo(2) > 0 ? "init" : "outputs"}, {"node", node()}};
        case 9:
            return {{"op", "place"}, {"nodes", {{node(), {{"x", upTo(9)}, {"y", 1}}}}}};
        case 10:
            return {{"op", upTo(2) > 0 ? "object" : "remove_object"}, {"clip", node()}, {"name", node()}};
        default:
            return {{"op", "rename"}, {"node", node()}, {"graph", node()}};
        }
    };
    constexpr char EMPTY[] = R"(load scene={"format":"iohost scene","version":1})";
    size_t nSteps = 0;
    for (int nSequence = 0; nSequence < SEQUENCES; ++nSequence) {
        Must(EMPTY);
        m_pSession->History().Clear();
        std::vector<Json> done;
        std::vector<Json> undone;
        for (int i = 0; i < LENGTH; ++i) {
            const int nWhat = upTo(10);
            if (nWhat < 3) {
                if (AskObject("undo")["ok"]) {
                    undone.push_back(done.back());
                    done.pop_back();
                }
            } else if (nWhat < 5) {
                if (AskObject("redo")["ok"]) {
                    done.push_back(undone.back());
                    undone.pop_back();
                }
            } else {
                Json edit = anyEdit();
                if (nWhat == 9) {
                    edit = {{"op", "batch"}, {"requests", {edit, anyEdit()}}};
                }
                const auto nBefore = m_pSession->History().Done();
                if (AskObject(edit)["ok"] && m_pSession->History().Done() > nBefore) {
                    done.push_back(edit);
                    undone.clear();
                }
            }
            ++nSteps;
        }
        ASSERT_LT(done.size(), CHistory::MOST_STEPS);
        const std::string strScene = Scene();
        Must(EMPTY);
        for (const Json& edit : done) {
            Must(edit);
        }
        ASSERT_EQ(Scene(), strScene) << "sequence " << nSequence;
    }
    EXPECT_EQ(nSteps, static_cast<size_t>(SEQUENCES) * LENGTH);
}

} // namespace
