// A session with the module: the one way in for whatever comes to its nodes. One thread, no locks.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/Clock.h"
#include "base/HostLine.h"
#include "engine/Host.h"
#include "network/Peers.h"
#include "session/Command.h"
#include "session/HeldInput.h"
#include "session/Outcome.h"

/// Hears of all that comes into a session and what becomes of it.
class ISessionObserver {
public:
    /// A command is about to be carried out.
    virtual void OnBegin(const Command& /*command*/) {}

    /// It was, or something happened between commands. Observers must not change the session from here.
    virtual void OnDone(const SDone& done) = 0;

    /// Items waited too long for a device.
    virtual void OnDropped(const SDroppedItems& /*dropped*/) {}

protected:
    ~ISessionObserver() = default;
};

class CSession final : private INetworkReceiver {
public:
    /// Load the module and register its types. Null, with a message, when that fails. One at a time in a process.
    static std::unique_ptr<CSession> Open(const SSessionOptions& options, std::string& strError);

    /// Ends the session as the command `quit` does.
    ~CSession();

    /// Carry a command out.
    SDone Do(const Command& command, const SOrigin& origin = {});

    /// Release all that a connection holds, and forget it.
    SDone CloseConnection(CHeldInput& held, const std::string& strReason);

    /// Observers hear in the order in which they came. They aren't owned.
    void Attach(ISessionObserver& observer) { m_observers.push_back(&observer); }
    void Detach(ISessionObserver& observer) { std::erase(m_observers, &observer); }

    /// The session is over: every further command is refused.
    bool HasQuit() const { return m_pHost->IsClosed(); }

    /// What the connections hold down; a front that has connections opens an account for each.
    CHeldInputs& Held() { return m_held; }

    /// The network of the session. A front that runs its loop says so to it.
    CPeers& Peers() { return m_peers; }

    /// What nodes take for the application's main window.
    CMainWindow& MainWindow() { return m_pHost->MainWindow(); }

    CClock& Clock() { return m_clock; }

    /// When nodes behind a fired output are evaluated; as the command `evaluate` sets it.
    EEvaluation Evaluation() const { return m_nEvaluation; }
    void SetEvaluation(EEvaluation nEvaluation) { m_nEvaluation = nEvaluation; }

    /// Where display texts come from.
    ETextTable Texts() const { return m_pHost->Texts(); }

    CScene& Scene() { return m_pHost->Scene(); }

    /// Grows whenever nodes, links or parameters were changed by a command.
    unsigned long long SceneVersion() const { return m_nSceneVersion; }

    /// What the JSON nodes made of the texts that came.
    CJsonVerdicts& JsonVerdicts() { return m_pHost->JsonVerdicts(); }

    /// The counts that changed since the last call, and how long ago their nodes acted.
    SCounters TakeChangedCounts();

    /// Let the next TakeChangedCounts return all.
    void ForgetToldCounts();

    /// The scene with parameters as the last step or save left them: what nodes and links wrote since isn't in it.
    /// Quick, however many nodes there are.
    SSceneDocument SceneLeft();

    /// The scene's steps, and its file.
    CHistory& History() { return m_history; }

private:
    explicit CSession(std::unique_ptr<CHost> pHost) : m_pHost(std::move(pHost)) {}

    bool OnItem(EPeer nFrom, const SIOEventRecord& record) override;
    std::optional<std::string> OnSent(const SSentItem& item) override;
    void OnDropped(const SDroppedItems& dropped) override;

    void TellObservers(const SDone& done);
    SOutcome CarryOut(const Command& command, const SOrigin& origin);
    Result CarryOutStep(const Command& command, const SOrigin& origin);
    void RollBack(const SScenePart& before, const SSceneScope& scope);
    Result Perform(const Command& command, const SOrigin& origin);

    SNode& NodeOf(const std::string& strHandle, const std::string& strField = "node");
    std::vector<SNode*> NodeOrAll(const std::optional<std::string>& handle);
    VEKParam& SetValue(const SSetCommand& set);
    std::vector<SRelease> Release(CHeldInput& held, const SReleaseHeldCommand& command);
    void Follow();
    void Settle(SNode& triggered);
    void BuildScene(const SSceneDocument& document, const std::string& strPath);
    void AwaitDevices();
    Result Move(std::optional<unsigned long long> to, bool bForth);
    void OnHeldBack();

