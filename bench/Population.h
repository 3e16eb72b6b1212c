// The module as its host loads it, and many nodes of one type, each at its own place in a graph.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "LogSink.h"
#include "MeasuredTypes.h"
#include "RenderSink.h"
#include "engine/MainWindow.h"
#include "host/Clip.h"
#include "host/GeneralEvent.h"
#include "host/PluginContract.h"

/// The module's file, beside the program.
std::filesystem::path ModulePath();

/// Plays the host: loads the module that lies beside the program, and has the window that events are posted to and the
/// application's main window.
class CBenchHost final : ILogSink, IRenderSink {
public:
    static constexpr UINT EVENT_MESSAGE = WM_APP + 1;

    /// Throws when the module doesn't load.
    CBenchHost();
    ~CBenchHost();

    CBenchHost(const CBenchHost&) = delete;
    CBenchHost& operator=(const CBenchHost&) = delete;

    /// A new node; null when the module makes none of that type.
    P_ExtDevIOProcess* CreateNode(GUID guidType) const;
    void DestroyNode(const GUID& guidType, P_ExtDevIOProcess* pNode) const;

    /// What the module offers, without the icons.
    void GetCatalogue(CArray<SIOProcessNodeInfo>& arNodeInfo) const;

    HWND Window() const { return m_hWnd; }

    /// Receive and free what was posted; the number of events.
    size_t ReceiveEvents() const;
    /// The one event that was posted; null when there is none.
    std::unique_ptr<SQOREvent> TakeEvent() const;

    /// From now on build and post the events that nodes report by PostGeneralEventMessage, too, as a host does; until
    /// then they're dropped.
    void PostReportedEvents() { SetRenderSink(this); }

    /// Take log lines, as at first, or have them not even made.
    void TakeLogLines(bool bTake) { SetLogSink(bTake ? this : nullptr); }

private:
    void OnLogLine(const SLogLine& /*line*/) override {}
    void OnGeneralEvent(VEKProperty* pNode, VEKClip* pClip, VEKObject* pObject, int nOutput) override;
    void OnNodeRedraw(SGraphNode* pGraphNode) override;

    HMODULE m_hModule = nullptr;
    IOProcessFuncType m_pIOProcessFunc = nullptr;
    HWND m_hWnd = nullptr;
    std::optional<CMainWindow> m_mainWindow;
};

/// Post a general event to the node's event window, as cheaply as it can be: with names and display texts that are made
/// once and shared.
void PostGeneralEvent(VEKProperty& node, int nOutput);

/// A node at its place: owned by a clip, standing at a graph node with its outputs, connected to the event window.
class CPlacedNode {
public:
    CPlacedNode(const CBenchHost& host, const GUID& guidType, VEKClip& clip);
    ~CPlacedNode();

    CPlacedNode(const CPlacedNode&) = delete;
    CPlacedNode& operator=(const CPlacedNode&) = delete;

    SGraphNode m_graphNode;
    P_ExtDevIOProcess* m_pNode;

private:
    const CBenchHost& m_host;
    const GUID m_guidType;
};

/// As many nodes of one type as it is measured with, with its settings, in one clip with one scene object. The graph
/// supplies all their inputs.
class CPopulation {
public:
    CPopulation(const CBenchHost& host, const MeasuredType& type);

    Nodes First(size_t nNodes) const { return std::span(m_nodes).first(nNodes); }

private:
    VEKClip m_clip;
    std::vector<std::unique_ptr<CPlacedNode>> m_nodes;
};
