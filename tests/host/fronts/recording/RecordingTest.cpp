// Recordings: what is kept of a session, and that a replay answers the same.
#include "HostTest.h"

#include <chrono>
#include <sstream>

#include "NetworkPeers.h"
#if __has_include(<fcntl.h>) && !defined(_WIN32)
#include <fcntl.h>
#include <unistd.h>
#endif
#include "base/LineReader.h"
#include "fronts/recording/Recorder.h"
#include "fronts/recording/Replay.h"
#include "network/Peers.h"
#include "protocol/Shapes.h"

namespace {

constexpr char CREATE_BROADCAST_RECEIVE[] = R"(create node=b type=broadcast_receive clip=Intro graph="Rev 1")";
constexpr char CREATE_STRING_SEND[] = R"(create node=s type=string_send clip=Intro graph="Send 1")";
constexpr char PRESS_LEFT[] = "event device=1 event=3005";

class Recording : public CHostTest {
protected:
    explicit Recording(const char* pszModuleFile = MODULE_FILE)
        : CHostTest(pszModuleFile), m_strModuleFile(pszModuleFile), m_file(m_folder.Path() / "recording.jsonl") {}

    void Record() {
        std::string strError;
        m_pRecorder = CRecorder::Open(*m_pSession, m_file, strError);
        ASSERT_NE(m_pRecorder, nullptr) << strError;
    }

    void End() {
        m_pRecorder = nullptr;
        m_pSession = nullptr;
    }

    /// The lines so far, with those of the clock or without.
    std::vector<Json> Lines(bool bClock = false) const {
        std::vector<Json> lines;
        std::istringstream text(ReadAll(m_file));
        for (std::string strLine; std::getline(text, strLine);) {
            Json line = Json::parse(strLine);
            if (bClock || line["op"] != "clock") {
                lines.push_back(std::move(line));
            }
        }
        return lines;
    }

    /// End this session and replay the file, with this text in it, in a new one. Returns what was printed.
    std::string Replay(CReplay::EResult nExpected, const std::string& strText) {
        End();
        std::string strError;
        const auto pReplay = CReplay::Open(m_folder.Write("changed.jsonl", strText), strError);
        if (pReplay == nullptr) {
            ADD_FAILURE() << strError;
            return {};
        }
        Reopen({.appFolder = m_folder.Path(),
                .moduleFile = m_strModuleFile,
                .texts = pReplay->Texts(),
                .bMayBroadcast = false});
        std::ostringstream output;
        EXPECT_EQ(pReplay->Run(*m_pSession, output), nExpected) << output.str();
        return output.str();
    }

    /// The file as it is must give the same replies.
    void ReplaysTheSame() {
        const std::string strText = ReadAll(m_file);
        const auto nLines = std::to_string(std::ranges::count(strText, '\n'));
        EXPECT_EQ(Replay(CReplay::EResult::Same, strText),
                  nLines + " requests replayed: all replies are as recorded\n");
    }

    /// The file with one text replaced by another.
    std::string Changed(const std::string& strOld, const std::string& strNew) const {
        std::string strText = ReadAll(m_file);
        const size_t nPlace = strText.find(strOld);
        EXPECT_NE(nPlace, std::string::npos) << strOld;
        return strText.replace(nPlace, strOld.size(), strNew);
    }

    const std::string m_strModuleFile;
    const std::filesystem::path m_file;
    std::unique_ptr<CRecorder> m_pRecorder;
};

class ProbeRecording : public Recording {
protected:
    ProbeRecording() : Recording(PROBE_FILE) {}
};

TEST_F(Recording, HoldsTheRequestsWithTheirReplies) {
    Record();
    Must(CREATE_MOUSE);
    Must("process id=7");
    AskObject("process node=none");
    for (const char* pszNoRequest : {R"({"op":"fly"})", R"({"no":"op"})", R"({"op":5})"}) {
        Ask(pszNoRequest);
    }
    const auto lines = Lines();
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0],
              Json::parse(R"({"op":"recording","version":1,"texts":"keys","rounding":true,"reply":{"ok":true}})"));
    EXPECT_EQ(lines[1]["reply"], Json::parse(R"({"ok":true,"result":1,"created":true})"));
    EXPECT_EQ(lines[2],
              Json::parse(R"({"op":"process","reply":{"ok":true,"results":{"m":1}}})")); // ids are the asker's
    EXPECT_EQ(lines[3]["reply"], Json::parse(R"({"ok":false,"error":"node: there is no node \"none\""})"));
    // The line front reads it as requests.
    const std::string strText = ReadAll(m_file);
    End();
    Reopen();
    std::istringstream text(strText);
    for (std::string strLine; std::getline(text, strLine);) {
        EXPECT_EQ(Json::parse(Ask(strLine)), Json::parse(strLine)["reply"]) << strLine;
    }
}

