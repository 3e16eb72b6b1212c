// Recordings: what is kept of a session, and that a replay answers the same.
#include "HostTest.h"

#include <chrono>
#include <sstream>

#include "NetworkPeers.h"
#include "fronts/recording/Recorder.h"
#include "fronts/recording/Replay.h"
#include "network/Peers.h"
#include "protocol/Shapes.h"

namespace {

constexpr char CREATE_KEY_CHECK[] =
    R"({"op":"create","node":"c","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B0B}","clip":"Intro","graph":"Key 1"})";
constexpr char CREATE_BROADCAST_RECEIVE[] =
    R"({"op":"create","node":"b","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B0D}","clip":"Intro","graph":"Rev 1"})";
constexpr char CREATE_STRING_SEND[] =
    R"({"op":"create","node":"s","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B0F}","clip":"Intro","graph":"Send 1"})";
constexpr char PRESS_LEFT[] = R"({"op":"event","device":1,"event":3005})";

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

    /// The lines so far, without those of the clock.
    std::vector<Json> Lines() const {
        std::vector<Json> lines;
        std::istringstream text(ReadAll(m_file));
        for (std::string strLine; std::getline(text, strLine);) {
            Json line = Json::parse(strLine);
            if (line["op"] != "clock") {
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
        m_pSession = CSession::Open({.appFolder = m_folder.Path(),
                                     .moduleFile = m_strModuleFile,
                                     .texts = pReplay->Texts(),
                                     .bMayBroadcast = false},
                                    strError);
        if (m_pSession == nullptr) {
            ADD_FAILURE() << strError;
            return {};
        }
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
    Must(R"({"op":"process","id":7})");
    Ask(R"({"op":"process","node":"none"})");
    const auto lines = Lines();
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], Json::parse(R"({"op":"recording","version":1,"texts":"keys","reply":{"ok":true}})"));
    EXPECT_EQ(lines[1]["reply"], Json::parse(R"({"ok":true,"result":1,"created":true})"));
    EXPECT_EQ(lines[2],
              Json::parse(R"({"op":"process","reply":{"ok":true,"results":{"m":1}}})")); // ids are the asker's
    EXPECT_EQ(lines[3]["reply"], Json::parse(R"({"ok":false,"error":"node: there is no node \"none\""})"));
}

TEST_F(Recording, ReplayAnswersTheSame) {
    Record();
    Must(CREATE_MOUSE);
    Must(CREATE_KEYBOARD);
    Must(R"({"op":"link","from":"m","output":358,"to":"k","input":2})");
    Frame();
    Must(PRESS_LEFT);
    Must(R"({"op":"event","device":0,"event":2002,"payload":{"is":"key","text":"ü"}})");
    Frame();
    Ask(R"({"op":"fly"})");
    Ask(R"({"no":"op"})");
    Ask(R"({"op":5})");
    Must(R"({"op":"inspect","node":"k"})");
    Must(R"({"op":"catalogue"})");
    Must(R"({"op":"scene"})");
    Must(R"({"op":"destroy","node":"k"})");
    Must(R"({"op":"quit"})");
    ReplaysTheSame();
}

