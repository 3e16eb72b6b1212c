#include <limits>
#include <memory>
#include <stdexcept>
#include <string>

#include <benchmark/benchmark.h>

#include "Comparison.h"
#include "base/Platform.h"
#include "base/TextUtf8.h"
#include "protocol/SceneFile.h"

namespace {

// Set close above what was measured (docs/benchmarks.md).
constexpr double FRAME_LIMIT = 1.5;
constexpr double SMALL_FRAME_LIMIT = 2.0; // few nodes share what a frame costs by itself
constexpr size_t SMALL = 13;
constexpr double EVENT_LIMIT = 2.6;
constexpr double EVENT_REQUEST_LIMIT = 2.2;
constexpr double PROCESS_REQUEST_LIMIT = 2.0;
constexpr double INSPECT_REQUEST_LIMIT = 2.0;

constexpr int KEY_DOWN = 2002;

class CMeasuredScene {
public:
    explicit CMeasuredScene(size_t nNodes) {
        m_key.m_strText = L"A";
        std::string strError;
        m_pSession = CSession::Open({.appFolder = APP_FOLDER, .moduleFile = ModulePath(), .texts = ETextTable::English},
                                    strError);
        if (m_pSession == nullptr) {
            throw std::runtime_error(strError);
        }
        m_pSession->SetEvaluation(EEvaluation::Event); // as with --listen
        for (size_t i = 0; i < nNodes; ++i) {
            const MeasuredType& type = MeasuredTypes()[i % MeasuredTypes().size()];
            SCreateCommand create;
            create.strHandle = "node " + std::to_string(i);
            create.guidType = type.guidType;
            create.clip = L"Clip";
            create.strGraph = FromUtf8(create.strHandle);
            if (m_pSession->Do(create).outcome.error) {
                throw std::runtime_error("a node can't be made");
            }
        }
    }

    bool Frame() { return !m_pSession->Do(SFrameCommand{.bOutputs = false}).outcome.error; }

    /// The evaluations of a frame, and nothing else.
    bool EvaluateNodes() {
        for (const auto& pNode : m_pSession->Scene().Nodes()) {
            benchmark::DoNotOptimize(pNode->pNode->ProcessNode(pNode->pGraphNode.get()));
        }
        return true;
    }

    bool Key() {
        return !m_pSession->Do(SEventCommand{.nDevice = DEVICE_KEYBOARD, .nEvent = KEY_DOWN, .payload = m_key})
                    .outcome.error;
    }

    /// The calls of a key event; the log lines and events that come of them are received and freed.
    bool CallNodes() {
        const SIOEventRecord record = {DEVICE_KEYBOARD, KEY_DOWN, &m_key};
        for (const auto& pNode : m_pSession->Scene().Nodes()) {
            benchmark::DoNotOptimize(pNode->pNode->DevIOEventOccurred(&record));
        }
        const P_ExtDevIOProcess& any = *m_pSession->Scene().Nodes().front()->pNode;
        MSG message;
        while (PeekMessageW(&message, any.m_hEventWnd, any.m_nEventMsg, any.m_nEventMsg, PM_REMOVE)) {
            delete reinterpret_cast<SQOREvent*>(message.lParam);
        }
        if (++m_nCalls % 64 == 0) {
            m_pSession->Do(SClockCommand{}); // frees the log lines, which the session has taken
        }
        return true;
    }

    /// A request as a script sends it.
    bool Ask(const std::string& strRequest) {
        const std::string strReply = AnswerText(*m_pSession, strRequest, m_files);
        return strReply.starts_with(R"({"ok":true)");
    }

    /// The JSON of a request and its reply, read and written by the library.
    bool ReadAndWrite(const std::string& strRequest, const nlohmann::ordered_json& reply) {
        Json request = Json::parse(strRequest);
        std::string strReply = reply.dump();
        benchmark::DoNotOptimize(&request);
        benchmark::DoNotOptimize(&strReply);
        return true;
    }

    nlohmann::ordered_json ReplyOf(const std::string& strRequest) {
        return nlohmann::ordered_json::parse(AnswerText(*m_pSession, strRequest, m_files));
    }

private:
    CNoFiles m_files;
    unsigned m_nCalls = 0;
    SKeyEventData m_key;
    std::unique_ptr<CSession> m_pSession;
};

} // namespace

std::vector<Comparison> MakeHostComparisons(size_t nNodes) {
    const auto pScene = std::make_shared<CMeasuredScene>(nNodes);
    pScene->Frame(); // nodes take events once they have been evaluated
    std::vector<Comparison> comparisons;
    const auto add = [&](const std::string& strName, size_t nOfThem, double fLimit, std::function<bool()> measured,
                         std::function<bool()> floor) {
        comparisons.push_back({"Host/" + strName + "/" + std::to_string(nNodes), nOfThem, fLimit, true,
                               std::move(measured), std::move(floor), std::numeric_limits<double>::infinity()});
    };
    add(
        "Frame", nNodes, nNodes > SMALL ? FRAME_LIMIT : SMALL_FRAME_LIMIT, [pScene] { return pScene->Frame(); },
        [pScene] { return pScene->EvaluateNodes(); });
    add(
        "Key", nNodes, EVENT_LIMIT, [pScene] { return pScene->Key(); }, [pScene] { return pScene->CallNodes(); });
    const auto addRequest = [&](const char* pszName, size_t nOfThem, double fLimit, const std::string& strRequest,
                                std::function<bool()> nodes) {
        add(
            std::string("Request ") + pszName, nOfThem, fLimit, [=] { return pScene->Ask(strRequest); },
            [=, reply = pScene->ReplyOf(strRequest)] { return nodes() && pScene->ReadAndWrite(strRequest, reply); });
    };
    addRequest("event", nNodes, EVENT_REQUEST_LIMIT,
               R"({"op":"event","device":0,"event":2002,"payload":{"is":"key","text":"A"}})",
               [pScene] { return pScene->CallNodes(); });
    addRequest("process", nNodes, PROCESS_REQUEST_LIMIT, R"({"op":"process"})",
               [pScene] { return pScene->EvaluateNodes(); });
    addRequest("inspect", 1, INSPECT_REQUEST_LIMIT, R"({"op":"inspect","node":"node 3"})", [] { return true; });
    return comparisons;
}
