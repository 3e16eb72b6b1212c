// Opening and closing, replies as such, and what isn't a request at all.
#include "HostTest.h"
#include "protocol/Shapes.h"

namespace {

class Session : public CHostTest {};
class ProbeSession : public CProbeTest {};

TEST(SessionOpen, WhatCannotBeOpenedIsNamed) {
    const CTemporaryFolder folder;
    const auto& app = folder.Path();
    const std::pair<SSessionOptions, const char*> cases[] = {
        {{app, app / "none.so", ETextTable::Keys}, "there is no such file"},
        {{app, app, ETextTable::Keys}, "isn't a file"},
        {{app, folder.Write("text.so", "this is a text"), ETextTable::Keys}, "isn't a library"},
        {{app, NO_FUNCTION_FILE, ETextTable::Keys}, "has no function IOProcessFunc"},
        {{app, REFUSING_FILE, ETextTable::Keys}, "refused to be loaded"},
        {{app / "nowhere", MODULE_FILE, ETextTable::Keys}, "nowhere"},
        {{app, MODULE_FILE, ETextTable::Chinese}, "text table"},
    };
    for (const auto& [options, pszError] : cases) {
        std::string strError;
        EXPECT_EQ(CSession::Open(options, strError), nullptr);
        EXPECT_NE(strError.find(pszError), std::string::npos) << strError;
    }
}

TEST(SessionClose, IconsOfTheCatalogueAreDestroyed) {
    const CTemporaryFolder folder;
    const auto pHost = CHost::Open({folder.Path(), MODULE_FILE, ETextTable::Keys});
    const HICON hIcon = pHost->Catalogue()[0].hIcon;
    ASSERT_NE(hIcon, nullptr);
    pHost->Close();
    EXPECT_FALSE(DestroyIcon(hIcon));
}

TEST_F(Session, ReplyCarriesTheId) {
    for (const std::string strId : {"7", "\"a\"", "null", "true", "1.5"}) {
        EXPECT_EQ(Ask(R"({"op":"objects","id":)" + strId + "}"), R"({"ok":true,"id":)" + strId + R"(,"objects":[]})");
        EXPECT_EQ(Ask(R"({"op":"nope","id":)" + strId + "}"),
                  R"({"ok":false,"id":)" + strId + R"(,"error":"op: unknown op \"nope\""})");
    }
    EXPECT_EQ(Ask(R"({"op":"objects","colour":"red","node":5})"), R"({"ok":true,"objects":[]})");
}

TEST_F(Session, LongNamesAreCutInErrorsButNotWithinACharacter) {
    std::string strWide;
    for (int i = 0; i < 300'000; ++i) {
        strWide += "触";
    }
    EXPECT_EQ(Refusal({{"op", strWide}}), "op: unknown op \"" + strWide.substr(0, 63) + "...\"");
}