TEST_F(Recording, FramesTellTheOutputsThatChanged) {
    Record();
    Must(CREATE_KEYBOARD);
    Frame();
    Must(R"({"op":"event","device":0,"event":2002,"payload":{"is":"key","text":"A"}})");
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

TEST_F(Recording, FrameReturnsTheSameWithAndWithoutARecorder) {
    Must(CREATE_MOUSE);
    EXPECT_EQ(Frame(), OrderedJson::object());
    Record();
    EXPECT_EQ(Frame(), OrderedJson::object());
}

TEST_F(ProbeRecording, FaultsInAFrameAreReplayed) {
    Record();
    Must(CREATE_PROBE);
    Must(CREATE_SECOND_PROBE);
    Must(R"({"op":"set","node":"p","param":10,"int":1})");
    Must(R"({"op":"set","node":"q","param":10,"int":6})");
    const OrderedJson happened = Frame();
    EXPECT_EQ(happened["posted"][0]["node"], "q");
    EXPECT_EQ(happened["log"].size(), 1u);
    EXPECT_EQ(Lines().back()["reply"]["results"], Json::parse(R"({"p":null,"q":1})"));
    ReplaysTheSame();
}

TEST_F(Recording, ClockIsStoppedWhileSomethingIsKept) {
    Record();
    Must(R"({"op":"main_window","present":true,"enabled":true})");
    Must(CREATE_KEY_CHECK);
    Must(R"({"op":"set","node":"c","param":1102,"int":65})");
    Must(R"({"op":"keys","down":[65]})");
    const auto tEnd = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    int nHolds = 0;
    while (nHolds < 2 && std::chrono::steady_clock::now() < tEnd) {
        const OrderedJson happened = Frame();
        nHolds += happened.contains("posted") && happened["posted"][0]["output"] == 1153 ? 1 : 0;
    }
    EXPECT_EQ(nHolds, 2);
    ReplaysTheSame();
}

TEST_F(Recording, ClockThatARequestSetsIsLeftAlone) {
    Record();
    const auto clocks = [&] {
        std::istringstream text(ReadAll(m_file));
        int nClocks = 0;
        for (std::string strLine; std::getline(text, strLine);) {
            nClocks += Json::parse(strLine)["op"] == "clock" ? 1 : 0;
        }
        return nClocks;
    };
    Must(R"({"op":"clock","ms":5000})");
    const int nClocks = clocks();
    Frame();
    EXPECT_EQ(clocks(), nClocks);
    Must(R"({"op":"clock","ms":null})");
    Frame();
    EXPECT_EQ(clocks(), nClocks + 2);
    ReplaysTheSame();
}

TEST_F(Recording, NetworkItemsAreKeptAsEvents) {
    CTestPeers peers;
    Record();
    Must(CREATE_BROADCAST_RECEIVE);
    Must(R"({"op":"set","node":"b","param":1302,"string":"f"})");
    Must(R"({"op":"process"})");
    const int nPort = Must(R"({"op":"listen","address":"127.0.0.1","broadcast":0})")["broadcast"];
    peers.SendDatagram(static_cast<unsigned short>(nPort),
                       R"([.{<Broadcast Flag="f" ClipName="c" Name="n" Data="d"/>}.])");
    ASSERT_EQ(Must(R"({"op":"wait","ms":5000})")["dispatched"].size(), 1u);
    Frame();

    const auto lines = Lines();
    ASSERT_EQ(lines.size(), 6u); // neither `listen` nor `wait`
    EXPECT_EQ(lines[4], Json::parse(R"({"op":"event","from":"broadcast","device":2,"event":1,)"
                                    R"("payload":{"is":"broadcast","flag":"f","clip":"c","name":"n","data":"d"},)"
                                    R"("reply":{"ok":true,"results":{"b":1}}})"));
    EXPECT_EQ(lines[5]["reply"]["outputs"]["b"]["1353"]["string"], "d");
    ReplaysTheSame();
}

TEST_F(Recording, DevicesAreKeptWithoutTheirAddresses) {
    CTestPeers peers;
    CTestPeers::CListener listener(peers);
    Record();
    Must(CREATE_STRING_SEND);
    Must(R"({"op":"devices","list":[{"id":4,"name":"d","parser":"direct","address":")" + listener.Address() + "\"}]}");
    Must(R"({"op":"set","node":"s","param":1503,"int":4})");
    Must(R"({"op":"set","node":"s","param":1505,"string":"text"})");
    Must(R"({"op":"trigger","node":"s","param":1507})");
    EXPECT_EQ(Must(R"({"op":"process"})")["sent"][0]["raw"], "7465787400");
    EXPECT_EQ(ReadAll(m_file).find(listener.Address()), std::string::npos);
    ReplaysTheSame();
    EXPECT_EQ(Must(R"({"op":"network"})")["devices"][0]["state"], "unconnected");
}

