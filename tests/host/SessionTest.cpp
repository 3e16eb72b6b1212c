// Opening and closing, replies as such, and what isn't a request at all.
#include "HostTest.h"
#include "protocol/Shapes.h"

namespace {

class Session : public CHostTest {};
class ProbeSession : public CProbeTest {};

std::string OpenError(const SSessionOptions& options) {
    std::string strError;
    EXPECT_EQ(CSession::Open(options, strError), nullptr);
    return strError;
}

TEST(SessionOpen, MissingModuleFileIsNamed) {
    const CTemporaryFolder folder;
    const std::string strError = OpenError({folder.Path(), folder.Path() / "none.so", ETextTable::Keys});
    EXPECT_NE(strError.find("none.so"), std::string::npos) << strError;
    EXPECT_NE(strError.find("there is no such file"), std::string::npos) << strError;
}

TEST(SessionOpen, FolderIsNoModule) {
    const CTemporaryFolder folder;
    EXPECT_NE(OpenError({folder.Path(), folder.Path(), ETextTable::Keys}).find("isn't a file"), std::string::npos);
}

TEST(SessionOpen, TextFileIsNoModule) {
    const CTemporaryFolder folder;
    const auto file = folder.Write("text.so", "this is a text");
    EXPECT_NE(OpenError({folder.Path(), file, ETextTable::Keys}).find("isn't a library"), std::string::npos);
}

TEST(SessionOpen, LibraryWithoutTheFunctionIsRefused) {
    const CTemporaryFolder folder;
    EXPECT_NE(OpenError({folder.Path(), NO_FUNCTION_FILE, ETextTable::Keys}).find("has no function IOProcessFunc"),
              std::string::npos);
}

TEST(SessionOpen, ModuleThatRefusesLoadingIsReported) {
    const CTemporaryFolder folder;
    EXPECT_NE(OpenError({folder.Path(), REFUSING_FILE, ETextTable::Keys}).find("refused to be loaded"),
              std::string::npos);
}

TEST(SessionOpen, MissingApplicationFolderIsNamed) {
    const CTemporaryFolder folder;
    EXPECT_NE(OpenError({folder.Path() / "nowhere", MODULE_FILE, ETextTable::Keys}).find("nowhere"), std::string::npos);
}

TEST(SessionOpen, MissingTextTableIsReported) {
    const CTemporaryFolder folder;
    EXPECT_NE(OpenError({folder.Path(), MODULE_FILE, ETextTable::Chinese}).find("text table"), std::string::npos);
}

TEST(SessionOpen, OnlyOneSessionAtATime) {
    const CTemporaryFolder folder;
    const SSessionOptions options{folder.Path(), MODULE_FILE, ETextTable::Keys};
    std::string strError;
    auto pSession = CSession::Open(options, strError);
    ASSERT_NE(pSession, nullptr);
    EXPECT_NE(OpenError(options).find("open in this process already"), std::string::npos);
    pSession.reset();
    EXPECT_NE(CSession::Open(options, strError), nullptr);
}

TEST(SessionOpen, TextTableFillsDisplayTexts) {
    const CTemporaryFolder folder;
    folder.Write("Config/Texts/zh.json", R"({"IO_PROCESS_MOUSE":"鼠标"})");
    std::string strError;
    const auto pSession = CSession::Open({folder.Path(), MODULE_FILE, ETextTable::Chinese}, strError);
    ASSERT_NE(pSession, nullptr) << strError;
    CNoFiles files;
    AnswerText(*pSession, CREATE_MOUSE, files);
    EXPECT_EQ(Answer(*pSession, {{"op", "inspect"}, {"node", "m"}}, files)["name"], "鼠标");
}

TEST(SessionClose, IconsOfTheCatalogueAreDestroyed) {
    const CTemporaryFolder folder;
    std::string strError;
    const auto pHost = CHost::Open({folder.Path(), MODULE_FILE, ETextTable::Keys}, strError);
    ASSERT_NE(pHost, nullptr) << strError;
    const HICON hIcon = pHost->Catalogue()[0].hIcon;
    ASSERT_NE(hIcon, nullptr);
    pHost->Close();
    EXPECT_FALSE(DestroyIcon(hIcon));
}

TEST_F(Session, ReplyCarriesTheId) {
    EXPECT_EQ(Ask(R"({"op":"objects","id":7})"), R"({"ok":true,"id":7,"objects":[]})");
    EXPECT_EQ(Ask(R"({"op":"objects","id":"a"})"), R"({"ok":true,"id":"a","objects":[]})");
    EXPECT_EQ(Ask(R"({"op":"objects","id":null})"), R"({"ok":true,"id":null,"objects":[]})");
    EXPECT_EQ(Ask(R"({"op":"objects","id":true})"), R"({"ok":true,"id":true,"objects":[]})");
    EXPECT_EQ(Ask(R"({"op":"objects"})"), R"({"ok":true,"objects":[]})");
    EXPECT_EQ(Ask(R"({"op":"nope","id":1.5})"), R"({"ok":false,"id":1.5,"error":"op: unknown op \"nope\""})");
}

