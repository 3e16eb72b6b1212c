// save, load and scene.
#include "HostTest.h"

#include "base/TextUtf8.h"

namespace {

constexpr char HEAD[] = R"(load scene={"format":"iohost scene","version":1,)";

class SceneFile : public CHostTest {};

class ProbeSceneFile : public CProbeTest {
protected:
    void SaveAndLoad() {
        const std::string strFile = Quote(m_folder.Path() / "saved.json");
        Must("save file=" + strFile);
        Must("load file=" + strFile);
    }
};

TEST_F(SceneFile, SavedSceneComesBackAsItWasAndWorks) {
    EXPECT_EQ(Ask(R"({"op":"scene"})"), R"({"ok":true,"version":0,"nodes":[],"links":[]})");
    Must(CREATE_MOUSE);
    Must(CREATE_KEYBOARD);
    Must("link from=m output=366 to=k input=2");
    EXPECT_EQ(
        Ask(R"({"op":"scene"})"),
        R"({"ok":true,"version":3,"nodes":[)"
        R"({"node":"m","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B03}","clip":"Intro","graph":"Mouse 1","name":"IO_PROCESS_MOUSE"},)"
        R"({"node":"k","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B01}","clip":"Intro","graph":"Keyboard 1","name":"IO_PROCESS_KEYBOARD"}],)"
        R"("links":[{"from":"m","output":366,"to":"k","input":2}]})");
    Talk(R"(
        create node=free type=keyboard clip=null graph="中" event_window=false
        create node=v type=handle clip=Intro graph=Hand
        object clip=Intro name=Cube
        object clip="Empty of nodes" name=Ball
        set node=m param=2 int=5
        set node=k param=2 string="odd \u0000 text" own=true
        set node=v param=802 string=Cube
        drop node=k param=153 from=["outputs"]
        drop node=free param=2 from=["inputs"]
        process
    )");
    Must(Event(3, 0, HandSample()));
    Must(Event(1, 3013, PointerSample({{"rx", 0.1}, {"ry", -3e8}, {"x", 7}, {"y", -8}})));
    Must("process");
    const OrderedJson before = WholeScene();
    const OrderedJson objects = Must("objects");
    const std::string strFile = Quote(m_folder.Path() / "saved.json");
    Must("save file=" + strFile);
    Must("destroy node=m");
    Must("set node=k param=2 int=0");
    EXPECT_NE(WholeScene(), before);
    Must("load file=" + strFile);
    EXPECT_EQ(WholeScene(), before);
    EXPECT_EQ(Must("objects"), objects);
    Talk(R"(
        process
        event node=free device=0 event=2002 => {"posted":null}
        event node=m device=1 event=3005 => {"posted":[{"node":"m","params":[{"points":"clip:Intro"},{},{},{}]}]}
    )");
    Must(Event(3, 0, HandSample({{"pose", std::vector<int>(16, 7)}})));
    EXPECT_EQ(Must("objects")["objects"][0]["matrix"], OrderedJson(std::vector<double>(16, 7.0)));
}

TEST_F(SceneFile, WhatIsMissingIsAsInANewNodeAndWhatOnlyTellsIsNotRead) {
    Must(CREATE_MOUSE);
    const OrderedJson made = WholeScene();
    Must(std::string(HEAD) + R"("nodes":[{"node":"m","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B03}","clip":"Intro",)"
                             R"("graph":"Mouse 1"}]})");
    EXPECT_EQ(WholeScene(), made);
    Must(std::string(HEAD) + R"("nodes":[{"node":"m","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B03}","clip":null,)"
                             R"("graph":"G","outputs":[{"id":351,"params":[{"id":352,"extra":-1,"length":"x"}]}]}]})");
    Must("load file=" + Quote(std::filesystem::path(APP_FOLDER) / "scenes" / "demo.json"));
    EXPECT_GE(Must("scene")["nodes"].size(), 2u);
}

