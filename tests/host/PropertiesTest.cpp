// What holds for any input, on inputs that RapidCheck makes up and, where one fails, makes as small as it can.
#include "HostTest.h"

#include <rapidcheck.h>

#include <afxwin.h>

#include <map>
#include <set>
#include <sstream>

#include "PlayControlFrame.h"
#include "base/LineReader.h"
#include "base/PrintableText.h"
#include "base/TextUtf8.h"
#include "fronts/recording/Recorder.h"
#include "fronts/recording/Replay.h"
#include "host/EventRecord.h"
#include "host/RemoteControlRecord.h"
#include "network/ItemReader.h"
#include "protocol/Shapes.h"

namespace {

/// Texts as people and devices send them.
std::string AnyText() {
    return *rc::gen::element<std::string>("", "a", "Enter", "Shift+b", "1", "0.5", "Clip", "{\"k\":1}", "中 😀",
                                          "\"\\\n");
}

Json AnyPlacing(const std::string& strNode, bool bNote) {
    Json request = {{"op", "place"}, {"nodes", Json::object()}, {"notes", Json::object()}};
    request["nodes"][strNode] = {{"x", *rc::gen::inRange(-9, 9)}, {"y", 2}};
    if (bNote) {
        request["notes"]["1"] = {{"x", 1}, {"y", 2}, {"width", 3}, {"height", 4}, {"text", AnyText()}};
    }
    return request;
}

/// A request of those that change a scene or come to it; many are refused.
Json AnyCommand() {
    const auto node = [] { return *rc::gen::element<std::string>("a", "b", "c", "d"); };
    const auto flag = [] { return *rc::gen::arbitrary<bool>(); };
    const auto input = [] {
        return *rc::gen::element(2, 202, 203, 204, 402, 408, 410, 412, 802, 803, 1102, 1103, 1402);
    };
    const auto output = [] { return *rc::gen::element(152, 154, 253, 352, 358, 366, 370, 752, 852, 862, 1152); };
    const auto number = [] { return *rc::gen::oneOf(rc::gen::inRange(-3, 70), rc::gen::arbitrary<int>()); };
    switch (*rc::gen::inRange(0, 20)) {
    case 0:
    case 1:
    case 2: {
        Json request =
            Request("create type=" + *rc::gen::element<std::string>("keyboard", "text_field", "mouse", "send",
                                                                    "receive", "gesture", "handle", "key_check",
                                                                    "object_json", "device_json", "string_send"));
        request.update({{"node", node()}, {"graph", AnyText()}, {"event_window", flag()}});
        request["clip"] = flag() ? Json("Clip") : Json(nullptr);
        return request;
    }
    case 3:
        return {{"op", "destroy"}, {"node", node()}};
    case 4:
        return {{"op", "set"}, {"node", node()}, {"param", input()}, {"int", number()}};
    case 5:
        return {{"op", "set"}, {"node", node()}, {"param", input()}, {"string", AnyText()}, {"own", flag()}};
    case 6:
        return {{"op", "edit"}, {"node", node()}, {"param", input()}, {"float", number() / 8.0}};
    case 7:
        return {{"op", "trigger"}, {"node", node()}, {"param", input()}};
    case 8:
        return {{"op", flag() ? "link" : "unlink"},
                {"from", node()},
                {"output", output()},
                {"to", node()},
                {"input", input()}};
    case 9:
        return flag() ? Json{{"op", "drop"}, {"node", node()}, {"param", input()}, {"from", {"inputs"}}}
                      : Json{{"op", "drop"}, {"node", node()}, {"param", output()}, {"from", {"outputs"}}};
    case 10:
        return {{"op", "object"}, {"clip", "Clip"}, {"name", AnyText()}};
    case 11:
        return {{"op", "keys"}, {"down", *rc::gen::element(Json{65}, Json{16, 65}, Json::array())}, {"toggled", {20}}};
    case 12:
        return Event(0, *rc::gen::element(2002, 2003), KeyText(AnyText()));
    case 13:
        return Event(1, *rc::gen::element(3002, 3003, 3005, 3006, 3007, 3008, 3013),
                     PointerSample({{"x", number()}, {"y", number()}, {"rx", number()}, {"pointer", flag() ? 1 : 0}}));
    case 14:
        return Event(3, 0,
                     HandSample({{"hand", flag() ? 1 : 0}, {"trigger", flag() ? 1 : 0}, {"pad", flag() ? 1 : 0}}));
    case 15:
        return {{"op", "process"}, {"frame", flag()}};
    case 16:
        return AnyPlacing(node(), flag());
    case 17:
        return flag() ? Json{{"op", "rename"}, {"node", node()}, {"graph", AnyText()}}
                      : Json{{"op", "init"}, {"node", node()}};
    case 18:
        return flag() ? Json{{"op", "remove_object"}, {"clip", "Clip"}, {"name", AnyText()}}
                      : Json{{"op", "change_object"}, {"clip", "Clip"}, {"name", AnyText()}, {"to", AnyText()}};
    default:
        return {{"op", flag() ? "undo" : "redo"}};
    }
}

/// A few commands, some of them as one.
Json AnyStep() {
    if (*rc::gen::inRange(0, 8) > 0) {
        return AnyCommand();
    }
    Json batch = {{"op", "batch"}, {"requests", Json::array()}};
    for (int nRequests = *rc::gen::inRange(0, 4); nRequests > 0; --nRequests) {
        batch["requests"].push_back(AnyCommand());
    }
    return batch;
}

using Commands = std::vector<Json>;

rc::Gen<Commands> AnyCommands() {
    return rc::gen::container<Commands>(rc::gen::exec(AnyStep));
}

using Properties = CHostTest;

/// Takes what a reader hands over, as texts.
class CItems final : private INetworkReceiver {
public:
    explicit CItems(EDeviceParser nParser) : m_reader(m_loop, EPeer::Device, nParser, 3, m_counts) {}

