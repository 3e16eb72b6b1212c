#include "fronts/page/PageServer.h"

#include "base/Listener.h"
#include "fronts/page/HttpConnection.h"
#include "fronts/page/QueuedTexts.h"
#include "fronts/page/SceneFolder.h"
#include "fronts/page/UnsavedScene.h"
#include "fronts/page/WebSocketClient.h"

#include <boost/asio/signal_set.hpp>

#include <algorithm>
#include <csignal>
#include <iostream>
#include <map>
#include <memory>
#include <random>
#include <utility>

#include "base/Caught.h"
#include "base/FrameTimer.h"
#include "base/HostLine.h"
#include "base/OutputLines.h"
#include "fronts/terminal/TerminalLines.h"
#include "network/Peers.h"
#include "protocol/Pushes.h"
#include "protocol/SceneFile.h"

namespace {

constexpr size_t MOST_CONNECTIONS = 64;
constexpr size_t MOST_QUEUED_BYTES = size_t{32} << 20; ///< for all clients together
constexpr size_t MOST_UNTOLD = 1000;                   ///< fired events and log lines of items
constexpr size_t MOST_TURNED_AWAY = 64;                ///< at once; those beyond are closed without an answer
constexpr std::chrono::seconds GOODBYE_TIME{1};
constexpr std::chrono::milliseconds TELL_PAUSE{250}; ///< of what changes with every item: enough to look at

std::string PushText(Push push) {
    CutForViewers(push);
    return JsonObject(push);
}

/// Joins the session, the frames and the pages: one io_context, one thread.
class CPageServer final : public IWebSocketListener, private ISessionObserver {
public:
    CPageServer(CSession& session, const SListenOptions& options, const CHttpFiles& files)
        : m_session(session), m_fFps(options.fFps), m_files(files), m_scenes(options.sceneFolder),
          m_terminal(session, [this](const std::string& strLines) { m_output.Print(strLines); }),
          m_frameTimer(m_context, options.fFps, [this] { GuardedFrame(); }) {
        m_session.Attach(*this);
        // Connections know the scene of --scene by its name in their folder.
        CHistory& history = m_session.History();
        history.NoteSaved(m_scenes.NameOf(history.File().strName));
    }

    ~CPageServer() { m_session.Detach(*this); }

    /// Empty, or why the address can't be had.
    std::string Listen(const asio::ip::tcp::endpoint& endpoint) {
        if (std::string strProblem = OpenListener(m_acceptor, endpoint); !strProblem.empty()) {
            return strProblem;
        }
        if (endpoint.port() != 0) {
            m_unsaved.SetFile(m_scenes.TakeOver(endpoint.port()));
        }
        const auto bound = m_acceptor.local_endpoint();
        m_strAddress = EndpointText(bound);
        m_pSite = std::make_unique<const SHttpSite>(
            SHttpSite{m_files, bound.address().to_string(), bound.port(),
                      bound.address().is_loopback() ? CAccessToken() : CAccessToken::Make(bound.port()), *this,
                      m_session, [this](std::string_view request) { return AnswerPosted(request); }});
        return {};
    }

    void Run() {
        const std::string strQuery = m_pSite->token.Query();
        m_output.Print(
            "iohost: page at http://" + m_strAddress + "/" + strQuery + "\n" +
            (strQuery.empty() ? "" : "iohost: whoever knows the address with its token can drive the nodes\n"));
        GuardedFrame(); // nodes take items once they have been evaluated
        m_session.Peers().RunAlways();
        if (const unsigned short nPort = ConfiguredBroadcastPort(); nPort != 0) {
            m_session.Peers().KeepReceivingBroadcasts(nPort);
        }
        AwaitSignal(); // a signal handled during the first frame would stop a loop that doesn't run yet
        Spawn(m_context, "the page's connections aren't taken any longer", [this] {
            return AcceptConnections(
                m_acceptor, [this](TcpSocket socket) { Take(std::move(socket)); },
                [this](const std::string& strError) { m_acceptLine.Write("connections can't be taken: " + strError); });
        });
        m_frameTimer.Start();
        m_tellTimer.Start();
        RunLoop([this] { m_context.run(); });
    }

