#include "session/Session.h"

#include <utility>

#include "base/TextTables.h"
#include "network/Peers.h"
#include "protocol/Requests.h"
#include "protocol/SceneFile.h"

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

CSession::~CSession() {
    Peers().SetItemObserver(nullptr);
}

void CSession::Record(std::unique_ptr<CRecorder> pRecorder) {
    m_pRecorder = std::move(pRecorder);
    Peers().SetItemObserver(this);
    Handle({{"op", "recording"}, {"version", RECORDING_VERSION}, {"texts", TextTableName(m_pHost->Texts())}});
}

OrderedJson CSession::Handle(const Json& request, CHeldInput* pHeld) {
    if (m_pRecorder == nullptr) {
        return CarryOut(request, pHeld);
    }
    m_pRecorder->StopClock();
    const Json whole = WithSceneInside(request);
    OrderedJson reply = CarryOut(whole, pHeld);
    m_pRecorder->Keep(whole, pHeld != nullptr ? pHeld->Connection() : 0, reply);
    return reply;
}

OrderedJson CSession::CarryOut(const Json& request, CHeldInput* pHeld) {
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
        SRequestContext context{*m_pHost, fields, m_held, pHeld, m_nSceneVersion, &m_frameOutputs};
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

OrderedJson CSession::CloseConnection(CHeldInput& held, const std::string& strReason) {
    OrderedJson reply = Handle({{"op", "release_held"}, {"reason", strReason}}, &held);
    m_held.Close(held);
    return reply;
}

OrderedJson CSession::Frame() {
    KeepAside();
    if (HasQuit()) {
        return OrderedJson::object();
    }
    if (m_pRecorder == nullptr) {
        EvaluateFrame(*m_pHost, nullptr);
        return m_pHost->Happened().Take();
    }
    OrderedJson happened = Handle({{"op", "process"}, {"frame", true}});
    for (const char* pszField : {"ok", "results", "outputs"}) {
        happened.erase(pszField);
    }
    return happened;
}

OrderedJson CSession::TakeHappened() {
    KeepAside();
    return std::exchange(m_aside, OrderedJson::object());
}

void CSession::ForgetSent() {
    m_sentOutputs.Forget();
    m_sentObjects.Forget();
    m_pHost->JsonVerdicts().ForgetTaken();
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

void CSession::OnItemComes() {
    m_pRecorder->StopClock();
    m_beforeItem = m_pHost->Happened().Now();
}

void CSession::OnItemHandled(const OrderedJson& item) {
    OrderedJson event = {{"op", "event"}};
    event.update(item);
    event.erase("results");
    OrderedJson reply = {{"ok", true}, {"results", item.at("results")}};
    reply.update(m_pHost->Happened().Since(m_beforeItem));
    m_pRecorder->Keep(event, 0, reply);
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
