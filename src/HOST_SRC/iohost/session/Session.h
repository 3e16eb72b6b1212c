// A session with the module, driven by the requests of the session protocol. One thread, no locks.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "engine/Host.h"
#include "fronts/recording/Recorder.h"
#include "network/ItemObserver.h"
#include "protocol/Fields.h"
#include "scene/ObjectChanges.h"
#include "scene/OutputChanges.h"
#include "session/HeldInput.h"

class CSession final : private IItemObserver {
public:
    /// Load the module and register its node types. Null, with a clear message, when that fails. There is one session
    /// at a time in a process.
    static std::unique_ptr<CSession> Open(const SSessionOptions& options, std::string& strError);

    /// Ends the session as the request `quit` does.
    ~CSession();

    CSession(const CSession&) = delete;
    CSession& operator=(const CSession&) = delete;

    /// What the connections hold down; a front that has connections opens an account for each.
    CHeldInputs& Held() { return m_held; }

    /// One request object to one reply object. pHeld keeps account of what the sending connection holds down; null for
    /// a front without such connections.
    OrderedJson Handle(const Json& request, CHeldInput* pHeld = nullptr);

    /// A request of the host's own: it isn't recorded.
    OrderedJson Query(const Json& request) { return CarryOut(request, nullptr); }

    /// One request text to one reply text; text that isn't JSON gets an error reply.
    std::string HandleText(std::string_view text, CHeldInput* pHeld = nullptr);

    /// Release all that a connection holds, and forget it. The reply is that of the request `release_held`.
    OrderedJson CloseConnection(CHeldInput& held, const std::string& strReason);

    /// From now on keep what comes in.
    void Record(std::unique_ptr<CRecorder> pRecorder);

    /// Null without one.
    const CRecorder* Recorder() const { return m_pRecorder.get(); }

    /// The network of the session. A front that runs its loop says so to it.
    CPeers& Peers() { return m_pHost->Peers(); }

    /// What nodes take for the application's main window.
    CMainWindow& MainWindow() { return m_pHost->MainWindow(); }

    /// One evaluation of the whole graph. Returns what happened: an object of lists, empty when nothing did.
    OrderedJson Frame();

    /// What happened outside of requests and frames since the last call, in the same form.
    OrderedJson TakeHappened();

    /// The session is over: every further request is refused.
    bool HasQuit() const { return m_pHost->IsClosed(); }

    /// Grows whenever nodes, links or parameters were changed by a request.
    unsigned long long SceneVersion() const { return m_nSceneVersion; }

    /// The value outputs that changed since the last call, as COutputChanges tells them.
    OrderedJson ChangedOutputs() { return m_sentOutputs.Take(m_pHost->Scene()); }

    /// The scene's objects, when any of them changed since the last call; null otherwise.
    OrderedJson ChangedObjects() { return m_sentObjects.Take(m_pHost->Scene()); }

    /// What the JSON nodes made of the texts that came since the last call, as CJsonVerdicts tells it.
    OrderedJson NewJsonVerdicts() { return m_pHost->JsonVerdicts().TakeNew(m_pHost->Scene()); }

    /// Let the next ChangedOutputs, ChangedObjects and NewJsonVerdicts return everything.
    void ForgetSent();

private:
    explicit CSession(std::unique_ptr<CHost> pHost);

    void OnItemComes() override;
    void OnItemHandled(const OrderedJson& item) override;

    OrderedJson CarryOut(const Json& request, CHeldInput* pHeld);
    OrderedJson Reply(const OrderedJson& id, const std::function<OrderedJson()>& carryOut);
    void KeepAside();

    std::unique_ptr<CHost> m_pHost;
    CHeldInputs m_held;
    OrderedJson m_aside = OrderedJson::object(); ///< what happened outside of requests
    unsigned long long m_nSceneVersion = 0;
    COutputChanges m_sentOutputs;  ///< told by ChangedOutputs
    COutputChanges m_frameOutputs; ///< told in replies
    CObjectChanges m_sentObjects;
    std::unique_ptr<CRecorder> m_pRecorder;
    CHappened::Mark m_beforeItem{}; ///< while an item is handed to the nodes
};

/// The text of a reply: one line of valid UTF-8.
std::string ReplyText(const OrderedJson& reply);

/// The reply to a text that isn't taken as a request at all.
OrderedJson ErrorReply(const std::string& strError);
