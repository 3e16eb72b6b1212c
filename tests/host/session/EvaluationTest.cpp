// When the nodes behind a fired output are evaluated: with the next frame, or at once.
#include <algorithm>
#include <random>
#include <sstream>

#include "HostTest.h"
#include "fronts/recording/Recorder.h"
#include "fronts/recording/Replay.h"

namespace {

const char* const TYPE = "{8164BB40-6B6A-4707-88B7-386BCB0D1B";
const char* const AT_ONCE = R"({"op":"evaluate","on":"event"})";

enum : unsigned {
    KEY_DOWN = 152,
    KEY_UP = 153,
    KEY_TEXT = 154,
    FIELD_KEY = 202,
    FIELD_EVENT = 203,
    FIELD_CLEAR = 204,
    FIELD_TEXT = 253,
    RECEIVED_TEXT = 1452,
    RECEIVED = 1453,
    SENT_TEXT = 1505,
    SEND = 1507,
};

/// Nodes whose texts are sent: a keyboard "k" and a JSON node "j", each linked to a string send node.
class Evaluation : public CHostTest {
protected:
    void Create(const std::string& strNode, const std::string& strType) {
        Must(R"({"op":"create","node":")" + strNode + R"(","type":")" + TYPE + strType +
             R"(}","clip":"Clip","graph":"G"})");
    }

    void Link(const std::string& strFrom, unsigned nOutput, const std::string& strTo, unsigned nInput) {
        Must(Json{{"op", "link"}, {"from", strFrom}, {"output", nOutput}, {"to", strTo}, {"input", nInput}}.dump());
    }

    /// A string send node that is triggered by an output and sends the value of another.
    void SendTextOf(const std::string& strFrom, unsigned nText, unsigned nEvent) {
        const std::string strSend = "s" + strFrom;
        Create(strSend, "0F");
        Link(strFrom, nText, strSend, SENT_TEXT);
        Link(strFrom, nEvent, strSend, SEND);
    }

    void MakeSenders() {
        Must(R"({"op":"devices","list":[{"id":0,"name":"Wall","parser":"direct"}]})");
        Create("k", "01");
        Create("j", "0E");
        SendTextOf("k", KEY_TEXT, KEY_DOWN);
        SendTextOf("j", RECEIVED_TEXT, RECEIVED);
        Frame();
    }

    OrderedJson PressKey(const std::string& strText) {
        return Must(
            Json{{"op", "event"}, {"device", 0}, {"event", 2002}, {"payload", {{"is", "key"}, {"text", strText}}}}
                .dump());
    }

    OrderedJson ReceiveText(const std::string& strText) {
        return Must(Json{{"op", "event"},
                         {"device", 5},
                         {"event", 0},
                         {"payload", {{"is", "device_text"}, {"device", 1}, {"text", strText}}}}
                        .dump());
    }

    void Reopen() {
        m_pSession = nullptr;
        std::string strError;
        m_pSession = CSession::Open({m_folder.Path(), MODULE_FILE, ETextTable::Keys}, strError);
        ASSERT_NE(m_pSession, nullptr) << strError;
    }

    /// The texts that a reply tells to have been sent, without the zero behind each.
    static std::vector<std::string> Sent(const OrderedJson& reply) {
        std::vector<std::string> texts;
        for (const OrderedJson& sent : reply.value("sent", OrderedJson::array())) {
            const std::string strHex = sent["raw"];
            std::string& strText = texts.emplace_back();
            for (size_t i = 0; i + 2 < strHex.size(); i += 2) {
                strText += static_cast<char>(std::stoi(strHex.substr(i, 2), nullptr, 16));
            }
        }
        return texts;
    }
};

using Texts = std::vector<std::string>;

