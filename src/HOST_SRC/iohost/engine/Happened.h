// Collects what the module does while the host works: fired events, log lines, notifications, items sent, redraws.
#pragma once

#include <array>
#include <string>

#include "LogSink.h"
#include "RenderSink.h"
#include "host/GeneralEvent.h"
#include "protocol/Fields.h"
#include "scene/Scene.h"

class CHappened final : public ILogSink, public IRenderSink {
    enum { POSTED, LOG, NOTIFIED, SENT, REDRAWN, LIST_COUNT };

public:
    /// Registers itself with the host libraries until it is destroyed. The scene tells which node a pointer means.
    explicit CHappened(CScene& scene);
    ~CHappened();

    CHappened(const CHappened&) = delete;
    CHappened& operator=(const CHappened&) = delete;

    /// The node that the module is called for; null for none. Notification messages don't say whose they are.
    void SetCalledNode(const SNode* pNode) { m_pCalledNode = pNode; }

    /// A general event reached the host's event window.
    void OnEventMessage(const SQOREvent& event, WPARAM wParam);

    /// A notification message reached the host's notification window.
    void OnNotifyMessage(WPARAM wParam, LPARAM lParam);

    /// A node handed something to a device's socket; the entry of the list "sent".
    void OnSent(OrderedJson entry) { m_lists[SENT].push_back(std::move(entry)); }

    void OnLogLine(const SLogLine& line) override;
    void OnGeneralEvent(VEKProperty* pNode, VEKClip* pClip, VEKObject* pObject, int nOutput) override;
    void OnNodeRedraw(SGraphNode* pGraphNode) override;

    /// What happened since the last call, as one object of lists; lists without entries are left out.
    OrderedJson Take();

    /// A point in time, good until the next Take: the length of each list.
    using Mark = std::array<size_t, LIST_COUNT>;
    Mark Now() const;

    /// What happened since then, in the form of Take, which will tell it too.
    OrderedJson Since(const Mark& mark) const;

private:
    Json Handle(const SNode* pNode) const;
    Json ClipName(const void* pClip) const;
    Json PointsAt(const VEKParam& param) const;

    CScene& m_scene;
    const SNode* m_pCalledNode = nullptr;
    std::array<OrderedJson, LIST_COUNT> m_lists;
};

/// Append the lists of one such object to those of another.
void AppendHappened(OrderedJson& target, OrderedJson happened);