TEST_F(Session, IdMustBeASimpleValue) {
    EXPECT_EQ(Refusal(R"({"op":"objects","id":[1]})"), "id: must be a string, a number, true, false or null");
    EXPECT_EQ(Refusal(R"({"op":"objects","id":{}})"), "id: must be a string, a number, true, false or null");
}

TEST_F(Session, UnknownOpIsRefusedByName) {
    EXPECT_EQ(Refusal(R"({"op":"fly"})"), R"(op: unknown op "fly")");
    EXPECT_EQ(Refusal(R"({"op":""})"), R"(op: unknown op "")");
}

TEST_F(Session, OpMustBeAString) {
    EXPECT_EQ(Refusal(R"({"op":1})"), "op: must be a string");
    EXPECT_EQ(Refusal("{}"), "op: is missing");
}

TEST_F(Session, UnknownFieldsAreIgnored) {
    Must(R"({"op":"objects","colour":"red","node":5})");
}

TEST_F(Session, LongNamesAreCutInErrors) {
    const std::string strError = Refusal(R"({"op":")" + std::string(1'000'000, 'x') + R"("})");
    EXPECT_LT(strError.size(), 200u);
    // Not within a character.
    std::string strWide;
    for (int i = 0; i < 100; ++i) {
        strWide += "触";
    }
    EXPECT_EQ(Refusal(R"({"op":")" + strWide + R"("})"), "op: unknown op \"" + strWide.substr(0, 63) + "...\"");
}