TEST_F(Evaluation, WaitsForTheFrameUnlessAskedOtherwise) {
    MakeSenders();
    EXPECT_EQ(Sent(PressKey("A")), Texts{});
    EXPECT_EQ(Sent(PressKey("B")), Texts{});
    EXPECT_EQ(Sent(ReceiveText("{}")), Texts{});
    EXPECT_EQ(Sent(Frame()), (Texts{"B", "{}"}));
    Must(AT_ONCE);
    EXPECT_EQ(Sent(PressKey("C")), Texts{"C"});
    Must(R"({"op":"evaluate","on":"frame"})");
    EXPECT_EQ(Sent(PressKey("D")), Texts{});
    EXPECT_EQ(Sent(Frame()), Texts{"D"});
}

TEST_F(Evaluation, AnEventIsActedOnAtOnceAndOnlyOnce) {
    MakeSenders();
    Must(AT_ONCE);
    EXPECT_EQ(Sent(ReceiveText(R"({"a":1})")), Texts{R"({"a":1})"});
    EXPECT_EQ(Sent(ReceiveText(R"({"a":2})")), Texts{R"({"a":2})"});
    EXPECT_EQ(Sent(Frame()), Texts{});
}

/// A keyboard writes its text when it is evaluated, after it fired.
TEST_F(Evaluation, TheValuesOfTheEventComeAlong) {
    MakeSenders();
    Must(AT_ONCE);
    EXPECT_EQ(Sent(PressKey("A")), Texts{"A"});
    EXPECT_EQ(Sent(PressKey("B")), Texts{"B"});
}

/// A text field between the keyboard and what is sent, whichever links were made first.
TEST_F(Evaluation, TheValuesOfAChainComeAlong) {
    Must(R"({"op":"devices","list":[{"id":0,"name":"Wall","parser":"direct"}]})");
    Create("k", "01");
    Create("t", "02");
    Create("s", "0F");
    Link("t", FIELD_TEXT, "s", SENT_TEXT);
    Link("k", KEY_DOWN, "s", SEND);
    Link("k", KEY_TEXT, "t", FIELD_KEY);
    Link("k", KEY_DOWN, "t", FIELD_EVENT);
    Frame();
    Must(AT_ONCE);
    EXPECT_EQ(Sent(PressKey("A")), Texts{"a"});
    EXPECT_EQ(Sent(Frame()), Texts{});
    EXPECT_EQ(Sent(PressKey("B")), Texts{"ab"});
}

/// Each release of a connection that closes is an event of its own.
TEST_F(Evaluation, EveryReleaseIsActedOn) {
    MakeSenders();
    Link("k", KEY_UP, "sk", SEND);
    Must(AT_ONCE);
    CHeldInput& held = m_pSession->Held().Open();
    for (const char* pszKey : {"A", "B"}) {
        AskObject({{"op", "event"}, {"device", 0}, {"event", 2002}, {"payload", {{"is", "key"}, {"text", pszKey}}}},
                  &held);
    }
    EXPECT_EQ(Sent(ReplyTo(m_pSession->CloseConnection(held, "it closed"))).size(), 2u);
}

TEST_F(Evaluation, ATriggerIsActedOnAtOnce) {
    MakeSenders();
    Must(R"({"op":"set","node":"sk","param":1505,"string":"typed"})");
    Must(AT_ONCE);
    PressKey("A");
    EXPECT_EQ(Sent(Must(R"({"op":"trigger","node":"sk","param":1507})")), Texts{"A"});
    EXPECT_EQ(Sent(Frame()), Texts{});
}

TEST_F(Evaluation, WordsThatAreNoneAreRefused) {
    EXPECT_EQ(Refusal(R"({"op":"evaluate","on":"later"})"), R"(on: "later" is none of frame, event)");
    EXPECT_EQ(Refusal(R"({"op":"evaluate"})"), "on: is missing");
}

