// A session with the module, driven by the requests of the session protocol. One thread, no locks.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "Fields.h"
#include "HeldInput.h"
#include "Host.h"

class CSession {
public:
    /// Load the module and register its node types. Null, with a clear message, when that fails. There is one session
    /// at a time in a process.
    static std::unique_ptr<CSession> Open(const SSessionOptions& options, std::string& strError);

    /// Ends the session as the request `quit` does.
    ~CSession();

    CSession(const CSession&) = delete;
    CSession& operator=(const CSession&) = delete;

    /// One request object to one reply object. pHeld keeps account of what the sending connection holds down; null for
    /// a front without such connections.
    OrderedJson Handle(const Json& request, CHeldInput* pHeld = nullptr);

    /// One request text to one reply text; text that isn't JSON gets an error reply.
    std::string HandleText(std::string_view text, CHeldInput* pHeld = nullptr);

    /// Release all that a connection holds. The reply is that of the request `release_held`.
    OrderedJson ReleaseHeld(CHeldInput& held, const std::string& strReason);

    /// The network of the session. A front that runs its loop says so to it.
    CPeers& Peers() { return m_pHost->Peers(); }

    /// One evaluation of the whole graph. Returns what happened: an object of lists, empty when nothing did.
    OrderedJson Frame();

    /// What happened outside of requests and frames since the last call, in the same form.
    OrderedJson TakeHappened();

    /// The session is over: every further request is refused.
    bool HasQuit() const { return m_pHost->IsClosed(); }

    /// Grows whenever nodes, links or parameters were changed by a request.
    unsigned long long SceneVersion() const { return m_nSceneVersion; }

    /// The value outputs that changed since the last call, by node and parameter id:
    ///   {"m": {"370": {"int": 5, "float": 0.0, "string": ""}}}
    OrderedJson ChangedOutputs();

    /// Let the next ChangedOutputs return all value outputs.
    void ForgetSentOutputs() { m_sentOutputs.clear(); }

private:
    /// The values of an output as they were sent last.
    struct SOutputValue {
        int nValue;
        float fValue;
        CString strValue;
    };

    explicit CSession(std::unique_ptr<CHost> pHost);

    OrderedJson Reply(const OrderedJson& id, const std::function<OrderedJson()>& carryOut);
    void KeepAside();

    std::unique_ptr<CHost> m_pHost;
    OrderedJson m_aside = OrderedJson::object(); ///< what happened outside of requests
    unsigned long long m_nSceneVersion = 0;
    std::unordered_map<std::string, std::map<unsigned, SOutputValue>> m_sentOutputs;
};

/// The text of a reply: one line of valid UTF-8.
std::string ReplyText(const OrderedJson& reply);

/// The reply to a text that isn't taken as a request at all.
OrderedJson ErrorReply(const std::string& strError);
