// What the session keeps for people: the last lines of its log, and what became of each node.
#include "HostTest.h"

#include "base/HostLine.h"
#include "engine/LogLines.h"
#include "host/NodeTypeGuid.h"
#include "protocol/Pushes.h"

namespace {

class LogAndCounts : public CHostTest {
protected:
    OrderedJson Counts(const std::string& strNode) { return Must("counters")["nodes"][strNode]; }
};

TEST_F(LogAndCounts, TheLogIsThereForWhoeverComesLater) {
    Talk(R"(
        log => {"lines":[]}
        create node=k type=keyboard clip=Intro graph=K
        process
    )");
    const auto nBefore =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::system_clock::now().time_since_epoch())
            .count();
    const OrderedJson first = Must(Event(0, 2002, KeyText("a")))["log"][0];
    Must("clock ms=5000"); // the module's, which isn't the log's
    Must(Event(0, 2003, KeyText("a")));
    const OrderedJson lines = Must("log")["lines"];
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_TRUE(
        Matches(lines[0], {{"n", 1}, {"level", first["level"]}, {"args", first["args"]}, {"text", first["text"]}}));
    EXPECT_GE(lines[0]["ms"], nBefore);
    EXPECT_GE(lines[1]["ms"], lines[0]["ms"]);
    Talk(R"(
        log after=1 => {"lines":[{"n":2}]}
        log after=2 => {"lines":[]}
        log after=7 => {"lines":[]}
        log after=-1 => after: must be a whole number
    )");
    WriteHostLine(LOG_INFORMATION, "the host's own are in it, too");
    Talk(R"(log after=2 => {"lines":[{"n":3,"args":[0,0,0,0],"text":"the host's own are in it, too"}]})");
}

TEST(LogLines, KeepsTheLastOnes) {
    CLogLines log;
    for (size_t i = 0; i < CLogLines::MOST_LINES + 5; ++i) {
        log.Add({4, {}, L"line", {}});
    }
    EXPECT_EQ(log.Behind(0).size(), CLogLines::MOST_LINES);
    EXPECT_EQ(log.Behind(0).front().nNumber, 6u);
    EXPECT_EQ(log.Behind(5).size(), CLogLines::MOST_LINES);
    EXPECT_EQ(log.Behind(6).front().nNumber, 7u);
    // Long ones cost no more memory than that.
    const CString strLong(L'x', static_cast<int>(CLogLines::MOST_CHARACTERS / 2));
    log.Add({4, {}, strLong, {}});
    EXPECT_EQ(log.Behind(0).size(), CLogLines::MOST_LINES);
    log.Add({4, {}, strLong, {}});
    EXPECT_EQ(log.Behind(0).size(), 2u);
    log.Add({4, {}, strLong + strLong + strLong, {}});
    EXPECT_EQ(log.Behind(0).size(), 1u) << "the last one is there, however long";
}

TEST_F(LogAndCounts, ConnectionsAreToldTheBeginningOfLongLines) {
    WriteHostLine(LOG_INFORMATION, std::string(70'000, 'x'));
    EXPECT_EQ(Must("log")["lines"][0]["text"].get<std::string>().size(), 70'000u);
    SDone done = m_pSession->Do(SLogCommand{});
    CutForViewers(done);
    const OrderedJson line = OrderedJson::parse(ReplyTo(done))["lines"][0];
    EXPECT_EQ(line["text"].get<std::string>().size(), 65'536u);
    EXPECT_EQ(line.value("length", 0), 70'000);
}

TEST_F(LogAndCounts, OfManyLongTextsConnectionsAreToldTheirBeginnings) {
    constexpr int LENGTH = 70'000;
    constexpr int MOST = 65'536;
    Push push = SOutputsPush{OutputValues(100)};
    OutputValues& values = std::get<SOutputsPush>(push).nodes;
    for (auto& [strHandle, outputs] : values) {
        outputs.emplace_back(1, SValues{.strText = CString(L'x', LENGTH)});
    }
    for (int nTimes = 0; nTimes < 2; ++nTimes) { // what is cut stays as it is
        CutForViewers(push);
        int nTold = 0;
        for (const auto& [strHandle, outputs] : values) {
            nTold += outputs[0].second.strText.GetLength();
            EXPECT_EQ(outputs[0].second.length, LENGTH);
        }
        EXPECT_EQ(values.front().second[0].second.strText.GetLength(), MOST);
        EXPECT_EQ(values.back().second[0].second.strText.GetLength(), 300);
        EXPECT_EQ(nTold, 16 * MOST + 84 * 300);
    }
}

TEST_F(LogAndCounts, OfLongNamesConnectionsAreToldTheBeginnings) {
    const CString strLong(L'x', 70'000);
    m_pSession->Do(
        SCreateCommand{{.strHandle = "k", .guidType = GUID_IOPROCESS_KEYBOARD, .clip = strLong, .strGraph = {}}});
    Must("process");
    SKeyEventData key;
    key.m_strText = L"A";
    SDone done = m_pSession->Do(SEventCommand{.nDevice = DEVICE_KEYBOARD, .nEvent = 2002, .payload = key});
    CutForViewers(done);
    const OrderedJson points = OrderedJson::parse(ReplyTo(done))["posted"][0]["params"][0]["points"];
    EXPECT_EQ(points.get<std::string>().size(), std::string("clip:").size() + 65'536u);

    const std::string strOf(70'000, 'x');
    Push push = SHistoryPush{SStep{"Rename " + strOf, "rename", strOf}, {}, 1, {}, {}};
    CutForViewers(push);
    const SStep& step = *std::get<SHistoryPush>(push).undo;
    EXPECT_EQ(step.strOf.size(), 65'536u);
    EXPECT_EQ(step.strName, "Rename " + step.strOf);
}

TEST_F(LogAndCounts, EventsCountAtTheNodesThatTakeAndFireThem) {
    Must(CREATE_MOUSE);
    Must(CREATE_KEYBOARD);
    Must("create node=send type=send clip=Intro graph=S"); // answers every record with 1
    Must("process");
    EXPECT_EQ(Counts("m").dump(), R"({"fired":0,"received":0,"matched":0,"rejected":0,"sent":0,"dropped":0})");
    for (const int nEvent : {3005, 3006, 3005}) {
        Must(Event(1, nEvent, PointerSample()));
    }
    Must(Event(0, 2002, KeyText("a")));
    Talk(R"(
        counters => {"nodes":{"m":{"fired":3,"received":3,"outputs":{"358":2,"362":1}},"k":{"fired":1,"received":1},"send":{"received":0}}}
        destroy node=k
        create node=k type=keyboard clip=Intro graph=K
        counters => {"nodes":{"m":{"fired":3},"k":{"fired":0,"received":0}}}
    )");
}

TEST_F(LogAndCounts, CountersBeginAnewWhenTheyAreReset) {
    Must(CREATE_MOUSE);
    Must(CREATE_KEYBOARD);
    Must("process");
    const OrderedJson fresh = Counts("m");
    const auto act = [this] {
        Must("event device=1 event=3005");
        Must(Event(0, 2002, KeyText("a")));
        m_pSession->TakeChangedCounts();
    };
    act();
    const OrderedJson history = Must("history");
    Talk(R"(
        reset_counters node=m
        counters => {"nodes":{"m":{"fired":0,"received":0,"outputs":null},"k":{"fired":1}}}
        reset_counters node=x => node: there is no node "x"
    )");
    EXPECT_EQ(ToJson(m_pSession->TakeChangedCounts())["nodes"], (OrderedJson{{"m", fresh}}));
    act();
    EXPECT_EQ(Counts("m")["outputs"].dump(), R"({"358":1})");
    Must("reset_counters");
    EXPECT_EQ(ToJson(m_pSession->TakeChangedCounts())["nodes"], (OrderedJson{{"m", fresh}, {"k", fresh}}));
    EXPECT_EQ(Must("history"), history) << "it's no step";
}

TEST_F(LogAndCounts, TextsCountAsTheirVerdictsSay) {
    Talk(R"(
        create node=j type=device_json clip=Intro graph=J
        set node=j param=1402 int=3
        set node=j param=1403 int=1
        set node=j param=1404 string=scene
        process
    )");
    const auto text = [this](int nDevice, const char* pszText) {
        Must(Event(5, 0, {{"is", "device_text"}, {"device", nDevice}, {"text", pszText}}));
    };
    text(3, R"({"scene":""})");
    text(3, R"({"level":1})");
    text(3, "no JSON");
    text(4, R"({"scene":""})"); // for another node
    Talk(R"(counters => {"nodes":{"j":{"matched":1,"rejected":2,"received":1,"fired":1}}})");
}

TEST_F(LogAndCounts, TheChangedCountsAreToldOnce) {
    const auto changed = [this] { return ToJson(m_pSession->TakeChangedCounts())["nodes"]; };
    Must(CREATE_MOUSE);
    Must(CREATE_KEYBOARD);
    Must("process");
    EXPECT_TRUE(Matches(changed(), {{"m", {{"fired", 0}}}, {"k", {{"fired", 0}}}})) << "of new nodes, too";
    EXPECT_EQ(changed(), OrderedJson::object());
    Must("event device=1 event=3005");
    EXPECT_TRUE(Matches(changed(), {{"m", {{"fired", 1}, {"outputs", {{"358", 1}}}}}, {"k", nullptr}}));
    EXPECT_EQ(changed(), OrderedJson::object());
    m_pSession->ForgetToldCounts();
    EXPECT_EQ(changed().size(), 2u);
}

TEST_F(LogAndCounts, HowLongAgoANodeActedIsKnownToTheFrameWhoeverLookedThen) {
    const auto idle = [this] {
        m_pSession->ForgetToldCounts();
        return ToJson(m_pSession->TakeChangedCounts())["idle_ms"];
    };
    Must(CREATE_MOUSE);
    Must(CREATE_KEYBOARD);
    Must("process frame=true");
    EXPECT_EQ(idle(), nullptr);
    Must("event device=1 event=3005");
    Must("clock ms=1000");
    Must("process frame=true");
    Must("clock ms=6000");
    Must("process frame=true");
    EXPECT_EQ(idle().dump(), R"({"m":5000})");
    Must("reset_counters");
    EXPECT_EQ(idle().dump(), R"({"m":5000})") << "it did act";
    Must("clock ms=0");
    EXPECT_EQ(idle().dump(), R"({"m":0})") << "the clock was set back";
}

// ---- Broadcasts -----------------------------------------------------------------------------------------------------

TEST_F(LogAndCounts, ABroadcastThatIsHeldBackIsALineOfTheLog) {
    Talk(R"(
        create node=b type=broadcast_send clip=Clip graph=G
        set node=b param=605 string=data
        process
        listen_only on=true
        trigger node=b param=606
    )");
    EXPECT_EQ(Must("process")["log"].back()["text"], R"(a broadcast of the node "b" was held back: listen-only is on)");
    Talk(R"(
        trigger node=b param=606
        process => {"log":null}
        listen_only on=false
    )");
}

} // namespace