TEST_F(Recording, KeepsWhenNodesWereEvaluated) {
    Record();
    Must(CREATE_KEYBOARD);
    Must(CREATE_STRING_SEND);
    Talk(R"(
        devices list=[{"id":0,"name":"Wall","parser":"direct"}]
        link from=k output=154 to=s input=1505
        link from=k output=152 to=s input=1507
    )");
    Frame();
    EXPECT_FALSE(Must(Event(0, 2002, KeyText("A"))).contains("sent"));
    Must("evaluate on=event");
    EXPECT_EQ(Must(Event(0, 2002, KeyText("B")))["sent"][0]["raw"], "4200");
    ReplaysTheSame();
}

TEST_F(Recording, FramesTellTheOutputsThatChanged) {
    Record();
    Must(CREATE_KEYBOARD);
    Frame();
    Must(Event(0, 2002, KeyText("A")));
    Frame();
    Frame();
    const auto lines = Lines();
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[4]["op"], "process");
    EXPECT_EQ(lines[4]["frame"], true);
    EXPECT_EQ(lines[4]["reply"]["outputs"], Json::parse(R"({"k":{"154":{"int":0,"float":0.0,"string":"A"}}})"));
    EXPECT_FALSE(lines[5]["reply"].contains("outputs"));
    EXPECT_NE(Replay(CReplay::EResult::Different, Changed(R"("text":"A")", R"("text":"B")"))
                  .find("process: outputs/k/154/string: recorded \"A\", now \"B\"\n"),
              std::string::npos);
}

TEST_F(ProbeRecording, FaultsInAFrameAreReplayed) {
    Record();
    Must(CREATE_PROBE);
    Must(CREATE_SECOND_PROBE);
    Must("set node=p param=10 int=1");
    Must("set node=q param=10 int=6");
    Frame();
    EXPECT_EQ(Lines().back()["reply"]["results"], Json::parse(R"({"p":null,"q":1})"));
    ReplaysTheSame();
}

TEST_F(Recording, ClockIsStoppedWhileSomethingIsKept) {
    Record();
    Talk(R"(
        main_window present=true enabled=true
        create node=c type=key_check clip=Intro graph=Key
        set node=c param=1102 int=65
        set node=c param=1103 int=40
        keys down=[65] toggled=[]
    )");
    int nHolds = 0;
    EXPECT_TRUE(Until([&] { return nHolds == 2; }, [&] { nHolds += Posted(Frame()) == std::vector{1153} ? 1 : 0; }));
    // One that a request sets is left alone.
    const auto clocks = [&] {
        return std::ranges::count(Lines(true), "clock", [](const Json& line) { return line["op"]; });
    };
    Must("clock ms=5000");
    const auto nClocks = clocks();
    Frame();
    EXPECT_EQ(clocks(), nClocks);
    Must("clock ms=null");
    Frame();
    EXPECT_EQ(clocks(), nClocks + 2);
    ReplaysTheSame();
}

