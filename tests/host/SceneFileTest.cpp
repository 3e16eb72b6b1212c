// save, load and scene.
#include "HostTest.h"

namespace {

class SceneFile : public CHostTest {
protected:
    std::string Load(std::string_view content) {
        return R"({"op":"load","file":)" + Quote(m_folder.Write("scene.json", content)) + "}";
    }
};

class ProbeSceneFile : public CProbeTest {};

TEST_F(SceneFile, SceneListsNodesAndLinks) {
    EXPECT_EQ(Ask(R"({"op":"scene"})"), R"({"ok":true,"version":0,"nodes":[],"links":[]})");
    Must(CREATE_MOUSE);
    Must(CREATE_KEYBOARD);
    Must(R"({"op":"link","from":"m","output":366,"to":"k","input":2})");
    EXPECT_EQ(
        Ask(R"({"op":"scene"})"),
        R"({"ok":true,"version":3,"nodes":[)"
        R"({"node":"m","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B03}","clip":"Intro","graph":"Mouse 1","name":"IO_PROCESS_MOUSE"},)"
        R"({"node":"k","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B01}","clip":"Intro","graph":"Keyboard 1","name":"IO_PROCESS_KEYBOARD"}],)"
        R"("links":[{"from":"m","output":366,"to":"k","input":2}]})");
}

TEST_F(SceneFile, SavedSceneComesBackAsItWas) {
    Must(CREATE_MOUSE);
    Must(CREATE_KEYBOARD);
    Must(
        R"({"op":"create","node":"free","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B01}","clip":null,"graph":"中","event_window":false})");
    Must(R"({"op":"object","clip":"Intro","name":"Cube"})");
    Must(R"({"op":"object","clip":"Empty of nodes","name":"Ball"})");
    Must(R"({"op":"link","from":"m","output":366,"to":"k","input":2})");
    Must(R"({"op":"set","node":"m","param":2,"int":5})");
    Must(R"({"op":"set","node":"k","param":2,"string":"odd \u0000 text","own":true})");
    Must(R"({"op":"drop","node":"k","param":153,"from":["outputs"]})");
    Must(R"({"op":"drop","node":"free","param":2,"from":["inputs"]})");
    Must(R"({"op":"process"})");
    Must(
        R"({"op":"event","node":"m","device":1,"event":3013,"payload":{"is":"pointer","rx":0.1,"ry":-3e8,"x":7,"y":-8,"pointer":0,"relative":0}})");
    Must(R"({"op":"process"})");
    const OrderedJson before = WholeScene();
    const OrderedJson objects = Must(R"({"op":"objects"})");
    const std::string strFile = Quote(m_folder.Path() / "saved.json");
    EXPECT_EQ(Ask(R"({"op":"save","file":)" + strFile + "}"), R"({"ok":true})");

    Must(R"({"op":"destroy","node":"m"})");
    Must(R"({"op":"set","node":"k","param":2,"int":0})");
    EXPECT_NE(WholeScene(), before);
    EXPECT_EQ(Ask(R"({"op":"load","file":)" + strFile + "}"), R"({"ok":true})");
    EXPECT_EQ(WholeScene(), before);
    EXPECT_EQ(Must(R"({"op":"objects"})"), objects);

    // A node without event window stays one.
    Must(R"({"op":"process"})");
    EXPECT_FALSE(Must(R"({"op":"event","node":"free","device":0,"event":2002})").contains("posted"));
}

TEST_F(SceneFile, LoadedNodesWork) {
    Must(CREATE_MOUSE);
    const std::string strFile = Quote(m_folder.Path() / "saved.json");
    Must(R"({"op":"save","file":)" + strFile + "}");
    Must(R"({"op":"load","file":)" + strFile + "}");
    Must(R"({"op":"process"})");
    const OrderedJson reply = Must(R"({"op":"event","device":1,"event":3005})");
    EXPECT_EQ(reply["posted"][0]["node"], "m");
    EXPECT_EQ(reply["posted"][0]["params"][0]["points"], "clip:Intro");
    Must(R"({"op":"event","device":1,"event":3006})");
}