TEST_F(Session, WhatIsNoRequestIsRefusedAndTheSessionGoesOn) {
    Must(CREATE_MOUSE);
    for (const std::string& strText :
         {std::string(), std::string("garbage"), std::string("{"), std::string(R"({"op":"objects"}{"op":"objects"})"),
          std::string(R"({"op":NaN})"), std::string(R"({"op":1e999})"), std::string(R"({"op":"\ud800"})"),
          std::string("{\"op\":\"\xed\xa0\x80\"}"), std::string("{\"op\":\0}", 8),
          std::string("{\"op\":\"objects\"}\0{", 18), std::string("\xff\xd8\xff\xe0\x1a\x04"),
          std::string(100'000, '{')}) {
        EXPECT_EQ(RefusalOfText(strText).substr(0, 17), "request: not JSON") << strText.substr(0, 100);
    }
    for (const char* pszText : {"null", "17", "\"op\"", R"([{"op":"objects"}])"}) {
        EXPECT_EQ(RefusalOfText(pszText), "request: must be an object") << pszText;
    }
    std::string strObjects;
    for (int i = 0; i < 100'000; ++i) {
        strObjects += R"({"a":)";
    }
    const auto nested = [](size_t nLevels) {
        return R"({"op":"objects","x":)" + std::string(nLevels - 1, '[') + std::string(nLevels - 1, ']') + "}";
    };
    for (const std::string& strText : {strObjects, std::string(100'000, '['), nested(65)}) {
        EXPECT_EQ(RefusalOfText(strText), "request: nested deeper than 64 levels");
    }
    EXPECT_EQ(Ask(R"({"op":"objects","id":"\"[[)" + std::string(65, '[') + R"("})").substr(0, 11), R"({"ok":true,)");
    Must(Json::parse(nested(64)));
    Must("process node=m");
}

TEST_F(Session, TheDocumentedExampleHoldsWordForWord) {
    EXPECT_EQ(Ask(Request(CREATE_MOUSE).dump()), R"({"ok":true,"result":1,"created":true})");
    EXPECT_EQ(Ask(R"({"op":"process","node":"m"})"), R"({"ok":true,"results":{"m":1}})");
    EXPECT_EQ(
        Ask(R"({"op":"event","device":1,"event":3005,"payload":{"is":"pointer","rx":0.5,"ry":0.5,"x":960,"y":540,"pointer":0,"relative":0}})"),
        R"({"ok":true,"results":{"m":1},)"
        R"("posted":[{"node":"m","output":358,"via":"window","name":"GeneralEvent","event_id":2,"wparam":1,"params":[)"
        R"({"id":0,"name":"OwnerClip","display":"TOUCH_CONTROL_OWNER_CLIP","type":0,"control":8,"type_name":"VEKClip","points":"clip:Intro"},)"
        R"({"id":1,"name":"OwnerObject","display":"TOUCH_CONTROL_OWNER_OBJECT","type":0,"control":8,"type_name":"VEKObject","points":null},)"
        R"({"id":2,"name":"OwnerProperty","display":"TOUCH_CONTROL_OWNER_PROPERTY","type":0,"control":8,"type_name":"VEKProperty","points":"node:m"},)"
        R"({"id":3,"name":"OwnerEventID","display":"QOR_EXTRADATA_EVENT_ID","type":0,"control":8,"type_name":"EventID","points":"int:358"}]}],)"
        R"("log":[{"level":4,"args":[15,567,0,-1],"text":"[Intro.Mouse 1.IO_PROCESS_MOUSE]触发输出事件[左键按下]"}]})");
}

TEST_F(Session, QuitEndsTheSession) {
    Must(CREATE_MOUSE);
    EXPECT_FALSE(m_pSession->HasQuit());
    EXPECT_EQ(Ask(R"({"op":"quit","id":1})"), R"({"ok":true,"id":1})");
    EXPECT_TRUE(m_pSession->HasQuit());
    EXPECT_EQ(Ask(R"({"op":"objects"})"), R"({"ok":false,"error":"op: the session has ended"})");
    EXPECT_EQ(Frame()["error"], "op: the session has ended");
}

TEST_F(Session, CatalogueAndCallAreOfTheModule) {
    const OrderedJson types = Must("catalogue")["types"];
    ASSERT_GT(types.size(), 3u);
    EXPECT_EQ(types[3].dump(),
              R"({"guid":"{8164BB40-6B6A-4707-88B7-386BCB0D1B03}","kind":1,"name":"IO_PROCESS_MOUSE","aux":"",)"
              R"("tip":"IO_PROCESS_MOUSE","icon":true,"enable":1,"reserved":[0,0,0,0]})");
    EXPECT_EQ(Ask(R"({"op":"call","code":0})"), R"({"ok":true,"result":1})");
    EXPECT_EQ(Must("catalogue")["types"].size(), 2 * types.size());
    Talk(R"(
        call code=1 => {"result":1}
        call code=3 => {"result":1}
        call code=4 => {"result":0}
        call code=4294967295 => {"result":0}
    )");
}

TEST_F(ProbeSession, FaultsAreErrorsOfRequestsAndLinesOfFrames) {
    Must(CREATE_PROBE);
    Must(CREATE_SECOND_PROBE);
    Must("set node=q param=10 int=6");
    for (const auto& [nDo, strFault] : {std::pair{1, "the module raised CInvalidArgException"},
                                        std::pair{2, "the module raised a standard exception"}}) {
        Must({{"op", "set"}, {"node", "p"}, {"param", 10}, {"int", nDo}});
        EXPECT_EQ(AskObject("process")["error"], strFault);
        const OrderedJson happened = Frame(); // in which the others go on
        EXPECT_EQ(happened["posted"][0]["node"], "q");
        EXPECT_EQ(happened["log"].dump(), R"([{"level":32,"args":[0,0,0,0],"text":")" + std::string(strFault) + "\"}]");
    }
    Must("set node=p param=10 int=0");
    Must("process");
    const OrderedJson happened = Frame();
    EXPECT_EQ(happened.size(), 1u);
    EXPECT_EQ(Posted(happened), std::vector{101});
}

/// Keeps what happened between commands.
class CBetween final : public ISessionObserver {
public:
    void OnDone(const SDone& done) override {
        if (done.pCommand == nullptr) {
            activity.Append(done.activity);
        }
    }

    SActivity activity;
};

TEST_F(ProbeSession, ObserversHearOfHostLogLinesBetweenRequests) {
    CBetween between;
    m_pSession->Attach(between);
    for (const wchar_t* pszText : {L"outside", L"again"}) {
        NSVEKLog::WriteLog(LOG_INFORMATION, 1, 2, 3, 4, L"%s", pszText);
        EXPECT_EQ(Ask(R"({"op":"objects"})"), R"({"ok":true,"objects":[]})");
    }
    m_pSession->Detach(between);
    EXPECT_EQ(JsonObject(between.activity), R"({"log":[{"level":4,"args":[1,2,3,4],"text":"outside"},)"
                                            R"({"level":4,"args":[1,2,3,4],"text":"again"}]})");
}

TEST_F(ProbeSession, WhatHappensNamesItsNode) {
    Must(CREATE_PROBE);
    Talk(R"(
        set node=p param=10 int=4
        process => {"notified":[{"node":"p","wparam":0,"lparam":1}]}
        set node=p param=10 int=5
        process => {"redrawn":[{"node":"p"}]}
        set node=p param=10 int=3
    )");
    EXPECT_EQ(Ask(R"({"op":"process"})"), R"({"ok":true,"results":{"p":1},"posted":[)"
                                          R"({"node":"p","output":101,"via":"host","clip":"Intro","object":"Cube"},)"
                                          R"({"node":"p","output":101,"via":"host","clip":null,"object":null}]})");
    // A text that is no Unicode has replacement characters.
    EXPECT_EQ(Must("inspect node=p")["name"], "Probe \xEF\xBF\xBD");
}

TEST_F(Session, ChangedOutputsTellsEachChangeOnce) {
    Must(CREATE_MOUSE);
    COutputChanges changes;
    const auto take = [&] { return ToJson(changes.Take(m_pSession->Scene())); };
    const OrderedJson all = take();
    EXPECT_EQ(all["m"].size(), 7u); // the value outputs; events have no value
    EXPECT_EQ(all["m"]["370"].dump(), R"({"int":0,"float":0.0,"string":""})");
    EXPECT_EQ(take(), OrderedJson::object());
    Frame();
    Must(Event(1, 3013, PointerSample({{"rx", 1}, {"x", 3}})));
    Frame();
    EXPECT_EQ(take().dump(),
              R"({"m":{"370":{"int":3,"float":0.0,"string":""},"372":{"int":0,"float":1.0,"string":""}}})");
    changes.Forget();
    EXPECT_EQ(take()["m"].size(), 7u);
    Must("destroy node=m");
    EXPECT_EQ(take(), OrderedJson::object());
    Must(CREATE_MOUSE);
    EXPECT_EQ(take(), all);
}

} // namespace