TEST_F(Recording, NetworkItemsAreKeptAsEvents) {
    CTestPeers peers;
    Record();
    Must(CREATE_BROADCAST_RECEIVE);
    Must("set node=b param=1302 string=\"1\"");
    Must("process");
    const int nPort = Must("listen address=127.0.0.1 broadcast=0")["broadcast"];
    peers.SendDatagram(static_cast<unsigned short>(nPort), BROADCAST);
    ASSERT_EQ(Must("wait ms=60000")["dispatched"].size(), 1u);
    Frame();
    const auto lines = Lines();
    ASSERT_EQ(lines.size(), 6u); // neither `listen` nor `wait`
    EXPECT_EQ(lines[4],
              Json::parse(R"({"op":"event","from":"broadcast","device":2,"event":1,)"
                          R"("payload":{"is":"broadcast","flag":"1","clip":"Intro","name":"score","data":"12|7"},)"
                          R"("reply":{"ok":true,"results":{"b":1}}})"));
    EXPECT_EQ(lines[5]["reply"]["outputs"]["b"]["1353"]["string"], "12|7");
    ReplaysTheSame();
}

TEST_F(Recording, DevicesAreKeptWithoutTheirAddressesAndWithoutWhatReachesThem) {
    CTestPeers peers;
    CTestPeers::CListener listener(peers);
    Record();
    Must(CREATE_STRING_SEND);
    Must("devices list=[{\"id\":4,\"name\":\"d\",\"parser\":\"direct\",\"address\":\"" + listener.Address() + "\"}]");
    Talk(R"(
        set node=s param=1503 int=4
        set node=s param=1505 string=text
        trigger node=s param=1507
        process => {"sent":[{"raw":"7465787400"}]}
    )");
    Must("device device=5 name=d parser=direct address=" + listener.Address());
    Must("connect device=5");
    Must("send device=5 text=cue");
    Must("remove_device device=5");
    EXPECT_EQ(ReadAll(m_file).find(listener.Address()), std::string::npos);
    const auto lines = Lines();
    ASSERT_EQ(lines.size(), 9u);
    EXPECT_EQ(lines[7], Json::parse(R"({"op":"device","device":5,"name":"d","parser":"direct","address":null,)"
                                    R"("drop_after":2.0,"reply":{"ok":true}})"));
    EXPECT_EQ(lines[8]["op"], "remove_device");
    ReplaysTheSame();
    Talk(R"(network => {"devices":[{"state":"unconnected"}]})");
}

TEST_F(Recording, ScenesAreKeptInsideAndSavingIsNotRepeated) {
    const auto scene = m_folder.Path() / "scene.json";
    Must(CREATE_MOUSE);
    Must("save file=" + Quote(scene));
    Must("destroy node=m");
    Record();
    Must("load file=" + Quote(scene));
    Must(PRESS_LEFT);
    Must("save file=" + Quote(scene));
    std::filesystem::remove(scene);
    AskObject("load file=" + Quote(scene)); // which comes to nothing
    const auto lines = Lines();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[1]["scene"]["nodes"][0]["node"], "m");
    EXPECT_FALSE(lines[1].contains("file"));
    ReplaysTheSame();
    EXPECT_FALSE(std::filesystem::exists(scene));
}

TEST_F(Recording, ConnectionsKeepTheirHeldInput) {
    Record();
    Must(CREATE_KEYBOARD);
    Must("create node=v type=handle clip=Clip graph=Hand");
    Frame();
    m_pSession->Held().Open(); // sends nothing
    CHeldInput& held = m_pSession->Held().Open();
    Must("clock ms=5000");
    Must(Event(0, 2002, KeyText("a")), &held);
    Must(Event(3, 0, HandSample({{"trigger", 1}, {"release", 0}})), &held);
    Must("clock ms=12000");
    m_pSession->CloseConnection(held, "its connection closed");
    const Json line = Lines().back();
    EXPECT_EQ(line["op"], "release_held");
    EXPECT_EQ(line["connection"], 2);
    EXPECT_EQ(line["reply"]["released"][1]["payload"]["release"], 8000);
    EXPECT_EQ(Posted(line["reply"]), (std::vector{153, 863})); // held far too long for a click
    ReplaysTheSame();
}

TEST_F(Recording, NothingIsKeptBehindTheEnd) {
    Record();
    CHeldInput& held = m_pSession->Held().Open();
    Must("event device=0 event=2002", &held);
    Must("quit", &held);
    m_pSession->CloseConnection(held, "its connection closed");
    EXPECT_EQ(Lines().back()["op"], "quit");
    ReplaysTheSame();
}

