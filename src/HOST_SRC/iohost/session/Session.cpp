#include "session/Session.h"

#include "base/Caught.h"
#include "base/Platform.h"
#include "session/EventRecords.h"
#include "session/Steps.h"

std::unique_ptr<CSession> CSession::Open(const SSessionOptions& options, std::string& strError) {
    try {
        return std::unique_ptr<CSession>(new CSession(CHost::Open(options)));
    } catch (const std::exception& exception) {
        strError = exception.what();
        return nullptr;
    }
}

CSession::~CSession() {
    TakeDatagrams(nullptr);
    m_peers.Close();
}

SDone CSession::Do(const Command& command, const SOrigin& origin) {
    CActivityLog& log = m_pHost->Activity();
    if (m_nDepth == 0) {
        if (SActivity between = log.Exchange({}); !between.IsEmpty()) {
            TellObservers({nullptr, {}, {}, std::move(between)});
        }
    }
    for (ISessionObserver* pObserver : m_observers) {
        pObserver->OnBegin(command);
    }
    SActivity before = m_nDepth > 0 ? log.Exchange({}) : SActivity();
    ++m_nDepth;
    SDone done{&command, origin, CarryOut(command, origin), {}};
    --m_nDepth;
    done.change = std::exchange(m_change, {});
    done.activity = log.Exchange({});
    if (m_nDepth > 0) {
        before.Append(done.activity); // it happened during the command around this one, too
        log.Exchange(std::move(before));
    }
    TellObservers(done);
    return done;
}

void CSession::TellObservers(const SDone& done) {
    for (ISessionObserver* pObserver : m_observers) {
        pObserver->OnDone(done);
    }
}

SOutcome CSession::CarryOut(const Command& command, const SOrigin& origin) {
    const auto countChange = [&] {
        m_nSceneVersion +=
            std::visit([]<typename Kind>(const Kind&) { return CHANGES_SCENE<Kind> ? 1U : 0U; }, command);
    };
    SOutcome outcome;
    try {
        if (HasQuit()) {
            Refuse("op", "the session has ended");
        }
        if (m_nDepth == 1) {
            m_peers.Poll();
        }
        outcome.result = CarryOutStep(command, origin);
        Follow();
        if (m_nDepth == 1) {
            m_peers.Poll();
        }
        countChange();
    } catch (const CModuleFault& fault) {
        Follow();
        countChange();
        outcome.error = fault.what();
    } catch (...) {
        outcome.error = CaughtText();
    }
    return outcome;
}

/// What the command changes in the scene becomes a step of its history, even where the module raised an exception. A
/// load or batch that fails changes nothing. What may change devices is a step even when nothing differs: recordings
/// leave addresses out, so a replay couldn't tell.
Result CSession::CarryOutStep(const Command& command, const SOrigin& origin) {
    if (const auto* pSet = std::get_if<SSetCommand>(&command); pSet != nullptr && !pSet->bStep) {
        On(*pSet);
        m_change.nodes = {pSet->strHandle};
        return {};
    }
    auto plan = PlanOf(command, Scene(), m_peers);
    if (!plan) {
        return Perform(command, origin);
    }
    const auto* pLoad = std::get_if<SLoadCommand>(&command);
    SScenePart before = TakePart(Scene(), m_peers, plan->scope);
    const auto noteStep = [&] {
        SScenePart after = TakePart(Scene(), m_peers, plan->scope);
        if (before == after && !plan->scope.bDevices) {
            return;
        }
        if (pLoad == nullptr) { // a load makes all nodes anew
            KeepDifferences(before, after);
        }
        m_change = ChangeBetween(before, after);
        m_change.bEverything = pLoad != nullptr;
        if (pLoad != nullptr && !pLoad->bStep) {
            m_history.Begin(pLoad->strFile);
            return;
        }
        m_history.Add(std::move(plan->step), std::move(before), std::move(after));
        if (pLoad != nullptr) {
            const bool bInNoFile = pLoad->strFile.empty() && !pLoad->pScene->nodes.empty();
            m_history.NoteOpened(pLoad->strFile, pLoad->bUnsaved || bInNoFile);
        }
    };
    try {
        Result result = Perform(command, origin);
        noteStep();
        return result;
    } catch (const CRefusal& refusal) {
        if (std::holds_alternative<SBatchCommand>(command)) {
            RollBack(before, plan->scope);
        } else if (pLoad == nullptr && dynamic_cast<const CModuleFault*>(&refusal) != nullptr) {
            noteStep();
        }
        throw;
    }
}

/// Put the scene back as it was. If that fails, too, the steps no longer fit the scene and are forgotten.
void CSession::RollBack(const SScenePart& before, const SSceneScope& scope) {
    try {
        ChangePart(*m_pHost, m_peers, TakePart(Scene(), m_peers, scope), before);
    } catch (const CRefusal&) {
        m_history.Clear();
        m_change.bEverything = true;
    }
}

Result CSession::Perform(const Command& command, const SOrigin& origin) {
    return std::visit(
        [&](const auto& kind) -> Result {
            const auto on = [&] {
                if constexpr (requires { On(kind, origin); }) {
                    return On(kind, origin);
                } else {
                    return On(kind);
                }
            };
            if constexpr (std::is_void_v<decltype(on())>) {
                on();
                return {};
            } else {
                return on();
            }
        },
        command);
}

SDone CSession::CloseConnection(CHeldInput& held, const std::string& strReason) {
    SDone done = Do(SReleaseHeldCommand{.strReason = strReason}, {.pHeld = &held});
    m_held.Close(held);
    done.origin.pHeld = nullptr; // it's gone, and so is the command
    done.pCommand = nullptr;
    return done;
}

bool CSession::OnItem(EPeer nFrom, const SIOEventRecord& record) {
    const SEventCommand event{
        .handle = {}, .nDevice = record.m_nDevice, .nEvent = record.m_nEvent, .payload = PayloadOf(record)};
    const SDone done = Do(event, {.from = nFrom});
    const auto* pResults = std::get_if<SNodeResults>(&done.outcome.result);
    if (pResults != nullptr && m_nDepth > 0) { // within a `wait`
        m_dispatched.push_back({nFrom, record.m_nDevice, record.m_nEvent, *pResults});
    }
    return pResults != nullptr && pResults->bTaken;
}

std::optional<std::string> CSession::OnSent(const SSentItem& item) {
    CActivityLog& log = m_pHost->Activity();
    if (item.pItem == nullptr) {
        log.OnSent(SSentBytes{item.nDevice, {item.bytes.begin(), item.bytes.end()}, {}});
    } else {
        const VEKClip* pClip = item.pItem->m_pClip;
        log.OnSent(SSentRecord{item.nDevice, item.pItem->m_nCommandCode,
                               pClip != nullptr ? std::optional(pClip->m_strName) : std::nullopt,
                               dynamic_cast<const CQORPanelRemoteCtrlData&>(*item.pItem->m_pAttachedData)});
    }
    SNode* pNode = log.CalledNode();
    if (pNode == nullptr) {
        return std::nullopt;
    }
    pNode->Count(&SNodeCounts::nSent);
    return pNode->strHandle;
}