    /// A connection that sends these bytes in pieces of these lengths, and the rest, then ends.
    void Connect(const std::string& strBytes, const std::vector<size_t>& lengths) {
        const auto* pBytes = reinterpret_cast<const unsigned char*>(strBytes.data());
        m_reader.Parser()->Reset();
        bool bInStep = true;
        for (size_t nBegin = 0, nPiece = 0; nBegin < strBytes.size() && bInStep; ++nPiece) {
            const size_t nLength =
                std::min(nPiece < lengths.size() ? lengths[nPiece] : strBytes.size(), strBytes.size() - nBegin);
            bInStep = m_reader.Parser()->Receive(pBytes + nBegin, static_cast<int>(nLength));
            nBegin += nLength;
        }
        m_reader.EndConnection();
    }

    std::vector<std::string> m_texts;
    SItemCounts m_counts;

private:
    bool OnItem(EPeer /*nFrom*/, const SIOEventRecord& record) override {
        if (record.m_nDevice == DEVICE_TEXT) {
            m_texts.push_back(Utf8(static_cast<const SDeviceTextData*>(record.m_pPayload)->m_strText));
        } else {
            auto* pData = static_cast<CQORIOAttachedData*>(record.m_pPayload);
            m_texts.push_back(Utf8(static_cast<CQORPanelRemoteCtrlData*>(pData)->GetXmlDoc()));
        }
        return true;
    }
    std::optional<std::string> OnSent(const SSentItem& /*item*/) override { return {}; }