TEST_F(SceneFile, ParameterSetsMayBeMissing) {
    Must(Load(R"({"format":"iohost scene","version":1,"nodes":[
        {"node":"m","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B03}","clip":"Intro","graph":"Mouse 1"}]})"));
    const OrderedJson loaded = WholeScene();
    Must(R"({"op":"destroy","node":"m"})");
    Must(CREATE_MOUSE);
    EXPECT_EQ(WholeScene(), loaded);
}

TEST_F(SceneFile, TheDemoSceneLoads) {
    Must(R"({"op":"load","file":)" + Quote(std::filesystem::path(APP_FOLDER) / "scenes" / "demo.json") + "}");
    EXPECT_GE(Must(R"({"op":"scene"})")["nodes"].size(), 2u);
}

TEST_F(SceneFile, WhatOnlyTellsIsNotRead) {
    Must(R"({"op":"load","scene":{"format":"iohost scene","version":1,"nodes":[{"node":"m",)"
         R"("type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B03}","clip":null,"graph":"G","outputs":[{"id":351,"params":)"
         R"([{"id":352,"extra":-1,"length":"x"}]}]}]}})");
}

TEST_F(SceneFile, AFolderIsNoSceneAndEndsNothing) {
    EXPECT_FALSE(Refusal(R"({"op":"load","file":)" + Quote(m_folder.Path()) + "}").empty());
}

TEST_F(SceneFile, WrongFilesLeaveTheSceneAsItWas) {
    Must(CREATE_MOUSE);
    Must(CREATE_KEYBOARD);
    Must(R"({"op":"link","from":"m","output":366,"to":"k","input":2})");
    const std::string strHead = R"({"format":"iohost scene","version":1,)";
    const std::string strNode =
        R"({"node":"n","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B03}","clip":"New","graph":"G")";
    const struct {
        std::string strContent;
        std::string strError;
    } cases[] = {
        {"", "file: not JSON"},
        {"\x7f"
         "ELF",
         "file: not JSON"},
        {std::string(1000, '['), "file: nested deeper than 64 levels"},
        {"[]", "file: must be an object"},
        {"{}", "file.format: is missing"},
        {R"({"format":"other","version":1})", "file: isn't a scene of this version"},
        {R"({"format":"iohost scene","version":2})", "file: isn't a scene of this version"},
        {strHead + R"("nodes":{}})", "file.nodes: must be a list"},
        {strHead + R"("nodes":[1]})", "file.nodes[0]: must be an object"},
        {strHead + R"("nodes":[{"node":"n"}]})", "file.nodes[0].type: is missing"},
        {strHead + R"("nodes":[{"node":"n","type":"x"}]})", "file.nodes[0].type: \"x\" isn't a GUID"},
        {strHead + R"("nodes":[{"node":"n","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B09}","clip":null,"graph":"G"}]})",
         "file.nodes[0].type: the module makes no node of the type"},
        {strHead + R"("nodes":[)" + strNode + "}," + strNode + "}]}", R"(node: there is a node "n" already)"},
        {strHead + R"("nodes":[)" + strNode + R"(,"own":1}]})", "file.nodes[0].own: must be a list"},
        {strHead + R"("nodes":[)" + strNode + R"(,"own":[{"params":[]}]}]})", "file.nodes[0].own[0].id: is missing"},
        {strHead + R"("nodes":[)" + strNode + R"(,"own":[{"id":301}]}]})", "file.nodes[0].own[0].params: is missing"},
        {strHead + R"("nodes":[)" + strNode + R"(,"inputs":[{"id":301,"params":[{"id":2,"int":"1"}]}]}]})",
         "file.nodes[0].inputs[0].params[0].int: must be an integer"},
        {strHead + R"("nodes":[)" + strNode + R"(,"outputs":[{"id":351,"params":[{"id":9,"range":[1]}]}]}]})",
         "file.nodes[0].outputs[0].params[0].range: must be an array of 4 numbers"},
        {strHead + R"("clips":[{"name":"C","objects":[{"name":"O","matrix":[1]}]}]})",
         "file.clips[0].objects[0].matrix: must be an array of 16 numbers"},
        {strHead + R"("nodes":[)" + strNode + R"(}],"links":[{"from":"n","output":1,"to":"z","input":1}]})",
         R"(file.links[0].to: there is no node "z")"},
        {strHead + R"("nodes":[)" + strNode + R"(}],"links":[{"from":"n","output":99999,"to":"n","input":2}]})",
         "file.links[0].output: there is no parameter 99999 among the node's outputs"},
        {strHead + R"("nodes":[)" + strNode + R"(}],"links":[{"from":"n","output":366,"to":"n","input":88888}]})",
         "file.links[0].input: there is no parameter 88888 among the node's graph inputs"},
        {strHead + R"("nodes":[)" + strNode + R"(}],"links":[{"from":"n","output":2,"to":"n","input":2}]})",
         "file.links[0].output: there is no parameter 2 among the node's outputs"},
        {strHead + R"("clips":[{"name":"C","objects":[{"name":"O"},{"name":"P"},{"name":"O"}]}]})",
         R"(file.clips[0].objects[2].name: the clip has an object "O" already)"},
        {strHead + R"("clips":[{"name":"C","objects":[{"name":"O"}]},{"name":"C","objects":[{"name":"O"}]}]})",
         R"(file.clips[1].objects[0].name: the clip has an object "O" already)"},
    };
    const OrderedJson before = WholeScene();
    for (const auto& [strContent, strError] : cases) {
        EXPECT_EQ(Refusal(Load(strContent)).substr(0, strError.size()), strError) << strContent;
    }
    EXPECT_EQ(WholeScene(), before);
    EXPECT_EQ(Must(R"({"op":"objects"})")["objects"], OrderedJson::array());
    EXPECT_EQ(Must(R"({"op":"process"})")["results"].dump(), R"({"m":1,"k":0})"); // disabled by the link
}

