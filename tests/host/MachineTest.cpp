// keys, clock, main_window, objects and layout.
#include "HostTest.h"

#include <afxwin.h>

namespace {

class Machine : public CHostTest {};

TEST_F(Machine, KeysSetTheKeyboardState) {
    EXPECT_EQ(Ask(R"({"op":"keys","down":[16,65],"toggled":[20,65]})"), R"({"ok":true})");
    EXPECT_LT(GetKeyState(16), 0);
    EXPECT_LT(GetKeyState(65), 0);
    EXPECT_EQ(GetKeyState(65) & 1, 1);
    EXPECT_EQ(GetKeyState(20), 1);
    Must(R"({"op":"keys","down":[255],"toggled":[]})");
    EXPECT_EQ(GetKeyState(16), 0);
    EXPECT_EQ(GetKeyState(20), 0);
    EXPECT_LT(GetKeyState(255), 0);
}

TEST_F(Machine, WrongKeysChangeNothing) {
    Must(R"({"op":"keys","down":[16],"toggled":[]})");
    EXPECT_EQ(Refusal(R"({"op":"keys","down":[65,256],"toggled":[]})"), "down: 256 isn't a virtual-key code");
    EXPECT_EQ(Refusal(R"({"op":"keys","down":[],"toggled":["A"]})"), "toggled: must be an integer");
    EXPECT_EQ(Refusal(R"({"op":"keys","down":16,"toggled":[]})"), "down: must be a list");
    EXPECT_LT(GetKeyState(16), 0);
    EXPECT_EQ(GetKeyState(65), 0);
}

TEST_F(Machine, SessionLeavesTheKeyboardUp) {
    Must(R"({"op":"keys","down":[16],"toggled":[20]})");
    m_pSession.reset();
    EXPECT_EQ(GetKeyState(16), 0);
    EXPECT_EQ(GetKeyState(20), 0);
}

TEST_F(Machine, WrongTimesChangeNothing) {
    EXPECT_EQ(Ask(R"({"op":"clock","ms":123456})"), R"({"ok":true})");
    EXPECT_EQ(Refusal(R"({"op":"clock","ms":-1})"), "ms: must be a whole number");
    EXPECT_EQ(Refusal(R"({"op":"clock","ms":1.5})"), "ms: must be a whole number");
    EXPECT_EQ(Refusal(R"({"op":"clock"})"), "ms: is missing");
    EXPECT_EQ(Ask(R"({"op":"clock","ms":null})"), R"({"ok":true})");
}

TEST_F(Machine, MainWindowIsThereAndEnabledUnlessToldOtherwise) {
    ASSERT_NE(AfxGetApp(), nullptr);
    ASSERT_NE(AfxGetApp()->GetMainWnd(), nullptr);
    EXPECT_TRUE(AfxGetApp()->GetMainWnd()->IsWindowEnabled());
    EXPECT_EQ(Ask(R"({"op":"main_window","present":true,"enabled":false})"), R"({"ok":true})");
    EXPECT_FALSE(AfxGetApp()->GetMainWnd()->IsWindowEnabled());
    Must(R"({"op":"main_window","present":false,"enabled":true})");
    EXPECT_EQ(AfxGetApp()->GetMainWnd(), nullptr);
    Must(R"({"op":"main_window","present":true,"enabled":true})");
    EXPECT_TRUE(AfxGetApp()->GetMainWnd()->IsWindowEnabled());
    EXPECT_EQ(Refusal(R"({"op":"main_window","present":true})"), "enabled: is missing");
    EXPECT_EQ(Refusal(R"({"op":"main_window","present":1,"enabled":true})"), "present: must be true or false");
    m_pSession.reset();
    EXPECT_EQ(AfxGetApp()->GetMainWnd(), nullptr);
}

TEST_F(Machine, ObjectsAreListedWithTheirMatrix) {
    EXPECT_EQ(Ask(R"({"op":"objects"})"), R"({"ok":true,"objects":[]})");
    EXPECT_EQ(Ask(R"({"op":"object","clip":"Intro","name":"Cube"})"), R"({"ok":true})");
    EXPECT_EQ(Ask(R"({"op":"objects"})"), R"({"ok":true,"objects":[{"clip":"Intro","name":"Cube","matrix":)"
                                          R"([1.0,0.0,0.0,0.0,0.0,1.0,0.0,0.0,0.0,0.0,1.0,0.0,0.0,0.0,0.0,1.0]}]})");
    Must(R"({"op":"object","clip":"Other","name":"Cube"})");
    EXPECT_EQ(Refusal(R"({"op":"object","clip":"Intro","name":"Cube"})"),
              R"(name: the clip has an object "Cube" already)");
    EXPECT_EQ(Refusal(R"({"op":"object","clip":"Intro"})"), "name: is missing");
    EXPECT_EQ(Refusal(R"({"op":"object","name":"Cube"})"), "clip: is missing");
    EXPECT_EQ(Must(R"({"op":"objects"})")["objects"].size(), 2u);
}

TEST_F(Machine, LayoutTellsTheClassesOwnReader) {
    m_folder.Write("Plugins/NodePlugin/IOProcess/CVEKIOMouse.XML",
                   R"(<ParamLayout><Group id="301" name="Base param"><Param id="2"/></Group></ParamLayout>)");
    Must(CREATE_MOUSE);
    Json second = Json::parse(CREATE_MOUSE);
    second["node"] = "n";
    Must(second.dump());
    const OrderedJson first = Must(R"({"op":"layout","node":"m"})");
    EXPECT_EQ(first["groups"], 1);
    const std::string strPath = first["path"];
    EXPECT_TRUE(strPath.ends_with(R"(\Plugins\NodePlugin\IOProcess\CVEKIOMouse.XML)")) << strPath;
    for (const char* pszAddress : {"reader", "state", "array"}) {
        EXPECT_TRUE(first[pszAddress].is_string());
    }
    EXPECT_EQ(Must(R"({"op":"layout","node":"n"})"), first);
    // The layouts are released and read anew.
    Must(R"({"op":"call","code":1})");
    EXPECT_EQ(Must(R"({"op":"layout","node":"n"})"), first);
}

TEST_F(Machine, NodeWithoutLayoutHasNone) {
    Must(CREATE_KEYBOARD);
    EXPECT_EQ(Ask(R"({"op":"layout","node":"k"})"),
              R"({"ok":true,"path":"","reader":null,"state":null,"array":null,"groups":0})");
    EXPECT_EQ(Refusal(R"({"op":"layout","node":"x"})"), R"(node: there is no node "x")");
}

} // namespace
