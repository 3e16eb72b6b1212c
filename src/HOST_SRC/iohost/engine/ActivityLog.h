// Collects what the module does: fired events, log lines, notifications, items sent, redraws.
#pragma once

#include <boost/core/noncopyable.hpp>
#include <memory>
#include <utility>

#include "LogSink.h"
#include "RenderSink.h"
#include "engine/Activity.h"
#include "engine/LogLines.h"
#include "host/GeneralEvent.h"
#include "scene/Scene.h"

class CActivityLog final : public ILogSink, public IRenderSink, boost::noncopyable {
public:
    /// Registers itself with the host libraries until it is destroyed. The scene tells which node a pointer means.
    explicit CActivityLog(CScene& scene);
    ~CActivityLog();

    /// The node that is being called; null for none. Notification messages count as its own: they name no node.
    void SetCalledNode(SNode* pNode) { m_pCalledNode = pNode; }
    SNode* CalledNode() const { return m_pCalledNode; }

    /// A general event reached the host's event window.
    void OnEventMessage(std::unique_ptr<const SQOREvent> pEvent, WPARAM wParam);

    /// A notification message reached the host's notification window.
    void OnNotifyMessage(WPARAM wParam, LPARAM lParam);

    /// A node handed something to a device's socket.
    void OnSent(Sent sent) { m_activity.sent.push_back(std::move(sent)); }

    void OnLogLine(const SLogLine& line) override;
    void OnGeneralEvent(VEKProperty* pNode, VEKClip* pClip, VEKObject* pObject, int nOutput) override;
    void OnNodeRedraw(SGraphNode* pGraphNode) override;

    /// The last lines of the log.
    const CLogLines& Lines() const { return m_lines; }

    /// Return what happened since the last call, and start anew with `begin`.
    SActivity Exchange(SActivity begin) { return std::exchange(m_activity, std::move(begin)); }

private:
    void OnFired(SNode* pNode, std::optional<int> output, decltype(SFired::by) by);
    SNode* Find(const VEKProperty* pNode);

    CScene& m_scene;
    SNode* m_pCalledNode = nullptr;
    CLogLines m_lines;
    SActivity m_activity;
};