TEST_F(SceneFile, FilesThatCannotBeUsedAreNamedByField) {
    const std::string strFolder = Quote(m_folder.Path());
    const std::string strNowhere = Quote(m_folder.Path() / "no" / "where.json");
    EXPECT_EQ(Refusal(R"({"op":"load","file":)" + strNowhere + "}"), "file: can't be read");
    EXPECT_EQ(Refusal(R"({"op":"load","file":)" + strFolder + "}"), "file: can't be read");
    EXPECT_EQ(Refusal(R"({"op":"save","file":)" + strNowhere + "}"), "file: can't be written");
    EXPECT_EQ(Refusal(R"({"op":"save","file":)" + strFolder + "}"), "file: isn't a regular file");
    EXPECT_EQ(Refusal(R"({"op":"save"})"), "file: is missing");
    EXPECT_EQ(Refusal(R"({"op":"load","file":1})"), "file: must be a string");
    // A save that failed leaves nothing beside the file.
    EXPECT_FALSE(std::filesystem::exists(m_folder.Path().string() + ".new"));
}

TEST_F(ProbeSceneFile, ParametersAndPinsThatTheNodeDoesNotMakeComeBack) {
    Json request = Json::parse(CREATE_PROBE);
    request["saved"] = {{"values", {{"505", 3}}},
                        {"choices", {13}},
                        {"pins", {{{"group", 110}, {"ids", {111}}}, {{"group", 999}, {"ids", {998, 102}}}}}};
    Must(request.dump());
    Must(R"({"op":"set","node":"p","param":12,"string":""})");
    Must(R"({"op":"set","node":"p","param":12,"string":"","own":true})");
    OrderedJson before = WholeScene();
    const std::string strFile = Quote(m_folder.Path() / "saved.json");
    Must(R"({"op":"save","file":)" + strFile + "}");
    Must(R"({"op":"load","file":)" + strFile + "}");
    // InitParam ran on the loaded set, as for any set out of a project.
    OrderedJson& text = before["nodes"][0][1]["own"][0]["params"][2]["string"];
    EXPECT_EQ(text, "");
    text = "+init";
    EXPECT_EQ(WholeScene(), before);
}