TEST_F(Recording, AHandMadeRecordingReachesNothing) {
    CTestPeers peers;
    CTestPeers::CListener listener(peers);
    const auto victim = m_folder.Write("victim.json", "mine");
    const auto scene = m_folder.Path() / "scene.json";
    Must(CREATE_MOUSE);
    Must("save file=" + Quote(scene));
    const std::string strDevice =
        R"([{"id":4,"name":"d","parser":"direct","address":")" + listener.Address() + R"("}])";
    std::string strText;
    for (const std::string& strRequest :
         {std::string("recording version=1 texts=keys"), "save file=" + Quote(victim),
          std::string("listen address=127.0.0.1 broadcast=0"), std::string("wait ms=600000"),
          "devices list=" + strDevice,
          R"(load scene={"format":"iohost scene","version":1,"devices":)" + strDevice + "}",
          "load file=" + Quote(scene)}) {
        Json line = Request(strRequest);
        line["reply"] = {{"ok", true}};
        strText += line.dump() + "\n";
    }
    Json failed = Request("load file=" + Quote(scene));
    failed["reply"] = {{"ok", false}, {"error", "file: can't be read"}};
    Replay(CReplay::EResult::Same, strText + failed.dump() + "\n");
    EXPECT_EQ(Must("scene")["nodes"].size(), 0U);
    EXPECT_EQ(ReadAll(victim), "mine");
    Talk(R"(network => {"devices":[{"state":"unconnected"}],"broadcast":null})");
}

TEST_F(Recording, DifferencesAreNamed) {
    Record();
    Must(CREATE_MOUSE);
    Must("process");
    Must(PRESS_LEFT);
    EXPECT_NE(Replay(CReplay::EResult::Different, Changed(R"("output":358)", R"("output":360)"))
                  .find("event: posted/0/output: recorded 360, now 358\n"),
              std::string::npos);
    const std::string strOutput =
        Replay(CReplay::EResult::Different, Changed(R"("results":{"m":1},)", R"("results":{"m":1,"n":0},)"));
    EXPECT_NE(strOutput.find("event: results/n: recorded 0, now nothing\n"), std::string::npos) << strOutput;
    EXPECT_TRUE(strOutput.ends_with("requests replayed: 1 reply differs\n")) << strOutput;
}

TEST(ReplyDifferences, AreNamedByTheirPlace) {
    using Texts = std::vector<std::string>;
    EXPECT_EQ(ReplyDifferences({{"a", 1}}, {{"a", 1}}), Texts());
    EXPECT_EQ(ReplyDifferences({{"a", {1, 2}}}, {{"a", {1, 3}}}), Texts{"a/1: recorded 2, now 3"});
    EXPECT_EQ(ReplyDifferences({{"a", 1}}, {{"b", 1}}),
              (Texts{"a: recorded 1, now nothing", "b: recorded nothing, now 1"}));
    EXPECT_EQ(ReplyDifferences({{"a", 1}}, 5), Texts{": recorded {\"a\":1}, now 5"});
    EXPECT_EQ(ReplyDifferences({{"a", std::string(198, 'x') + "键y"}}, {{"a", "键"}}),
              Texts{"a: recorded \"" + std::string(198, 'x') + "..., now \"键\""});
}

TEST_F(Recording, AFileThatIsNoRecordingIsRefused) {
    std::string strError;
    for (const auto& file : {m_folder.Path() / "none", m_folder.Path()}) {
        EXPECT_EQ(CReplay::Open(file, strError), nullptr);
        EXPECT_NE(strError.find("can't be read"), std::string::npos) << strError;
    }
    for (const char* pszText :
         {"text\n", "{}\n", R"({"op":"objects","reply":{"ok":true,"objects":[]}})",
          R"({"op":"recording","version":1,"texts":"fr","reply":{"ok":true}})", R"({"op":"recording","texts":"en"})"}) {
        EXPECT_EQ(CReplay::Open(m_folder.Write("text", pszText), strError), nullptr) << pszText;
        EXPECT_NE(strError.find("isn't a recording"), std::string::npos) << strError;
    }
    EXPECT_EQ(CReplay::Open(m_folder.Write("text", ""), strError), nullptr);
}

