#include "fronts/recording/Recorder.h"

#include <utility>

#include "base/HostLine.h"
#include "base/TextUtf8.h"
#include "protocol/Protocol.h"
#include "protocol/Shapes.h"

bool IsKept(const Command& command) {
    return std::visit(
        []<typename Kind>(const Kind&) {
            return !IS_ONE_OF<Kind, SConnectCommand, SCountersCommand, SHistoryCommand, SLayoutCommand, SListenCommand,
                              SLogCommand, SNetworkCommand, SRecoverCommand, SSaveCommand, SScenesCommand, SSendCommand,
                              SWaitCommand>;
        },
        command);
}

Command WithoutAddresses(Command command) {
    const auto drop = [](DeviceSetups& devices) {
        if (devices) {
            for (SDeviceSetup& device : *devices) {
                device.address.reset();
            }
        }
    };
    if (auto* pDevices = std::get_if<SDevicesCommand>(&command)) {
        drop(pDevices->devices);
    } else if (auto* pDevice = std::get_if<SDeviceCommand>(&command)) {
        pDevice->address.reset();
    } else if (auto* pLoad = std::get_if<SLoadCommand>(&command)) {
        SSceneDocument scene = *pLoad->pScene;
        drop(scene.devices);
        pLoad->pScene = std::make_shared<const SSceneDocument>(std::move(scene));
    } else if (auto* pBatch = std::get_if<SBatchCommand>(&command)) {
        SCommands commands;
        for (const Command& part : pBatch->pCommands->list) {
            commands.list.push_back(WithoutAddresses(part));
        }
        pBatch->pCommands = std::make_shared<const SCommands>(std::move(commands));
    }
    return command;
}

SActivity ActivityToKeep(SActivity activity) {
    std::erase_if(activity.logged, [](const SLogged& line) { return line.IsHosts(); });
    return activity;
}

std::unique_ptr<CRecorder> CRecorder::Open(CSession& session, const std::filesystem::path& file,
                                           std::string& strError) {
    std::unique_ptr<CRecorder> pRecorder(new CRecorder(session, file));
    if (!pRecorder->IsComplete()) {
        strError = "the file " + Utf8(file) + " can't be written";
        return nullptr;
    }
    session.Do(SRecordingCommand{RECORDING_VERSION, session.Texts(), session.Evaluation(), true});
    return pRecorder;
}

CRecorder::CRecorder(CSession& session, const std::filesystem::path& file)
    : m_session(session), m_file(file, std::ios::binary) {
    m_session.Attach(*this);
}

CRecorder::~CRecorder() {
    m_session.Detach(*this);
    if (!m_bClockSet) {
        m_session.Clock().Set(std::nullopt);
    }
}

void CRecorder::OnBegin(const Command& /*command*/) {
    if (!IsComplete() && !std::exchange(m_bSaid, true)) {
        WriteHostLine(LOG_ERROR, "the recording can't be written any further; nothing more is recorded");
    }
    if (!m_bClockSet) {
        m_nStopped = CClock::Running();
        m_session.Clock().Set(m_nStopped);
    }
}

void CRecorder::OnDone(const SDone& done) {
    if (done.pCommand == nullptr || !IsComplete()) {
        return;
    }
    const Command& command = *done.pCommand;
    if (!IsKept(command) || (m_session.HasQuit() && !std::holds_alternative<SQuitCommand>(command))) {
        return;
    }
    const auto* pLoad = std::get_if<SLoadCommand>(&command);
    if (pLoad != nullptr && pLoad->strPath == "file" && done.outcome.error) {
        return; // it changed nothing, and why it was refused names a file that the recording doesn't have
    }
    if (!std::holds_alternative<SRecordingCommand>(command)) {
        KeepClock();
    }
    const auto* pClock = std::get_if<SClockCommand>(&command);
    if (pClock != nullptr && !done.outcome.error) {
        m_bClockSet = pClock->ms.has_value();
        m_nKept = std::nullopt;
        m_nStopped = std::nullopt;
    }
    const Command toKeep = WithoutAddresses(command);
    SDone kept{&toKeep, done.origin, done.outcome, ActivityToKeep(done.activity)};
    if (auto* pFrame = std::get_if<SFrameResults>(&kept.outcome.result)) {
        pFrame->outputs = m_frameOutputs.Take(m_session.Scene()); // also of frames that nobody else wants to know of
    }
    Write(kept);
}

void CRecorder::KeepClock() {
    if (m_nStopped && m_nStopped != m_nKept) {
        m_nKept = m_nStopped;
        const Command clock = SClockCommand{m_nStopped};
        Write({&clock, {}, {}, {}});
    }
}

void CRecorder::Write(const SDone& done) {
    CJsonText line;
    line.Object([&] {
        WriteMembers(line, *done.pCommand);
        if (done.origin.from) {
            WriteMembers(line, "from", *done.origin.from);
        }
        if (done.origin.pHeld != nullptr) {
            WriteMembers(line, "connection", done.origin.pHeld->Connection());
        }
        line.Name("reply");
        line.Raw(ReplyTo(done));
    });
    m_file << line.Take() << '\n' << std::flush;
}