TEST_F(Recording, LoadedSceneIsKeptInside) {
    Must(CREATE_MOUSE);
    const auto scene = m_folder.Path() / "scene.json";
    Must(R"({"op":"save","file":)" + Quote(scene) + "}");
    Must(R"({"op":"destroy","node":"m"})");
    Record();
    Must(R"({"op":"load","file":)" + Quote(scene) + "}");
    Must(PRESS_LEFT);
    std::filesystem::remove(scene);
    Ask(R"({"op":"load","file":)" + Quote(scene) + "}"); // which comes to nothing
    const auto lines = Lines();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[1]["scene"]["nodes"][0]["node"], "m");
    EXPECT_FALSE(lines[1].contains("file"));
    ReplaysTheSame();
}

TEST_F(Recording, SavingIsNotRepeated) {
    Record();
    Must(CREATE_MOUSE);
    const auto scene = m_folder.Path() / "scene.json";
    Must(R"({"op":"save","file":)" + Quote(scene) + "}");
    std::filesystem::remove(scene);
    ReplaysTheSame();
    EXPECT_FALSE(std::filesystem::exists(scene));
}

TEST_F(Recording, ConnectionsKeepTheirHeldInput) {
    Record();
    Must(CREATE_KEYBOARD);
    Frame();
    m_pSession->Held().Open(); // sends nothing
    CHeldInput& held = m_pSession->Held().Open();
    AskObject({{"op", "event"}, {"device", 0}, {"event", 2002}, {"payload", {{"is", "key"}, {"text", "a"}}}}, &held);
    const OrderedJson closed = ReplyTo(m_pSession->CloseConnection(held, "its connection closed"));
    EXPECT_EQ(closed["released"].size(), 1u);
    const auto lines = Lines();
    ASSERT_EQ(lines.size(), 5u);
    EXPECT_EQ(lines[3]["connection"], 2);
    EXPECT_EQ(lines[4]["op"], "release_held");
    EXPECT_EQ(lines[4]["connection"], 2);
    EXPECT_EQ(lines[4]["reply"]["posted"][0]["output"], 153);
    ReplaysTheSame();
}

TEST_F(Recording, AHandMadeRecordingReachesNothing) {
    CTestPeers peers;
    CTestPeers::CListener listener(peers);
    const auto victim = m_folder.Write("victim.json", "mine");
    const auto scene = m_folder.Write("scene.json", R"({"format":"iohost scene","version":1})");
    const std::string strDevice =
        R"([{"id":4,"name":"d","parser":"direct","address":")" + listener.Address() + R"("}])";
    const std::string strReply = R"(,"reply":{"ok":true}})";
    std::string strText = R"({"op":"recording","version":1,"texts":"keys")" + strReply + "\n";
    for (const std::string& strRequest :
         {R"({"op":"save","file":)" + Quote(victim), R"({"op":"load","file":)" + Quote(scene),
          std::string(R"({"op":"listen","address":"127.0.0.1","broadcast":0)"),
          std::string(R"({"op":"wait","ms":600000)"), R"({"op":"devices","list":)" + strDevice,
          R"({"op":"load","scene":{"format":"iohost scene","version":1,"devices":)" + strDevice + "}"}) {
        strText += strRequest + strReply + "\n";
    }
    Replay(CReplay::EResult::Same, strText);
    EXPECT_EQ(ReadAll(victim), "mine");
    const OrderedJson network = Must(R"({"op":"network"})");
    EXPECT_EQ(network["devices"][0]["state"], "unconnected");
    EXPECT_EQ(network["broadcast"], nullptr);
}