    // What each command does; what takes more than a line stands in Operations.cpp and its neighbours.
    Result On(const SCatalogueCommand& command);
    Result On(const SCallCommand& command) { return SCalled{m_pHost->CallModule(command.nCode)}; }
    Result On(const SCreateCommand& command);
    Result On(const SInspectCommand& command);
    Result On(const SInspectNodesCommand& command);
    void On(const SInitCommand& command);
    void On(const SOutputsCommand& command) { m_pHost->MakeOutputs(NodeOf(command.strHandle)); }
    void On(const SEvaluateCommand& command) { m_nEvaluation = command.nOn; }
    Result On(const SProcessCommand& command);
    Result On(const SFrameCommand& command);
    Result On(const SEventCommand& command, const SOrigin& origin);
    Result On(const SJsonCommand& /*command*/) { return SVerdicts{JsonVerdicts().All(Scene())}; }
    Result On(const SReleaseHeldCommand& command, const SOrigin& origin);
    void On(const SSetCommand& command) { SetValue(command); }
    Result On(const SEditCommand& command);
    void On(const STriggerCommand& command);
    void On(const SDropCommand& command);
    void On(const SLinkCommand& command);
    void On(const SUnlinkCommand& command);
    void On(const SKeysCommand& command, const SOrigin& origin);
    void On(const SClockCommand& command) { m_clock.Set(command.ms); }
    void On(const SMainWindowCommand& command) { MainWindow().Set(command.bPresent, command.bEnabled); }
    void On(const SObjectCommand& command);
    Result On(const SObjectsCommand& /*command*/) { return SObjects{ObjectsOf(Scene())}; }
    void On(const SDevicesCommand& command);
    void On(const SDeviceCommand& command);
    void On(const SRemoveDeviceCommand& command);
    void On(const SConnectCommand& command);
    void On(const SSendCommand& command);
    Result On(const SListenCommand& command);
    Result On(const SWaitCommand& command);
    Result On(const SNetworkCommand& /*command*/) { return m_peers.State(); }
    void On(const SListenOnlyCommand& command);
    Result On(const SLogCommand& command) { return SLogLines{m_pHost->Activity().Lines().Behind(command.nAfter)}; }
    Result On(const SCountersCommand& command);
    void On(const SResetCountersCommand& command);
    Result On(const SLayoutCommand& command);
    Result On(const SDestroyCommand& command);
    Result On(const SSaveCommand& command);
    void On(const SLoadCommand& command);
    Result On(const SSceneCommand& command);
    void On(const SRenameCommand& command) { NodeOf(command.strHandle).pGraphNode->m_strName = command.strGraph; }
    void On(const SPlaceCommand& command);
    void On(const SChangeObjectCommand& command);
    void On(const SRemoveObjectCommand& command);
    void On(const SBatchCommand& command, const SOrigin& origin);
    Result On(const SUndoCommand& command) { return Move(command.to, false); }
    Result On(const SRedoCommand& command) { return Move(command.to, true); }
    Result On(const SHistoryCommand& command);
    void On(const SScenesCommand& /*command*/) {}
    void On(const SRecoverCommand& /*command*/) {}
    void On(const SRecordingCommand& command);
    void On(const SQuitCommand& command);

    CClock m_clock;
    std::unique_ptr<CHost> m_pHost;
    CPeers m_peers{*this};
    CHeldInputs m_held{m_clock};
    std::vector<ISessionObserver*> m_observers;
    int m_nDepth = 0; ///< commands under way: items come within a `wait`
    EEvaluation m_nEvaluation = EEvaluation::Frame;
    bool m_bRounding = true;          ///< false for recordings made before links rounded
    unsigned long long m_nFollow = 0; ///< number of the current call of Follow
    unsigned long long m_nSceneVersion = 0;
    CHistory m_history;
    SSceneChange m_change;         ///< of the command under way
    COutputChanges m_frameOutputs; ///< as frames told them
    std::vector<SDispatched> m_dispatched;
    CLimitedLine m_faultLine{LOG_ERROR};
    CLimitedLine m_heldBackLine{LOG_INFORMATION};
};

inline constexpr int RECORDING_VERSION = 1;