TEST_F(Recording, BrokenLineEndsTheReplay) {
    Record();
    Must(CREATE_MOUSE);
    const std::string strText = ReadAll(m_file);
    const std::string strCut = Replay(CReplay::EResult::Broken, strText.substr(0, strText.size() - 10));
    EXPECT_NE(strCut.find(": line: not JSON"), std::string::npos) << strCut;
    for (const auto& [pszLine, pszProblem] :
         {std::pair(R"({"op":"objects"})", "line.reply: is missing"),
          std::pair(R"({"op":"objects","reply":{}})", "line.reply.ok: is missing"),
          std::pair(R"({"op":"objects","reply":{"ok":true},"connection":0})", "line.connection: isn't the number of"),
          std::pair("5", "line: must be an object")}) {
        const std::string strOutput = Replay(CReplay::EResult::Broken, strText + pszLine);
        EXPECT_NE(strOutput.find(pszProblem), std::string::npos) << strOutput;
    }
}

#if !defined(_WIN32)
TEST_F(Recording, AFileThatFailsInTheMiddleEndsTheReplay) {
    Record();
    Must("object clip=Clip name=" + std::string(100'000, 'x')); // more than is read ahead
    End();
    Reopen();
    const int nFile = dup(0); // the next one that is opened has the same
    close(nFile);
    std::string strError;
    const auto pReplay = CReplay::Open(m_file, strError);
    ASSERT_NE(pReplay, nullptr) << strError;
    ASSERT_EQ(std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(nFile)), m_file);
    const int nFolder = open(m_folder.Path().c_str(), O_RDONLY);
    ASSERT_EQ(dup2(nFolder, nFile), nFile); // which can't be read
    close(nFolder);
    std::ostringstream output;
    EXPECT_EQ(pReplay->Run(*m_pSession, output), CReplay::EResult::Broken);
    EXPECT_EQ(output.str(), "line 3: can't be read\n"); // the second one is of the clock
}
#endif

/// A scene that was loaded is one line, however large.
TEST_F(Recording, LinesOfAnyLengthAreReplayed) {
    Record();
    const std::string strLine =
        R"({"op":"objects","x":")" + std::string(LONGEST_LINE, ' ') + R"(","reply":{"ok":false}})";
    const std::string strOutput = Replay(CReplay::EResult::Different, ReadAll(m_file) + strLine);
    EXPECT_TRUE(strOutput.ends_with("2 requests replayed: 1 reply differs\n")) << strOutput;
}

TEST_F(Recording, AnotherVersionOrOtherTextsOrNoFileIsRefused) {
    Talk(R"(
        recording version=2 texts=keys => version: this program reads recordings of version 1
        recording version=1 texts=en => texts: this session's are keys
    )");
    std::string strError;
    EXPECT_EQ(CRecorder::Open(*m_pSession, m_folder.Path(), strError), nullptr);
    EXPECT_NE(strError.find("can't be written"), std::string::npos);
}

TEST_F(Recording, ADiskThatIsFullIsToldOnceInAReply) {
    std::string strError;
    m_pRecorder = CRecorder::Open(*m_pSession, "/dev/full", strError);
    if (m_pRecorder != nullptr) { // the first line fails when it's flushed
        const OrderedJson reply = Must(CREATE_MOUSE);
        EXPECT_EQ(reply["log"][0]["text"], "the recording can't be written any further; nothing more is recorded");
        EXPECT_FALSE(m_pRecorder->IsComplete());
        EXPECT_FALSE(Must(CREATE_KEYBOARD).contains("log"));
    } else {
        GTEST_SKIP() << "this system has no file that is always full";
    }
}

TEST_F(Recording, ReplayFindsNoBroadcastPort) {
    const auto open = [&](bool bMayBroadcast) {
        Reopen({APP_FOLDER, MODULE_FILE, ETextTable::Keys, bMayBroadcast});
        return ConfiguredBroadcastPort();
    };
    EXPECT_NE(open(true), 0);
    EXPECT_EQ(open(false), 0);
    EXPECT_NE(open(true), 0);
}

} // namespace
