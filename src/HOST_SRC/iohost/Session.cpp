#include "Session.h"

#include <bit>

#include "Inspect.h"
#include "Peers.h"
#include "Requests.h"
#include "TextUtf8.h"

namespace {

/// The request's id as the reply carries it.
OrderedJson RequestId(const CFields& fields) {
    const Json* pId = fields.Find("id");
    if (pId == nullptr) {
        return OrderedJson::value_t::discarded;
    }
    if (pId->is_structured()) {
        Refuse("id", "must be a string, a number, true, false or null");
    }
    return *pId;
}

} // namespace

std::unique_ptr<CSession> CSession::Open(const SSessionOptions& options, std::string& strError) {
    auto pHost = CHost::Open(options, strError);
    return pHost != nullptr ? std::unique_ptr<CSession>(new CSession(std::move(pHost))) : nullptr;
}

CSession::CSession(std::unique_ptr<CHost> pHost) : m_pHost(std::move(pHost)) {}

CSession::~CSession() = default;

OrderedJson CSession::Handle(const Json& request, CHeldInput* pHeld) {
    OrderedJson id = OrderedJson::value_t::discarded;
    return Reply(id, [&] {
        const CFields fields(request);
        id = RequestId(fields);
        if (HasQuit()) {
            Refuse("op", "the session has ended");
        }
        const std::string& strOp = fields.Text("op");
        const RequestRow* pRow = FindRequest(strOp);
        if (pRow == nullptr) {
            Refuse("op", "unknown op " + Quoted(strOp));
        }
        SRequestContext context{*m_pHost, fields, pHeld, m_nSceneVersion};
        try {
            Peers().Poll();
            OrderedJson reply = pRow->pCarryOut(context);
            Peers().Poll();
            m_nSceneVersion += pRow->bChangesScene ? 1 : 0;
            return reply;
        } catch (const CModuleFault&) {
            m_nSceneVersion += pRow->bChangesScene ? 1 : 0;
            throw;
        }
    });
}

std::string CSession::HandleText(std::string_view text, CHeldInput* pHeld) {
    Json request;
    try {
        request = ParseJson(text, "request");
    } catch (const CRefusal& refusal) {
        return ReplyText(ErrorReply(refusal.what()));
    }
    return ReplyText(Handle(request, pHeld));
}

OrderedJson CSession::ReleaseHeld(CHeldInput& held, const std::string& strReason) {
    return Reply(OrderedJson::value_t::discarded, [&]() -> OrderedJson {
        if (HasQuit()) {
            Refuse("op", "the session has ended");
        }
        return {{"released", ReleaseHeldInput(*m_pHost, held, strReason)}};
    });
}

OrderedJson CSession::Frame() {
    KeepAside();
    if (HasQuit()) {
        return OrderedJson::object();
    }
    for (auto& [nOrder, node] : m_pHost->Scene().Nodes()) {
        try {
            m_pHost->Evaluate(node, true);
        } catch (const CModuleFault& fault) {
            const CString strLine = FromUtf8(fault.what());
            NSVEKLog::WriteLog(LOG_ERROR, 0, 0, 0, 0, L"%s", strLine.GetString());
        }
    }
    return m_pHost->Happened().Take();
}

OrderedJson CSession::TakeHappened() {
    KeepAside();
    return std::exchange(m_aside, OrderedJson::object());
}

OrderedJson CSession::ChangedOutputs() {
    OrderedJson changed = OrderedJson::object();
    CScene& scene = m_pHost->Scene();
    std::erase_if(m_sentOutputs, [&](const auto& sent) { return scene.Find(sent.first) == nullptr; });
    for (const auto& [nOrder, node] : scene.Nodes()) {
        auto& sent = m_sentOutputs[node.strHandle];
        const VEKParamGroupList& lstGroup = node.pGraphNode->m_lstOutputGroup;
        for (POSITION pos = lstGroup.GetHeadPosition(); pos != nullptr;) {
            const VEKParamGroup& group = *lstGroup.GetNext(pos);
            for (POSITION posParam = group.m_lstParam.GetHeadPosition(); posParam != nullptr;) {
                const VEKParam& output = *group.m_lstParam.GetNext(posParam);
                if (output.m_nType == PARAM_EVENT.m_nType) {
                    continue;
                }
                const unsigned nId = output.m_guid.Data1;
                const auto [entry, bNew] = sent.try_emplace(nId);
                SOutputValue& value = entry->second;
                // Bit by bit: an undefined number counts as unchanged.
                if (bNew || value.nValue != output.m_nValue || value.strValue != output.m_strValue ||
                    std::bit_cast<unsigned>(value.fValue) != std::bit_cast<unsigned>(output.m_fValue)) {
                    value = {output.m_nValue, output.m_fValue, output.m_strValue};
                    changed[node.strHandle][std::to_string(nId)] = ValuesToJson(output);
                }
            }
        }
    }
    return changed;
}

OrderedJson CSession::Reply(const OrderedJson& id, const std::function<OrderedJson()>& carryOut) {
    KeepAside();
    OrderedJson reply = {{"ok", true}};
    OrderedJson fields;
    try {
        fields = carryOut();
    } catch (const std::exception& exception) {
        reply["ok"] = false;
        fields = {{"error", exception.what()}};
    }
    if (!id.is_discarded()) {
        reply["id"] = id;
    }
    reply.update(fields);
    reply.update(m_pHost->Happened().Take());
    return reply;
}

void CSession::KeepAside() {
    AppendHappened(m_aside, m_pHost->Happened().Take());
}

std::string ReplyText(const OrderedJson& reply) {
    return reply.dump(-1, ' ', false, OrderedJson::error_handler_t::replace);
}

OrderedJson ErrorReply(const std::string& strError) {
    return {{"ok", false}, {"error", strError}};
}