    CPeerLoop m_loop{*this};
    CItemReader m_reader;
};

/// What a device may send: items, of which some are damaged.
std::string AnyBytes(EDeviceParser nParser) {
    std::string strBytes;
    for (int nItems = *rc::gen::inRange(0, 5); nItems > 0; --nItems) {
        if (nParser == EDeviceParser::JsonLines) {
            strBytes += AnyText() + *rc::gen::element<std::string>("\n", "\r\n", "\xFF\n", "\r\r\n", "\n\n");
        } else {
            CQORPanelRemoteCtrlData record;
            record.m_strKeyValue = FromUtf8(AnyText());
            const std::string strXml = Utf8(record.GetXmlDoc());
            CFrameWriter writer;
            const auto frame = writer.Write({*rc::gen::element(50u, 50u, 50u, 51u), "Clip", strXml});
            strBytes.append(frame.begin(), frame.end());
        }
    }
    if (!strBytes.empty() && *rc::gen::arbitrary<bool>()) {
        strBytes[*rc::gen::inRange<size_t>(0, strBytes.size())] = *rc::gen::arbitrary<char>();
    }
    return strBytes;
}

TEST_F(Properties, ItemsAreTheSameWhereverTheBytesAreSplit) {
    for (const EDeviceParser nParser : {EDeviceParser::Framed, EDeviceParser::JsonLines}) {
        EXPECT_TRUE(rc::check("items", [nParser](const std::vector<unsigned char>& pieces) {
            CItems whole(nParser);
            CItems split(nParser);
            for (int nConnections = 0; nConnections < 2; ++nConnections) {
                const std::string strBytes = AnyBytes(nParser);
                whole.Connect(strBytes, {});
                split.Connect(strBytes, {pieces.begin(), pieces.end()});
            }
            RC_ASSERT(split.m_texts == whole.m_texts);
            RC_ASSERT(split.m_counts.nReceived == whole.m_counts.nReceived);
            RC_ASSERT(split.m_counts.nRejected == whole.m_counts.nRejected);
            RC_ASSERT(split.m_counts.strLastRejected == whole.m_counts.strLastRejected);
        }));
    }
}

TEST_F(Properties, LinesComeBackAsTheyWereWritten) {
    EXPECT_TRUE(rc::check("lines", [](std::vector<std::string> lines, unsigned char nLongest) {
        std::string strText;
        for (std::string& strLine : lines) {
            std::erase(strLine, '\n');
            strText += strLine + '\n';
        }
        std::istringstream input(strText);
        std::string strRead;
        for (const std::string& strLine : lines) {
            const bool bFits = strLine.size() <= nLongest;
            RC_ASSERT(ReadLine(input, strRead, nLongest) == (bFits ? ELine::Complete : ELine::TooLong));
            RC_ASSERT(strRead == strLine.substr(0, nLongest));
        }
        RC_ASSERT(ReadLine(input, strRead, nLongest) == ELine::None);
    }));
}

TEST_F(Properties, PrintableTextsCanBeReadBack) {
    EXPECT_TRUE(rc::check("texts", [](const std::vector<unsigned short>& units) {
        std::string strText; // characters of up to three bytes, with many controls
        for (const unsigned short nUnit : units) {
            const auto c = static_cast<wchar_t>(nUnit % 2 == 0 ? nUnit % 0xA0 : nUnit);
            strText += Utf8(CString(c >= 0xD800 && c < 0xE000 ? L'x' : c));
        }
        const std::string strLine = PrintableJson(Json(strText).dump());
        RC_ASSERT(Json::parse(strLine) == Json(strText));
        for (const std::string& strShown : {strLine, PrintableText(strText)}) {
            for (size_t i = 0; i < strShown.size(); ++i) {
                const auto nByte = static_cast<unsigned char>(strShown[i]);
                RC_ASSERT(nByte >= 32 && nByte != 127);
                RC_ASSERT(!(nByte == 0xC2 && static_cast<unsigned char>(strShown[i + 1]) < 0xA0));
            }
        }
    }));
}

TEST_F(Properties, WhatIsSavedAndLoadedInspectsTheSame) {
    EXPECT_TRUE(rc::check("scenes", [this] {
        Must(R"(load scene={"format":"iohost scene","version":1})");
        for (const Json& command : *AnyCommands()) {
            AskObject(command);
        }
        AskObject("process"); // what was triggered is over
        const OrderedJson before = WholeScene();
        const OrderedJson objects = Must("objects");
        const std::string strFile = Quote(m_folder.Path() / "scene.json");
        Must("save file=" + strFile);
        AskObject("load file=" + strFile);
        RC_ASSERT(WholeScene() == before);
        RC_ASSERT(Must("objects") == objects);
    }));
}

TEST_F(Properties, ARecordedSessionReplaysWithoutDifference) {
    EXPECT_TRUE(rc::check("recordings", [this] {
        const auto reopen = [this] {
            Reopen({m_folder.Path(), MODULE_FILE, ETextTable::Keys, false});
            RC_ASSERT(m_pSession != nullptr);
        };
        reopen();
        const auto file = m_folder.Path() / "recording.jsonl";
        std::string strError;
        auto pRecorder = CRecorder::Open(*m_pSession, file, strError);
        RC_ASSERT(pRecorder != nullptr);
        CHeldInput& held = m_pSession->Held().Open();
        for (const Json& command : *AnyCommands()) {
            AskObject(command, *rc::gen::arbitrary<bool>() ? &held : nullptr);
        }
        m_pSession->CloseConnection(held, "it closed");
        pRecorder.reset();
        reopen();
        std::ostringstream output;
        const auto pReplay = CReplay::Open(file, strError);
        const CReplay::EResult nResult = pReplay->Run(*m_pSession, output);
        RC_LOG(output.str());
        RC_ASSERT(nResult == CReplay::EResult::Same);
    }));
}

TEST_F(Properties, EverythingThatWentDownComesUp) {
    const std::pair<int, int> presses[] = {{2002, 153}, {3005, 362}, {3007, 364}}; // and what their releases fire
    EXPECT_TRUE(rc::check("held", [&] {
        Must(R"(load step=false scene={"format":"iohost scene","version":1,"nodes":[)"
             R"({"node":"m","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B03}","clip":"Intro","graph":"M"},)"
             R"({"node":"k","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B01}","clip":"Intro","graph":"K"}]})");
        Must("process");
        CHeldInput& held = m_pSession->Held().Open();
        std::map<int, std::set<Json>> down; // keys and pointers, by the event that presses them
        for (Json command : *AnyCommands()) {
            const bool bEvent = command["op"] == "event";
            if (bEvent) {
                command["device"] =
                    *rc::gen::weightedElement<int>({{4, command["device"].get<int>()}, {1, 0}, {1, 1}, {2, 5}});
            }
            const bool bDone = AskObject(command, &held)["ok"] == true;
            if (!bEvent || !bDone || command["device"] != command["event"].get<int>() / 1000 - 2) {
                continue; // nothing of a key or pointer
            }
            const int nEvent = command["event"];
            const Json& payload = command["payload"];
            const Json& which = payload[nEvent < 3000 ? "text" : "pointer"];
            down[nEvent].insert(which);
            down[nEvent - 1].erase(which); // what it releases, if it's a release
        }
        // The nodes' own account: each release fires an output.
        const auto reply = OrderedJson::parse(ReplyTo(m_pSession->CloseConnection(held, "it closed")));
        for (const auto& [nPress, nOutput] : presses) {
            size_t nFired = 0;
            for (const OrderedJson& posted : reply.value("posted", OrderedJson::array())) {
                nFired += (posted["node"] == "k" || posted["node"] == "m") && posted["output"] == nOutput ? 1U : 0U;
            }
            RC_ASSERT(nFired == down[nPress].size());
        }
        RC_ASSERT(m_pSession->Held().State().empty());
    }));
}

} // namespace