    void OnClientOpened(const std::shared_ptr<CWebSocketClient>& pClient) override {
        TellScene(); // what is due to all goes out first: the new client would get it twice
        CHeldInput& held = m_session.Held().Open();
        m_clients.emplace(pClient.get(), SClient{pClient, held});
        pClient->Send(
            MakeText(PushText(SHelloPush{IOHOST_VERSION, m_fFps, m_strAddress, held.Connection(), m_nSceneNumber})));
        pClient->Send(MakeText(PushText(SHeldPush{m_session.Held().State()})));
        pClient->Send(MakeText(m_strToldHistory), true);
        // The next frame tells everybody all of it; to those who know it already that changes nothing.
        m_outputs.Forget();
        m_toldObjects.reset();
        m_session.JsonVerdicts().ForgetTaken();
        m_session.ForgetToldCounts();
    }

    void OnClientText(CWebSocketClient& client, std::string_view text) override {
        if (m_bStopping) {
            return; // what it held has been released
        }
        const KeySet keysBefore = m_session.Held().VirtualKeys();
        client.Send(
            MakeText(AnswerText(m_session, text, m_scenes, {.pHeld = &m_clients.at(&client).held}, CutForViewers)),
            true);
        TellChanges(keysBefore);
        if (m_session.HasQuit()) {
            Stop();
        }
    }

    void OnClientClosed(CWebSocketClient& client) override {
        CHeldInput& held = m_clients.at(&client).held;
        const KeySet keysBefore = m_session.Held().VirtualKeys();
        m_clients.erase(&client);
        m_session.CloseConnection(held, "its connection closed");
        TellChanges(keysBefore);
        if (m_bStopping && m_clients.empty()) {
            m_context.stop();
        }
    }

private:
    struct SClient {
        std::shared_ptr<CWebSocketClient> pClient;
        CHeldInput& held;
    };

    /// Answer a request that came by a POST. All such requests count as one connection: what one presses, another lets
    /// go of.
    std::string AnswerPosted(std::string_view text) {
        if (m_bStopping) {
            return ErrorReply("the host ends"); // what was held has been released
        }
        if (m_pPosting == nullptr) {
            m_pPosting = &m_session.Held().Open();
        }
        const KeySet keysBefore = m_session.Held().VirtualKeys();
        std::string strReply = AnswerText(m_session, text, m_scenes, {.pHeld = m_pPosting}, CutForViewers);
        TellChanges(keysBefore);
        if (m_session.HasQuit()) {
            asio::post(m_context, [this] { Stop(); }); // once the reply is on its way
        }
        return strReply;
    }

    void Take(TcpSocket socket) {
        if (m_nConnections < MOST_CONNECTIONS) {
            Serve(m_nConnections, "a connection of the page failed", ServeHttpConnection(std::move(socket), *m_pSite));
            return;
        }
        const std::string strFull =
            "the page's server has " + std::to_string(MOST_CONNECTIONS) + " connections, which is its most";
        m_fullLine.Write("a connection was turned away: " + strFull);
        if (m_nTurnedAway < MOST_TURNED_AWAY) {
            Serve(m_nTurnedAway, "a connection couldn't be turned away",
                  TurnAwayHttpConnection(std::move(socket), strFull));
        }
    }

    /// A connection counts for as long as it's served.
    void Serve(size_t& nCount, const char* pszFailed, Awaitable<void> connection) {
        ++nCount;
        asio::co_spawn(m_context, std::move(connection), [this, &nCount, pszFailed](std::exception_ptr pThrown) {
            --nCount;
            if (pThrown != nullptr) {
                DoGuarded(m_failedLine, pszFailed, [&] { std::rethrow_exception(pThrown); });
            }
        });
    }

    void AwaitSignal() {
        m_signals.async_wait([this](const error_code& error, int) {
            if (!error) {
                AwaitSignal();
                Stop();
            }
        });
    }

    void Stop() {
        ReleaseAll();
        if (m_bStopping || m_clients.empty()) {
            m_context.stop();
            return;
        }
        m_bStopping = true;
        m_acceptor.close();
        m_frameTimer.Stop();
        m_tellTimer.Stop();
        for (const auto& [pKey, client] : m_clients) {
            client.pClient->Close();
        }
        // Clients that don't say goodbye aren't waited for.
        m_goodbyeTimer.expires_after(GOODBYE_TIME);
        m_goodbyeTimer.async_wait([this](const error_code&) { m_context.stop(); });
    }

