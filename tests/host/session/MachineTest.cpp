// keys, clock, main_window, objects and layout: what nodes find around them.
#include "HostTest.h"

#include <afxwin.h>

namespace {

class Machine : public CHostTest {};

TEST_F(Machine, KeysSetTheKeyboardStateUntilTheSessionEnds) {
    Must("keys down=[16,65] toggled=[20,65]");
    EXPECT_LT(GetKeyState(16), 0);
    EXPECT_LT(GetKeyState(65), 0);
    EXPECT_EQ(GetKeyState(65) & 1, 1);
    EXPECT_EQ(GetKeyState(20), 1);
    Must("keys down=[255] toggled=[]");
    EXPECT_EQ(GetKeyState(16), 0);
    EXPECT_LT(GetKeyState(255), 0);
    EXPECT_EQ(GetKeyState(65), 0);
    m_pSession.reset();
    EXPECT_EQ(GetKeyState(255), 0);
}

TEST_F(Machine, NodesSeeKeysClockAndMainWindow) {
    Talk(R"(
        clock ms=100000
        create node=c type=key_check clip=Intro graph=Key
        set node=c param=1102 int=321
        keys down=[16,65] toggled=[]
        main_window present=false enabled=true
        process => {"results":{"c":0},"posted":null}
        main_window present=true enabled=false
        process => {"results":{"c":0},"posted":null}
        main_window present=true enabled=true
        process => {"results":{"c":1},"posted":[{"output":1152}]}
        clock ms=100050
        process => {"posted":[{"output":1153}]}
        clock ms=100249
        process => {"posted":null}
        clock ms=100250
        process => {"posted":[{"output":1153}]}
        # Past the end of 32 bits the count starts anew.
        clock ms=4294967296
        process => {"posted":null}
        clock ms=null => {"ok":true}
        keys down=[65] toggled=[]
        process => {"results":{"c":0},"posted":[{"output":1154}]}
    )");
}

TEST_F(Machine, MainWindowIsThereAndEnabledUnlessToldOtherwise) {
    ASSERT_NE(AfxGetApp(), nullptr);
    EXPECT_TRUE(AfxGetApp()->GetMainWnd()->IsWindowEnabled());
    Must("main_window present=true enabled=false");
    EXPECT_FALSE(AfxGetApp()->GetMainWnd()->IsWindowEnabled());
    Must("main_window present=false enabled=true");
    EXPECT_EQ(AfxGetApp()->GetMainWnd(), nullptr);
    Must("main_window present=true enabled=true");
    EXPECT_TRUE(AfxGetApp()->GetMainWnd()->IsWindowEnabled());
    m_pSession.reset();
    EXPECT_EQ(AfxGetApp()->GetMainWnd(), nullptr);
}

TEST_F(Machine, ObjectsAreListedWithTheirMatrix) {
    Talk(R"(
        objects => {"objects":[]}
        object clip=Intro name=Cube
        objects => {"objects":[{"clip":"Intro","name":"Cube","matrix":[1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1]}]}
        object clip=Other name=Cube
        object clip=Intro name=Cube => name: the clip has an object "Cube" already
        objects => {"objects":[{},{}]}
        # One that a node moves.
        create node=v type=handle clip=Intro graph=Hand
        set node=v param=802 string=Cube
        process
    )");
    Must(Event(3, 1, HandSample()));
    Talk(R"(objects => {"objects":[{"matrix":[1,0,0,0,0,1,0,0,0,0,1,0,10.5,-20.25,30,1]},)"
         R"({"matrix":[1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1]}]})");
}

TEST_F(Machine, LayoutTellsTheClassesOwnReader) {
    m_folder.Write("Plugins/NodePlugin/IOProcess/CVEKIOMouse.XML",
                   R"(<ParamLayout><Group id="301" name="Base param"><Param id="2"/></Group></ParamLayout>)");
    m_folder.Write("Plugins/NodePlugin/IOProcess/CVEKIOVRHandle.XML",
                   R"(<ParamLayout><Group id="801" name="Base param"/><Group id="802" name="More"/></ParamLayout>)");
    Must(CREATE_MOUSE);
    Must("create node=n type=mouse clip=null graph=G");
    Must("create node=v type=handle clip=null graph=G");
    Must(CREATE_KEYBOARD);
    const OrderedJson mouse = Must("layout node=m");
    const OrderedJson handle = Must("layout node=v");
    EXPECT_EQ(mouse["groups"], 1);
    EXPECT_EQ(handle["groups"], 2);
    EXPECT_TRUE(mouse["path"].get<std::string>().ends_with(R"(\Plugins\NodePlugin\IOProcess\CVEKIOMouse.XML)"));
    for (const char* pszAddress : {"reader", "state", "array"}) {
        EXPECT_TRUE(mouse[pszAddress].is_string());
        EXPECT_NE(mouse[pszAddress], handle[pszAddress]);
    }
    EXPECT_EQ(Must("layout node=n"), mouse);
    Must("call code=1"); // the layouts are released and read anew
    EXPECT_EQ(Must("layout node=n"), mouse);
    EXPECT_EQ(Ask(R"({"op":"layout","node":"k"})"),
              R"({"ok":true,"path":"","reader":null,"state":null,"array":null,"groups":0})");
    Talk(R"(layout node=x => node: there is no node "x")");
}

} // namespace