TEST_F(Evaluation, ARecordingKeepsWhenNodesWereEvaluated) {
    const auto file = m_folder.Path() / "recording.jsonl";
    std::string strError;
    {
        const auto pRecorder = CRecorder::Open(*m_pSession, file, strError);
        ASSERT_NE(pRecorder, nullptr) << strError;
        MakeSenders();
        PressKey("A");
        Must(AT_ONCE);
        EXPECT_EQ(Sent(PressKey("B")), Texts{"B"});
    }
    Reopen();
    const auto pReplay = CReplay::Open(file, strError);
    ASSERT_NE(pReplay, nullptr) << strError;
    std::ostringstream differences;
    EXPECT_EQ(pReplay->Run(*m_pSession, differences), CReplay::EResult::Same) << differences.str();
}

/// Keyboards, JSON nodes, text fields and sends behind them, linked at random without a circle, with a frame after each
/// event: whenever nodes are evaluated, they send the same and end alike.
TEST_F(Evaluation, AtOnceAndByFramesComeToTheSame) {
    struct SType {
        const char* pszType;
        std::vector<unsigned> texts, events;           ///< outputs
        std::vector<unsigned> takenTexts, takenEvents; ///< inputs
    };
    const SType types[] = {{"01", {KEY_TEXT}, {KEY_DOWN, KEY_UP}, {}, {}},
                           {"0E", {RECEIVED_TEXT}, {RECEIVED}, {}, {}},
                           {"02", {FIELD_TEXT}, {}, {FIELD_KEY}, {FIELD_EVENT, FIELD_CLEAR}},
                           {"0F", {}, {}, {SENT_TEXT}, {SEND}}};
    constexpr size_t NODES = 9;
    for (unsigned nSeed = 1; nSeed <= 60; ++nSeed) {
        SCOPED_TRACE(nSeed);
        OrderedJson seen[2];
        for (OrderedJson& all : seen) {
            Reopen();
            Must(R"({"op":"devices","list":[{"id":0,"name":"Wall","parser":"direct"}]})");
            if (&all == &seen[1]) {
                Must(AT_ONCE);
            }
            std::mt19937 random(nSeed);
            const auto below = [&](size_t nEnd) { return random() % nEnd; };
            std::vector<const SType*> nodes;
            for (size_t i = 0; i < NODES; ++i) {
                nodes.push_back(&types[below(std::size(types))]);
                Create(std::to_string(i), nodes.back()->pszType);
            }
            for (int i = 0; i < 60; ++i) {
                const size_t nFrom = below(NODES - 1);
                const size_t nTo = nFrom + 1 + below(NODES - nFrom - 1);
                const bool bEvent = below(2) == 0;
                const auto& outputs = bEvent ? nodes[nFrom]->events : nodes[nFrom]->texts;
                const auto& inputs = bEvent ? nodes[nTo]->takenEvents : nodes[nTo]->takenTexts;
                if (!outputs.empty() && !inputs.empty()) {
                    Link(std::to_string(nFrom), outputs[below(outputs.size())], std::to_string(nTo),
                         inputs[below(inputs.size())]);
                }
            }
            Frame();
            for (int i = 0; i < 12; ++i) {
                const std::string strText(1, static_cast<char>('A' + i));
                Texts sent = Sent(below(2) == 0 ? PressKey(strText) : ReceiveText("[\"" + strText + "\"]"));
                for (std::string& strSent : Sent(Frame())) {
                    sent.push_back(std::move(strSent));
                }
                std::ranges::sort(sent);
                all.push_back(sent);
            }
            all.push_back(WholeScene());
        }
        EXPECT_TRUE(seen[0] == seen[1]) << OrderedJson::diff(seen[0], seen[1]);
    }
}

/// Probes "p" and "q" of which each fires whenever it is evaluated.
class ProbeEvaluation : public CProbeTest {
protected:
    void SetUp() override {
        Must(CREATE_PROBE);
        Must(CREATE_SECOND_PROBE);
        Must(R"({"op":"create","node":"r","type":"{11111111-2222-3333-4444-555555555555}","clip":null,"graph":"R"})");
        Do("p", FIRE);
        Do("q", FIRE);
        Must(AT_ONCE);
    }