    void ReleaseAll() {
        const KeySet keysBefore = m_session.Held().VirtualKeys();
        for (CHeldInput& held : m_session.Held().Connections()) {
            m_session.Do(SReleaseHeldCommand{.strReason = "the host ends"}, {.pHeld = &held});
        }
        ShowKeysToNodes(keysBefore);
    }

    void Frame() {
        ++m_nFrame;
        TellHappened(std::exchange(m_ofItems, {}), nullptr);
        if (!m_session.HasQuit()) {
            m_session.Do(SFrameCommand{.bOutputs = false}); // pages are told below
        }
        if (m_clients.empty()) {
            return;
        }
        if (OutputValues changed = m_outputs.Take(m_session.Scene()); !changed.empty()) {
            SendToAll(SOutputsPush{std::move(changed)});
        }
        if (Verdicts verdicts = m_session.JsonVerdicts().TakeNew(m_session.Scene()); !verdicts.empty()) {
            SendToAll(SVerdicts{std::move(verdicts)});
        }
        if (auto objects = ObjectsOf(m_session.Scene()); objects != m_toldObjects) {
            m_toldObjects = objects;
            SendToAll(SObjects{std::move(objects)});
        }
        for (const auto& [of, nItems] : std::exchange(m_dropped, {})) { // told once, however many items are late
            SendToAll(SDroppedItems{of.first, of.second, nItems});
        }
        if (const auto tNow = steady_clock::now(); tNow - m_tTold >= TELL_PAUSE) {
            m_tTold = tNow;
            if (SCounters changed = m_session.TakeChangedCounts(); !changed.nodes.empty()) {
                SendToAll(std::move(changed));
            }
            const auto nVersion = m_session.Peers().StateVersion();
            if (nVersion != std::exchange(m_nToldNetworkVersion, nVersion)) {
                SendToAll(m_session.Peers().State());
            }
        }
    }

    /// Tell what a request or the end of a connection changed.
    void TellChanges(const KeySet& keysBefore) {
        TellScene();
        TellHeld();
        ShowKeysToNodes(keysBefore);
    }

    /// Nodes read the keyboard when they are evaluated. A frame right after each change keeps them from missing one
    /// when several come between two frames.
    void ShowKeysToNodes(const KeySet& keysBefore) {
        if (m_session.Held().VirtualKeys() != keysBefore) {
            GuardedFrame();
        }
    }

    /// The next frame comes whatever becomes of this one.
    void GuardedFrame() {
        DoGuarded(m_frameLine, "a frame failed", [this] { Frame(); });
    }

    void OnBegin(const Command& command) override {
        if (std::holds_alternative<SQuitCommand>(command)) {
            WriteHostLine(LOG_INFORMATION, "a request ends the host");
            m_unsaved.Flush();
            ReleaseAll(); // while nodes and devices are there
        }
        if (std::holds_alternative<SLogCommand>(command)) {
            TellHappened(std::exchange(m_ofItems, {}), nullptr); // lines that the reply has aren't told behind it
        }
    }

    /// Whoever asked is told by the reply. What items cause is told with the next frame: they may come by the thousand.
    void OnDone(const SDone& done) override {
        m_change.Add(done.change);
        TellStep(done);
        if (m_clients.empty()) {
            return;
        }
        if (done.origin.from) {
            SActivity activity = done.activity;
            CutForViewers(activity);
            m_ofItems.Append(std::move(activity));
            if (m_ofItems.fired.size() + m_ofItems.logged.size() > MOST_UNTOLD) {
                TellHappened(std::exchange(m_ofItems, {}), nullptr);
            }
            return;
        }
        TellHappened(done.activity, done.origin.pHeld);
        if (done.origin.pHeld == nullptr) { // else the reply comes first
            TellScene();
        }
    }

    void OnDropped(const SDroppedItems& dropped) override {
        if (!m_clients.empty()) {
            m_dropped[{dropped.nDevice, dropped.sender}] += dropped.nItems;
        }
    }