TEST_F(Session, WhatIsNoRequestIsRefusedAndTheSessionGoesOn) {
    Must(CREATE_MOUSE);
    const struct {
        std::string strText;
        std::string strError;
    } cases[] = {
        {"", "request: not JSON"},
        {" ", "request: not JSON"},
        {"garbage", "request: not JSON"},
        {"{", "request: not JSON"},
        {"}", "request: not JSON"},
        {"{\"op\"}", "request: not JSON"},
        {"{\"op\":\"objects\"", "request: not JSON"},
        {"{\"op\":\"objects\"}{\"op\":\"objects\"}", "request: not JSON"},
        {"{'op':'objects'}", "request: not JSON"},
        {"{\"op\":\"objects\",}", "request: not JSON"},
        {"{\"op\":objects}", "request: not JSON"},
        {"{\"op\":\"obj", "request: not JSON"},
        {"{\"op\":NaN}", "request: not JSON"},
        {"{\"op\":01}", "request: not JSON"},
        {"{\"op\":1e999}", "request: not JSON"},
        {"{\"op\":\"\\x\"}", "request: not JSON"},
        {"{\"op\":\"\\ud800\"}", "request: not JSON"},
        {"{\"op\":\"\\udc00\"}", "request: not JSON"},
        {"{\"op\":\"\xff\xfe\"}", "request: not JSON"},
        {"{\"op\":\"\xc0\x80\"}", "request: not JSON"},
        {"{\"op\":\"\xed\xa0\x80\"}", "request: not JSON"},
        {"{\"op\":\"a\tb\"}", "request: not JSON"},
        {std::string("{\"op\":\0}", 8), "request: not JSON"},
        {std::string("\x7f"
                     "ELF\x02\x01\x01\0\0\0",
                     10),
         "request: not JSON"},
        {"\xff\xd8\xff\xe0\x1a\x04", "request: not JSON"},
        {"null", "request: must be an object"},
        {"true", "request: must be an object"},
        {"17", "request: must be an object"},
        {"\"op\"", "request: must be an object"},
        {"[]", "request: must be an object"},
        {"[{\"op\":\"objects\"}]", "request: must be an object"},
        {std::string(100'000, '['), "request: nested deeper than 64 levels"},
        {std::string(100'000, '{'), "request: not JSON"},
    };
    for (const auto& [strText, strError] : cases) {
        EXPECT_EQ(Refusal(strText).substr(0, strError.size()), strError) << strText.substr(0, 100);
    }
    std::string strObjects;
    for (int i = 0; i < 100'000; ++i) {
        strObjects += R"({"a":)";
    }
    EXPECT_EQ(Refusal(strObjects), "request: nested deeper than 64 levels");
    Must(R"({"op":"process","node":"m"})");
}

TEST_F(Session, NestingUpTo64LevelsIsTaken) {
    const auto nested = [](int nLevels) {
        return R"({"op":"objects","x":)" + std::string(static_cast<size_t>(nLevels - 1), '[') +
               std::string(static_cast<size_t>(nLevels - 1), ']') + "}";
    };
    Must(nested(64));
    EXPECT_EQ(Refusal(nested(65)), "request: nested deeper than 64 levels");
}

TEST_F(Session, TheDocumentedExampleHoldsWordForWord) {
    EXPECT_EQ(Ask(CREATE_MOUSE), R"({"ok":true,"result":1,"created":true})");
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
    EXPECT_EQ(Frame(), OrderedJson::object());
}

TEST_F(Session, CatalogueShowsTheThirteenTypes) {
    const OrderedJson types = Must(R"({"op":"catalogue"})")["types"];
    ASSERT_EQ(types.size(), 13u);
    EXPECT_EQ(types[3].dump(),
              R"({"guid":"{8164BB40-6B6A-4707-88B7-386BCB0D1B03}","kind":1,"name":"IO_PROCESS_MOUSE","aux":"",)"
              R"("tip":"IO_PROCESS_MOUSE","icon":true,"enable":1,"reserved":[0,0,0,0]})");
}

TEST_F(Session, CallRunsAnyOperationCode) {
    EXPECT_EQ(Ask(R"({"op":"call","code":0})"), R"({"ok":true,"result":1})");
    EXPECT_EQ(Must(R"({"op":"catalogue"})")["types"].size(), 26u);
    for (const int nCode : {1, 2, 3}) {
        EXPECT_EQ(AskObject(Json{{"op", "call"}, {"code", nCode}})["result"], 1) << nCode;
    }
    EXPECT_EQ(Ask(R"({"op":"call","code":4})"), R"({"ok":true,"result":0})");
    EXPECT_EQ(Ask(R"({"op":"call","code":4294967295})"), R"({"ok":true,"result":0})");
    EXPECT_EQ(Refusal(R"({"op":"call","code":4294967296})"), "code: is outside the unsigned 32-bit range");
    EXPECT_EQ(Refusal(R"({"op":"call","code":-1})"), "code: is outside the unsigned 32-bit range");
    EXPECT_EQ(Refusal(R"({"op":"call"})"), "code: is missing");
}

TEST_F(Session, FrameEvaluatesAllNodes) {
    Must(CREATE_MOUSE);
    Must(R"({"op":"event","device":1,"event":3005})");
    EXPECT_EQ(Frame(), OrderedJson::object());
    EXPECT_EQ(Ask(R"({"op":"event","device":1,"event":3006})").substr(0, 30), R"({"ok":true,"results":{"m":1},")");
}

TEST_F(ProbeSession, FrameReturnsWhatHappened) {
    Must(CREATE_PROBE);
    Must(R"({"op":"set","node":"p","param":10,"int":6})");
    const OrderedJson happened = Frame();
    ASSERT_EQ(happened.size(), 1u);
    EXPECT_EQ(happened["posted"][0]["output"], 101);
}

TEST_F(ProbeSession, FaultInAFrameIsLoggedAndTheOthersGoOn) {
    Must(CREATE_PROBE);
    Must(CREATE_SECOND_PROBE);
    Must(R"({"op":"set","node":"p","param":10,"int":1})");
    Must(R"({"op":"set","node":"q","param":10,"int":6})");
    const OrderedJson happened = Frame();
    EXPECT_EQ(happened["posted"][0]["node"], "q");
    EXPECT_EQ(happened["log"].dump(),
              R"([{"level":32,"args":[0,0,0,0],"text":"the module raised CInvalidArgException"}])");
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
    NSVEKLog::WriteLog(LOG_INFORMATION, 1, 2, 3, 4, L"%s", L"outside");
    EXPECT_EQ(Ask(R"({"op":"objects"})"), R"({"ok":true,"objects":[]})");
    NSVEKLog::WriteLog(LOG_INFORMATION, 1, 2, 3, 4, L"%s", L"again");
    Ask(R"({"op":"objects"})");
    m_pSession->Detach(between);
    EXPECT_EQ(ToJson(between.activity).dump(), R"({"log":[{"level":4,"args":[1,2,3,4],"text":"outside"},)"
                                               R"({"level":4,"args":[1,2,3,4],"text":"again"}]})");
}

TEST_F(ProbeSession, TextsThatAreNoUnicodeBecomeReplacementCharacters) {
    Must(CREATE_PROBE);
    EXPECT_EQ(Must(R"({"op":"inspect","node":"p"})")["name"], "Probe \xEF\xBF\xBD");
}

TEST_F(ProbeSession, ExceptionOfTheModuleBecomesAnErrorReply) {
    Must(CREATE_PROBE);
    Must(R"({"op":"set","node":"p","param":10,"int":1})");
    EXPECT_EQ(Ask(R"({"op":"process"})"), R"({"ok":false,"error":"the module raised CInvalidArgException"})");
    Must(R"({"op":"set","node":"p","param":10,"int":2})");
    EXPECT_EQ(Ask(R"({"op":"process"})"), R"({"ok":false,"error":"the module raised a standard exception"})");
    Must(R"({"op":"set","node":"p","param":10,"int":0})");
    EXPECT_EQ(Ask(R"({"op":"process"})"), R"({"ok":true,"results":{"p":1}})");
}

TEST_F(ProbeSession, NotificationsAndRedrawsNameTheirNode) {
    Must(CREATE_PROBE);
    Must(R"({"op":"set","node":"p","param":10,"int":4})");
    EXPECT_EQ(Ask(R"({"op":"process"})"),
              R"({"ok":true,"results":{"p":1},"notified":[{"node":"p","wparam":0,"lparam":1}]})");
    Must(R"({"op":"set","node":"p","param":10,"int":5})");
    EXPECT_EQ(Ask(R"({"op":"process"})"), R"({"ok":true,"results":{"p":1},"redrawn":[{"node":"p"}]})");
}

TEST_F(ProbeSession, EventsPostedToTheHostCarryClipAndObject) {
    Must(CREATE_PROBE);
    Must(R"({"op":"set","node":"p","param":10,"int":3})");
    EXPECT_EQ(Ask(R"({"op":"process"})"), R"({"ok":true,"results":{"p":1},"posted":[)"
                                          R"({"node":"p","output":101,"via":"host","clip":"Intro","object":"Cube"},)"
                                          R"({"node":"p","output":101,"via":"host","clip":null,"object":null}]})");
}

TEST_F(Session, ChangedObjectsTellsAllOfThemWhenOneMoved) {
    CObjectChanges changes;
    const auto take = [&] { return ToJson(changes.Take(m_pSession->Scene())); };
    EXPECT_EQ(take(), OrderedJson::array());
    EXPECT_TRUE(take().is_null());
    Must(R"({"op":"object","clip":"Clip","name":"Lamp"})");
    Must(R"({"op":"object","clip":"Clip","name":"Door"})");
    const OrderedJson objects = take();
    ASSERT_EQ(objects.size(), 2u);
    EXPECT_EQ(objects, Must(R"({"op":"objects"})")["objects"]);
    EXPECT_TRUE(take().is_null());

    Must(R"({"op":"create","node":"v","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B08}","clip":"Clip","graph":"Hand"})");
    Must(R"({"op":"set","node":"v","param":802,"string":"Door"})");
    Must(R"({"op":"process"})");
    Must(R"({"op":"event","device":3,"event":0,"payload":{"is":"vr","hand":0,"trigger":0,"pad":0,"padx":0,"pady":0,
             "pose":[1,0,0,0,0,1,0,0,0,0,1,0,7,8,9,1],"hit":[0,0,0],"press":0,"release":0}})");
    const OrderedJson moved = take();
    ASSERT_EQ(moved.size(), 2u);
    EXPECT_EQ(moved[0], objects[0]);
    EXPECT_EQ(moved[1]["matrix"][13], 8);
    EXPECT_TRUE(take().is_null());
    changes.Forget();
    EXPECT_EQ(take().size(), 2u);
}

TEST_F(Session, ChangedOutputsTellsEachChangeOnce) {
    Must(CREATE_MOUSE);
    COutputChanges changes;
    const auto take = [&] { return ToJson(changes.Take(m_pSession->Scene())); };
    OrderedJson changed = take();
    EXPECT_EQ(changed["m"].size(), 7u); // the value outputs; events have no value
    EXPECT_EQ(changed["m"]["370"].dump(), R"({"int":0,"float":0.0,"string":""})");
    EXPECT_EQ(take(), OrderedJson::object());

    Frame();
    Must(
        R"({"op":"event","device":1,"event":3013,"payload":{"is":"pointer","rx":1,"ry":2,"x":3,"y":0,"pointer":0,"relative":0}})");
    Frame();
    changed = take();
    EXPECT_EQ(changed["m"].size(), 3u);
    EXPECT_EQ(changed["m"]["370"]["int"], 3);
    EXPECT_EQ(changed["m"]["372"]["float"], 1.0);
    EXPECT_EQ(changed["m"]["373"]["float"], 2.0);

    changes.Forget();
    EXPECT_EQ(take()["m"].size(), 7u);
    Must(R"({"op":"destroy","node":"m"})");
    EXPECT_EQ(take(), OrderedJson::object());
    Must(CREATE_MOUSE);
    EXPECT_EQ(take()["m"].size(), 7u);
}

} // namespace