    void Do(const std::string& strNode, int nWhat) {
        Must(Json{{"op", "set"}, {"node", strNode}, {"param", 10}, {"int", nWhat}}.dump());
    }
    void Link(const std::string& strFrom, const std::string& strTo) {
        Must(Json{{"op", "link"}, {"from", strFrom}, {"output", 101}, {"to", strTo}, {"input", 14}}.dump());
    }
    OrderedJson Trigger(const std::string& strNode) {
        return Must(Json{{"op", "trigger"}, {"node", strNode}, {"param", 14}}.dump());
    }

    /// How often a node was evaluated with its input triggered.
    int Seen(const std::string& strNode) {
        return Must(Json{{"op", "inspect"}, {"node", strNode}}.dump())["outputs"][0]["params"][1]["int"];
    }

    static constexpr int RAISE = 1;
    static constexpr int FIRE = 6;
    static constexpr int FIRE_WHEN_DESTROYED = 7;
};

TEST_F(ProbeEvaluation, ANodeBehindTwoOthersIsEvaluatedOnce) {
    Link("p", "r");
    Link("p", "q");
    Link("q", "r");
    const OrderedJson reply = Trigger("p");
    EXPECT_EQ(Seen("q"), 1);
    EXPECT_EQ(Seen("r"), 1);
    EXPECT_EQ(reply["posted"].size(), 2u);
    EXPECT_FALSE(reply.contains("log")) << reply["log"];
}

TEST_F(ProbeEvaluation, ACycleGoesRoundOnceAndSaysSo) {
    Link("p", "q");
    Link("q", "p");
    const OrderedJson reply = Trigger("p");
    EXPECT_EQ(Seen("p"), 1);
    EXPECT_EQ(Seen("q"), 1);
    ASSERT_EQ(reply["log"].size(), 1u) << reply;
    EXPECT_EQ(reply["log"][0]["text"], R"(the node "p" is triggered by what it caused: that waits for the next frame)");
    Frame();
    EXPECT_GE(Seen("p"), 2);
    EXPECT_FALSE(Trigger("p").contains("log")) << "it was said";
}

TEST_F(ProbeEvaluation, AFaultDoesNotKeepTheOthers) {
    Link("p", "q");
    Link("p", "r");
    Do("q", RAISE);
    const OrderedJson reply = Trigger("p");
    EXPECT_EQ(Seen("r"), 1);
    ASSERT_EQ(reply["log"].size(), 1u) << reply;
    EXPECT_EQ(reply["log"][0]["text"], "the module raised CInvalidArgException");
}

TEST_F(ProbeEvaluation, AFrameActsOnWhatItFires) {
    Must(R"({"op":"evaluate","on":"frame"})");
    Link("q", "p"); // against the order of evaluation
    Do("p", 0);
    Frame();
    EXPECT_EQ(Seen("p"), 0);
    Must(AT_ONCE);
    Frame();
    EXPECT_EQ(Seen("p"), 2);
}

/// Also what was triggered before a fault, in the same request.
TEST_F(ProbeEvaluation, WhatAFaultLeavesIsActedOn) {
    Must(R"({"op":"evaluate","on":"frame"})");
    Link("p", "r");
    Do("q", RAISE);
    Must(AT_ONCE);
    EXPECT_EQ(AskObject({{"op", "process"}})["ok"], false); // p, then the fault of q
    EXPECT_EQ(Seen("r"), 1);
}

TEST_F(ProbeEvaluation, ANodeThatFiresAsItIsDestroyedIsNotEvaluated) {
    Link("p", "p");
    Link("p", "q");
    Do("p", FIRE_WHEN_DESTROYED);
    Frame();
    Must(R"({"op":"destroy","node":"p"})");
    EXPECT_EQ(Seen("q"), 1);
}

} // namespace