    void TellHappened(SActivity activity, const CHeldInput* pButFor) {
        const bool bToNobody =
            std::ranges::all_of(m_clients, [&](const auto& entry) { return &entry.second.held == pButFor; });
        if (activity.IsEmpty() || bToNobody) {
            return;
        }
        SendToAll(SHappenedPush{std::move(activity), m_nFrame}, pButFor);
    }

    /// A page where nothing happens would otherwise not notice that the host has stalled.
    void TellFrame() {
        DoGuarded(m_frameLine, "the pages weren't told of a frame", [this] { SendToAll(SFramePush{m_nFrame}); });
        DoGuarded(m_failedLine, "the unsaved scene can't be written aside", [this] { m_unsaved.Check(); });
    }

    /// A step that was taken, undone or redone, to all but whoever did it.
    void TellStep(const SDone& done) {
        const CHistory& history = m_session.History();
        const auto nBefore = std::exchange(m_nState, history.State());
        if (history.State() == nBefore) {
            return;
        }
        EStepWas nWas = EStepWas::Taken;
        if (std::holds_alternative<SUndoCommand>(*done.pCommand)) {
            nWas = EStepWas::Undone;
        } else if (std::holds_alternative<SRedoCommand>(*done.pCommand)) {
            nWas = EStepWas::Redone;
        } else if (history.State() < nBefore) {
            return; // a step of a series led back to where the series began
        }
        if (const SStep* pStep = nWas == EStepWas::Undone ? history.ToRedo() : history.ToUndo()) {
            SendToAll(SStepPush{nWas, *pStep}, done.origin.pHeld);
        }
    }

    void TellScene() {
        TellSceneChange();
        TellHistory();
    }

    void TellSceneChange() {
        const SSceneChange change = std::exchange(m_change, {});
        if (!change.bEverything && !change.bList && change.nodes.empty()) {
            return;
        }
        SScenePush push{m_session.SceneVersion()};
        if (change.bEverything) {
            push.scene = m_nSceneNumber = std::random_device{}();
        } else {
            (change.bList ? push.changed : push.nodes).emplace(change.nodes.begin(), change.nodes.end());
        }
        SendToAll(std::move(push));
    }

    /// What can be undone and redone, and whether the scene is saved.
    void TellHistory() {
        const CHistory& history = m_session.History();
        const auto step = [](const SStep* pStep) { return pStep != nullptr ? std::optional(*pStep) : std::nullopt; };
        std::string strPush = PushText(SHistoryPush{step(history.ToUndo()), step(history.ToRedo()), history.State(),
                                                    history.File(), m_scenes.Left()});
        if (strPush != m_strToldHistory) {
            m_strToldHistory = std::move(strPush);
            SendToAll(MakeText(m_strToldHistory));
        }
    }

    void TellHeld() {
        CHeldInputs& held = m_session.Held();
        if (held.Version() != m_nToldHeldVersion) {
            m_nToldHeldVersion = held.Version();
            SendToAll(SHeldPush{held.State(), held.TakeReleasedByOthers()});
        }
    }

    void SendToAll(Push push, const CHeldInput* pButFor = nullptr) {
        SendToAll(MakeText(PushText(std::move(push))), pButFor);
    }

    void SendToAll(const std::shared_ptr<const std::string>& pText, const CHeldInput* pButFor = nullptr) {
        for (const auto& [pKey, client] : m_clients) {
            if (&client.held != pButFor) {
                client.pClient->Send(pText);
            }
        }
    }

    /// A text to send. When too much waits, drop the client with the most waiting: one that reads keeps its queue
    /// short.
    std::shared_ptr<const std::string> MakeText(std::string strText) {
        if (m_texts.Bytes() > MOST_QUEUED_BYTES && !m_clients.empty()) {
            std::ranges::max_element(m_clients, {}, [](const auto& entry) {
                return entry.second.pClient->QueuedBytes();
            })->second.pClient->Drop();
        }
        return m_texts.Make(std::move(strText));
    }