/// As hosts wrote them before scenes had devices, and before nodes had places.
TEST_F(SceneFile, ScenesOfEarlierHostsOpenUnchanged) {
    for (const char* pszName : {"first.json", "devices.json"}) {
        const auto file = std::filesystem::path(SCENES_FOLDER) / pszName;
        Must("load file=" + Quote(file));
        const auto saved = m_folder.Path() / pszName;
        Must("save file=" + Quote(saved));
        const std::string strSaved = ReadAll(saved);
        const Json scene = Json::parse(strSaved);
        const Json earlier = Json::parse(ReadAll(file));
        for (const auto& [strField, value] : earlier.items()) {
            EXPECT_EQ(scene[strField], value) << pszName << ", " << strField;
        }
        Must("load file=" + Quote(saved));
        Must("save file=" + Quote(saved));
        EXPECT_EQ(ReadAll(saved), strSaved) << pszName;
    }
}

TEST_F(SceneFile, WrongScenesAreRefusedByFieldAndLeaveTheSceneAsItWas) {
    Must(CREATE_MOUSE);
    Must(CREATE_KEYBOARD);
    Must("link from=m output=366 to=k input=2");
    const std::string strNode =
        R"({"node":"n","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B03}","clip":"New","graph":"G")";
    const std::pair<std::string, const char*> cases[] = {
        {R"("nodes":[{"node":"n","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B09}","clip":null,"graph":"G"}])",
         "scene.nodes[0].type: the module makes no node of the type {8164BB40-6B6A-4707-88B7-386BCB0D1B09}"},
        {R"("nodes":[)" + strNode + "}," + strNode + "}]", R"(node: there is a node "n" already)"},
        {R"("nodes":[)" + strNode + R"(}],"links":[{"from":"n","output":1,"to":"z","input":1}])",
         "scene.links[0].to: there is no node \"z\""},
        {R"("nodes":[)" + strNode + R"(}],"links":[{"from":"n","output":2,"to":"n","input":2}])",
         "scene.links[0].output: there is no parameter 2 among the node's outputs"},
        {R"("nodes":[)" + strNode + R"(}],"links":[{"from":"n","output":366,"to":"n","input":88888}])",
         "scene.links[0].input: there is no parameter 88888 among the node's graph inputs"},
        {R"("clips":[{"name":"C","objects":[{"name":"O"}]},{"name":"C","objects":[{"name":"P"},{"name":"O"}]}])",
         "scene.clips[1].objects[1].name: the clip has an object \"O\" already"},
    };
    for (const auto& [strScene, pszError] : cases) {
        EXPECT_EQ(Refusal(HEAD + strScene + "}"), pszError) << strScene;
    }
    Talk(R"(
        objects => {"objects":[]}
        process => {"results":{"m":1,"k":0}}
    )"); // k is disabled by the link
}

TEST_F(SceneFile, AFileThatIsThereIsReplacedByItsOwnSceneOrWhenThatIsMeant) {
    const std::string strSaveOwn = "save file=" + Quote(m_folder.Path() / "own.json");
    const std::string strOther = Quote(m_folder.Write("other.json", "another scene"));
    Talk(strSaveOwn + " replace=false\n" + strSaveOwn + " replace=false\nsave file=" + strOther +
         " replace=false => file: is there already\nload file=" + strOther + " => file: not JSON, from byte 1 on");
    Talk("save file=" + strOther + "\n" + strSaveOwn + " replace=false => file: is there already");
}