TEST_F(ProbeSceneFile, LinksOfDroppedPinsComeBack) {
    Must(CREATE_PROBE);
    Must(CREATE_SECOND_PROBE);
    Must(R"({"op":"link","from":"p","output":104,"to":"q","input":12})");
    Must(R"({"op":"link","from":"p","output":101,"to":"q","input":14})");
    Must(R"({"op":"link","from":"q","output":103,"to":"p","input":11})");
    Must(R"({"op":"drop","node":"p","param":104,"from":["outputs"]})");
    Must(R"({"op":"drop","node":"p","param":101,"from":["outputs"]})");
    Must(R"({"op":"drop","node":"p","param":11,"from":["own","inputs"]})");
    Must(R"({"op":"set","node":"p","param":10,"int":6})");
    const OrderedJson links = WholeScene()["links"];
    EXPECT_EQ(links.size(), 3u);
    const std::string strFile = Quote(m_folder.Path() / "saved.json");
    for (int nTimes = 0; nTimes < 2; ++nTimes) {
        Must(R"({"op":"save","file":)" + strFile + "}");
        Must(R"({"op":"load","file":)" + strFile + "}");
        EXPECT_EQ(WholeScene()["links"], links);
    }

    // The link of the dropped event is one of an event still.
    const auto seen = [this] {
        return Must(R"({"op":"inspect","node":"q"})")["outputs"][0]["params"][1]["int"].get<int>();
    };
    const int nSeen = seen();
    Must(R"({"op":"process"})");
    EXPECT_EQ(seen(), nSeen + 1);
}

TEST_F(ProbeSceneFile, LinksOfPinsThatAreGoneForGoodAreNotSaved) {
    Json request = Json::parse(CREATE_PROBE);
    request["saved"] = {{"pins", {{{"group", 999}, {"ids", {998, 102}}}}}};
    Must(request.dump());
    Must(R"({"op":"link","from":"p","output":998,"to":"p","input":14})");
    Must(R"({"op":"link","from":"p","output":102,"to":"p","input":10})");
    const std::string strFile = Quote(m_folder.Path() / "saved.json");
    Must(R"({"op":"save","file":)" + strFile + "}");
    Must(R"({"op":"load","file":)" + strFile + "}");
    EXPECT_EQ(Must(R"({"op":"scene"})")["links"].size(), 2u);
    Must(R"({"op":"drop","node":"p","param":998,"from":["outputs"]})");
    Must(R"({"op":"save","file":)" + strFile + "}");
    Must(R"({"op":"load","file":)" + strFile + "}");
    EXPECT_EQ(Must(R"({"op":"scene"})")["links"].dump(), R"([{"from":"p","output":102,"to":"p","input":10}])");
}

TEST_F(ProbeSceneFile, LinksOfPinsThatWereMadeLaterComeBack) {
    Json request = Json::parse(CREATE_PROBE);
    request["outputs"] = false;
    Must(request.dump());
    Must(R"({"op":"outputs","node":"p"})");
    Must(R"({"op":"link","from":"p","output":101,"to":"p","input":14})");
    Must(R"({"op":"drop","node":"p","param":101,"from":["outputs"]})");
    const std::string strFile = Quote(m_folder.Path() / "saved.json");
    Must(R"({"op":"save","file":)" + strFile + "}");
    Must(R"({"op":"load","file":)" + strFile + "}");
    EXPECT_EQ(Must(R"({"op":"scene"})")["links"].dump(), R"([{"from":"p","output":101,"to":"p","input":14}])");
}

TEST_F(ProbeSceneFile, NodeThatRaisesWhileLoadingIsRefused) {
    Must(CREATE_PROBE);
    Must(R"({"op":"set","node":"p","param":10,"int":8,"own":true})");
    const std::string strFile = Quote(m_folder.Path() / "saved.json");
    Must(R"({"op":"save","file":)" + strFile + "}");
    const OrderedJson before = WholeScene();
    EXPECT_EQ(AskJson(R"({"op":"load","file":)" + strFile + "}")["error"], "the module raised CInvalidArgException");
    EXPECT_EQ(WholeScene(), before);
}

} // namespace