    CSession& m_session;
    asio::io_context& m_context{m_session.Peers().Context()};
    const double m_fFps;
    const CHttpFiles& m_files;
    CSceneFolder m_scenes;
    CUnsavedScene m_unsaved{m_session};
    COutputLines m_output{TerminalOutput()};
    CTerminalLines m_terminal;
    SActivity m_ofItems; ///< what items of the network caused since the last frame
    COutputChanges m_outputs;
    std::optional<std::vector<SObjectState>> m_toldObjects; ///< none: nobody knows them
    TcpAcceptor m_acceptor{m_context};
    /// Kept from the start: whoever reads the address may end the host at once.
    asio::signal_set m_signals{m_context, SIGINT, SIGTERM, TERMINAL_SIGNAL};
    SteadyTimer m_goodbyeTimer{m_context};
    CFrameTimer m_frameTimer;
    CFrameTimer m_tellTimer{m_context, 1, [this] { TellFrame(); }};
    CLimitedLine m_frameLine{LOG_ERROR};
    CLimitedLine m_failedLine{LOG_ERROR};
    CLimitedLine m_acceptLine{LOG_ERROR};
    CLimitedLine m_fullLine{LOG_ERROR};
    std::unique_ptr<const SHttpSite> m_pSite; ///< once it listens
    std::string m_strAddress;
    CQueuedTexts m_texts;
    std::map<const CWebSocketClient*, SClient> m_clients;
    CHeldInput* m_pPosting = nullptr; ///< what posted requests hold; null until there is one
    size_t m_nConnections = 0;
    size_t m_nTurnedAway = 0; ///< that aren't closed yet
    unsigned long long m_nFrame = 0;
    SSceneChange m_change; ///< that nobody was told of yet
    /// A new random one for each scene: it also differs from those of another host at the same address.
    unsigned m_nSceneNumber{std::random_device{}()};
    std::string m_strToldHistory;
    unsigned long long m_nState{m_session.History().State()}; ///< of the scene, after the last command
    unsigned long long m_nToldNetworkVersion = 0;
    unsigned long long m_nToldHeldVersion = 0;
    std::map<std::pair<int, std::optional<std::string>>, size_t>
        m_dropped;                    ///< items since the last frame, by device and sender
    steady_clock::time_point m_tTold; ///< of counters and network
    bool m_bStopping = false;
};

} // namespace

int RunPageServer(CSession& session, const SListenOptions& options) {
    constexpr int EXIT_REFUSED = 1;

    error_code error;
    const auto address = asio::ip::make_address(options.strAddress, error);
    if (error) {
        std::cerr << "iohost: --listen: " << Quoted(options.strAddress)
                  << " isn't a numeric address, as 127.0.0.1 is\n";
        return EXIT_REFUSED;
    }
    try {
        const CHttpFiles files(options.webFolder);
        if (files.Find("/") == nullptr) {
            std::cerr << "iohost: --web: there is no page in " << options.webFolder << '\n';
            return EXIT_REFUSED;
        }
        std::error_code noFolder;
        if (!std::filesystem::is_directory(options.sceneFolder, noFolder)) {
            WriteHostLine(LOG_ERROR, "there is no folder " + Utf8(options.sceneFolder) +
                                         ": scenes can't be saved, and unsaved ones won't be kept");
        }
        CPageServer server(session, options, files);
        const asio::ip::tcp::endpoint endpoint(address, options.nPort);
        const std::string strProblem = server.Listen(endpoint);
        if (!strProblem.empty()) {
            std::cerr << "iohost: can't listen on " << EndpointText(endpoint) << ": " << strProblem
                      << "; --listen ADDR:PORT chooses another address or port\n";
            return EXIT_REFUSED;
        }
        if (!options.strControlAddress.empty()) {
            session.Peers().Listen(
                {.address = options.strControlAddress, .broadcast = {}, .control = options.nControlPort});
        }
        server.Run();
    } catch (const std::filesystem::filesystem_error& problem) {
        std::cerr << "iohost: --web: the page's files can't be read: " << problem.what() << '\n';
        return EXIT_REFUSED;
    } catch (const CRefusal& refusal) {
        std::cerr << "iohost: --control: " << refusal.what() << '\n';
        return EXIT_REFUSED;
    }
    return 0;
}