TEST_F(SceneFile, FilesThatCannotBeUsedAreNamed) {
    const std::string strFolder = Quote(m_folder.Path());
    const std::string strNowhere = Quote(m_folder.Path() / "no" / "where.json");
    Talk("load file=" + strNowhere + " => file: can't be read\nload file=" + strFolder +
         " => file: can't be read\nsave file=" + strNowhere + " => file: can't be written\nsave file=" + strFolder +
         " => file: isn't a regular file");
    // The system would take these for the file before the zero.
    const std::string strZero = Utf8(m_folder.Path() / "saved.json") + std::string("\0x", 2);
    Must("save file=" + Quote(m_folder.Path() / "saved.json"));
    EXPECT_EQ(Refusal({{"op", "load"}, {"file", strZero}}), "file: can't be read");
    EXPECT_EQ(Refusal({{"op", "save"}, {"file", strZero}}), "file: can't be written");
    for (const auto& [strContent, pszError] : {std::pair{std::string(), "file: not JSON"},
                                               {"\x7f"
                                                "ELF",
                                                "file: not JSON"},
                                               {std::string(1000, '['), "file: nested deeper than 64 levels"},
                                               {"{}", "file.format: is missing"}}) {
        const std::string strFile = Quote(m_folder.Write("scene.json", strContent));
        EXPECT_TRUE(Refusal("load file=" + strFile).starts_with(pszError)) << strContent;
    }
}

TEST_F(ProbeSceneFile, ParametersAndPinsThatTheNodeDoesNotMakeComeBack) {
    Must(R"(create node=p type=probe clip=Intro graph=G saved={"values":{"505":3},"choices":[13],)"
         R"("pins":[{"group":110,"ids":[111]},{"group":999,"ids":[998,102]}]})");
    Must(R"(set node=p param=12 string="")");
    Must(R"(set node=p param=12 string="" own=true)");
    OrderedJson before = WholeScene();
    SaveAndLoad();
    // InitParam ran on the loaded set, as for any set out of a project.
    before["nodes"][0][1]["own"][0]["params"][2]["string"] = "+init";
    EXPECT_EQ(WholeScene(), before);
}

TEST_F(ProbeSceneFile, LinksOfDroppedPinsComeBackAndThoseOfPinsGoneForGoodDoNot) {
    Must(CREATE_PROBE);
    Talk(R"(
        create node=q type=probe clip=null graph=G outputs=false
        create node=r type=probe clip=null graph=G saved={"pins":[{"group":999,"ids":[998,102]}]}
        outputs node=q
        link from=p output=104 to=q input=12
        link from=p output=101 to=q input=14
        link from=q output=103 to=p input=11
        link from=q output=101 to=q input=14
        link from=r output=102 to=r input=10
        drop node=p param=104 from=["outputs"]
        drop node=p param=101 from=["outputs"]
        drop node=p param=11 from=["own","inputs"]
        drop node=q param=101 from=["outputs"]
        set node=p param=10 int=6
    )");
    const OrderedJson links = Must("scene")["links"];
    EXPECT_EQ(links.size(), 5u);
    Must("link from=r output=998 to=r input=14");
    SaveAndLoad();
    EXPECT_EQ(Must("scene")["links"].size(), 6u);
    Must(R"(drop node=r param=998 from=["outputs"])");
    for (int nTimes = 0; nTimes < 2; ++nTimes) {
        SaveAndLoad();
        EXPECT_EQ(Must("scene")["links"], links);
    }
    // The link of the dropped event is one of an event still.
    const int nSeen = Param("q", "outputs", 102)["int"];
    Must("process");
    EXPECT_EQ(Param("q", "outputs", 102)["int"], nSeen + 1);
}

TEST_F(ProbeSceneFile, NodeThatRaisesWhileLoadingIsRefusedAndNoStep) {
    Must(CREATE_SECOND_PROBE);
    Must(CREATE_PROBE);
    Must("set node=p param=10 int=8 own=true");
    const std::string strFile = Quote(m_folder.Path() / "saved.json");
    Must("save file=" + strFile);
    const OrderedJson before = WholeScene();
    const OrderedJson history = Must("history");
    EXPECT_EQ(AskObject("load file=" + strFile)["error"], "file.nodes[1]: the module raised CInvalidArgException");
    EXPECT_EQ(WholeScene(), before);
    EXPECT_EQ(Must("history"), history);
}

} // namespace