TEST_F(Recording, ATriggerThatWasHeldIsReleasedAtTheRecordedTime) {
    Record();
    Must(R"({"op":"create","node":"v","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B08}","clip":"Clip","graph":"Hand"})");
    Frame();
    Must(R"({"op":"clock","ms":5000})");
    CHeldInput& held = m_pSession->Held().Open();
    AskObject({{"op", "event"},
               {"device", 3},
               {"event", 0},
               {"payload",
                {{"is", "vr"},
                 {"hand", 0},
                 {"trigger", 1},
                 {"pad", 0},
                 {"padx", 0},
                 {"pady", 0},
                 {"pose", std::vector<int>(16)},
                 {"hit", {0, 0, 0}},
                 {"press", 1000},
                 {"release", 0}}}},
              &held);
    Must(R"({"op":"clock","ms":12000})");
    m_pSession->CloseConnection(held, "its connection closed");
    const Json reply = Lines().back()["reply"];
    EXPECT_EQ(reply["released"][0]["payload"]["release"], 8000);
    EXPECT_EQ(reply["posted"].size(), 1u); // held far too long for a click
    ReplaysTheSame();
}

TEST_F(Recording, NothingIsKeptBehindTheEnd) {
    Record();
    CHeldInput& held = m_pSession->Held().Open();
    AskObject({{"op", "event"}, {"device", 0}, {"event", 2002}}, &held);
    AskObject({{"op", "quit"}}, &held);
    m_pSession->CloseConnection(held, "its connection closed");
    EXPECT_EQ(Lines().back()["op"], "quit");
    ReplaysTheSame();
}

TEST_F(Recording, CanBeReadByTheLineFront) {
    Record();
    Must(CREATE_MOUSE);
    Must(R"({"op":"process"})");
    std::istringstream text(ReadAll(m_file));
    End();
    std::string strError;
    m_pSession = CSession::Open({m_folder.Path(), MODULE_FILE, ETextTable::Keys}, strError);
    for (std::string strLine; std::getline(text, strLine);) {
        EXPECT_EQ(Json::parse(Ask(strLine)), Json::parse(strLine)["reply"]) << strLine;
    }
}

TEST_F(Recording, DifferencesAreNamed) {
    Record();
    Must(CREATE_MOUSE);
    Must(R"({"op":"process"})");
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
    const auto differences = ReplyDifferences({{"a", std::string(1000, 'x')}}, {{"a", ""}});
    ASSERT_EQ(differences.size(), 1u);
    EXPECT_LT(differences[0].size(), 300u);
}

TEST_F(Recording, WhatIsNoneIsRefused) {
    std::string strError;
    EXPECT_EQ(CReplay::Open(m_folder.Path() / "none", strError), nullptr);
    EXPECT_NE(strError.find("can't be read"), std::string::npos);
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
    for (const char* pszLine : {R"({"op":"objects"})", R"({"op":"objects","reply":{}})",
                                R"({"op":"objects","reply":{"ok":true},"connection":0})"}) {
        Replay(CReplay::EResult::Broken, strText + pszLine);
    }
}

TEST_F(Recording, RecordingOfAnotherVersionOrWithOtherTextsIsRefused) {
    EXPECT_EQ(Refusal(R"({"op":"recording","version":2,"texts":"keys"})"),
              "version: this program reads recordings of version 1");
    EXPECT_EQ(Refusal(R"({"op":"recording","version":1,"texts":"en"})"), "texts: this session's are keys");
}

TEST_F(Recording, FileThatCannotBeWrittenIsRefused) {
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
    m_pSession = nullptr;
    std::string strError;
    const auto open = [&](bool bMayBroadcast) {
        m_pSession = nullptr;
        m_pSession = CSession::Open({APP_FOLDER, MODULE_FILE, ETextTable::Keys, bMayBroadcast}, strError);
        return ConfiguredBroadcastPort();
    };
    EXPECT_NE(open(true), 0);
    EXPECT_EQ(open(false), 0);
    EXPECT_NE(open(true), 0);
}

} // namespace
