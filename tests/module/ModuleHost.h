// Plays the host for the module: loads it as the host does, gives it an application folder and an event window, and
// keeps what it posts, logs and asks for. The module is reached by IOProcessFunc and the virtual operations of nodes.
#pragma once

#include <array>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "LogSink.h"
#include "RenderSink.h"
#include "host/EventRecord.h"
#include "host/GeneralEvent.h"
#include "host/HostRender.h"
#include "host/PluginContract.h"

/// UTF-8 of a text, so that expectations are plain literals and failures readable.
std::string Utf8(const CString& strText);

// ---- Node types, as literals ---------------------------------------------------------------------------------------

/// Last byte of a node-type GUID.
enum NodeTypeByte : unsigned char {
    TYPE_KEYBOARD = 0x01,
    TYPE_TEXT_FIELD = 0x02,
    TYPE_MOUSE = 0x03,
    TYPE_NET_PARAMETER_SEND = 0x04,
    TYPE_NET_PARAMETER_RECEIVE = 0x05,
    TYPE_BROADCAST_SEND = 0x06,
    TYPE_GESTURE = 0x07,
    TYPE_VR_HANDLE = 0x08,
    TYPE_KEY_CHECK = 0x0B,
    TYPE_OBJECT_JSON_RECEIVE = 0x0C,
    TYPE_BROADCAST_RECEIVE = 0x0D,
    TYPE_DEVICE_JSON_RECEIVE = 0x0E,
    TYPE_STRING_DATA_SEND = 0x0F,
};

/// Of a test that runs for several types.
template <typename Type>
std::string TestName(const testing::TestParamInfo<Type>& info) {
    return info.param.pszName;
}

inline GUID TypeGuid(unsigned char nTypeByte) {
    return GUID{0x8164BB40, 0x6B6A, 0x4707, {0x88, 0xB7, 0x38, 0x6B, 0xCB, 0x0D, 0x1B, nTypeByte}};
}

/// The 32-bit words that a GUID consists of in memory.
std::array<unsigned, 4> GuidWords(const GUID& guid);

// ---- Log lines and events ------------------------------------------------------------------------------------------

struct LogLine {
    int nLevel;
    std::array<int, 4> arguments;
    std::string text;

    friend bool operator==(const LogLine&, const LogLine&) = default;
    friend std::ostream& operator<<(std::ostream& out, const LogLine& line);
};

/// The lines that the module writes: an event fired, an error.
LogLine Information(std::string text);
LogLine Error(std::string text);

/// A general event that arrived at the event window.
struct PostedEvent {
    UINT nMessage;
    WPARAM wParam;
    std::unique_ptr<SQOREvent> pEvent;
};

/// The output id that a general event carries; -1 (and a failed test) when the event has no place for one.
int FiredOutput(const PostedEvent& posted);

/// A call of PostGeneralEventMessage.
struct ReportedEvent {
    VEKProperty* pNode;
    VEKClip* pClip;
    VEKObject* pObject;
    int nOutput;
};

// ---- The host ------------------------------------------------------------------------------------------------------

class ModuleHost;

/// Destroys a node through the module, as the host does.
struct NodeDeleter {
    ModuleHost* pHost;
    unsigned char nTypeByte;
    void operator()(P_ExtDevIOProcess* pNode) const;
};
using NodePtr = std::unique_ptr<P_ExtDevIOProcess, NodeDeleter>;

class ModuleHost final : ILogSink, IRenderSink {
public:
    static constexpr UINT EVENT_MESSAGE = WM_APP + 17;

    /// Makes an empty application folder and the event window, and loads the module. Texts are their keys.
    ModuleHost();
    /// Releases the module's globals, unloads it and removes the folder. Destroy all nodes before.
    ~ModuleHost();

    /// Path of the module's file.
    static std::filesystem::path ModulePath();
    /// Throws when the module doesn't load.
    void Load();
    void Unload();
    HMODULE Module() const { return m_hModule; }

    /// IOProcessFunc.
    int Call(unsigned nOperation, void* pArgument, SIOProcessPluginData* pData) const {
        return m_pIOProcessFunc(nOperation, pArgument, pData);
    }
    /// A new node of that type; throws when the module makes none.
    NodePtr CreateNode(unsigned char nTypeByte);

    const std::filesystem::path& AppFolder() const { return m_appFolder; }
    /// Write a file of the application folder, making its folders.
    void WriteFile(const std::filesystem::path& relativePath, std::string_view bytes) const;
    void WriteNodePluginIni(std::string_view text) const { WriteFile("Plugins/NodePlugin/NodePlugin.ini", text); }

    HWND Window() const { return m_hWnd; }
    /// What arrived since the last call, in order.
    std::vector<PostedEvent> TakeEvents();
    /// The output ids of the same.
    std::vector<int> TakeFiredOutputs();
    /// Other messages posted to the window.
    std::vector<MSG> TakeOtherMessages();
    std::vector<LogLine> TakeLog() { return std::exchange(m_log, {}); }
    std::vector<ReportedEvent> TakeReportedEvents() { return std::exchange(m_reportedEvents, {}); }
    std::vector<SGraphNode*> TakeRedraws() { return std::exchange(m_redraws, {}); }

    /// Free arriving events and drop log lines instead of keeping them; they are counted.
    void KeepNothing() { m_bKeep = false; }
    long long EventCount() const { return m_nEvents; }
    long long LogCount() const { return m_nLogLines; }
    /// Dispatch what waits in the message queue.
    void Pump();

private:
    void OnLogLine(const SLogLine& line) override;
    void OnGeneralEvent(VEKProperty* pNode, VEKClip* pClip, VEKObject* pObject, int nOutput) override;
    void OnNodeRedraw(SGraphNode* pGraphNode) override;
    static LRESULT CALLBACK WindowProcedure(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);

    std::filesystem::path m_appFolder;
    HWND m_hWnd = nullptr;
    HMODULE m_hModule = nullptr;
    IOProcessFuncType m_pIOProcessFunc = nullptr;
    bool m_bKeep = true;
    long long m_nEvents = 0;
    long long m_nLogLines = 0;
    std::vector<PostedEvent> m_events;
    std::vector<MSG> m_otherMessages;
    std::vector<LogLine> m_log;
    std::vector<ReportedEvent> m_reportedEvents;
    std::vector<SGraphNode*> m_redraws;
};

/// A node at its place: owned by the clip "Clip", standing at the graph node "Graph" with its outputs, connected to the
/// host's event window. Not evaluated yet.
class NodeScene {
public:
    NodeScene(ModuleHost& host, unsigned char nTypeByte);

    int Evaluate() { return m_pNode->ProcessNode(&m_graphNode); }
    int Send(int nDevice, int nEvent, void* pPayload = nullptr);

    /// The node's own parameter and the graph node's pin; throw when there is none.
    VEKParam& Input(unsigned nId) const;
    VEKParam& Output(unsigned nId) const;
    /// Supply an input by the graph; the parameter is new and belongs to the graph node.
    VEKParam& AddGraphInput(unsigned nId, int nType, int nControl);
    /// Take one of the node's own parameters or an output pin away.
    void RemoveInput(unsigned nId);
    void RemoveOutput(unsigned nId);

    VEKClip m_clip;
    SGraphNode m_graphNode;
    NodePtr m_pNode;
};

/// Base of tests that need the host.
class ModuleTest : public testing::Test {
protected:
    /// Nothing was fired or reported, and nothing but these lines logged.
    void ExpectSilence(const std::vector<LogLine>& log = {});
    /// The node reported this output, of no object, fired nothing itself and logged this line.
    void ExpectReported(const NodeScene& scene, int nOutput, const LogLine& line);

    ModuleHost m_host;
};

/// Whether the framework's exception for invalid arguments comes out of a call.
template <typename Function>
bool RaisesInvalidArgument(Function function) {
    try {
        function();
    } catch (CInvalidArgException* pException) {
        pException->Delete();
        return true;
    }
    return false;
}

/// Items of a list in order.
template <typename T>
std::vector<T> Items(const CList<T>& list) {
    std::vector<T> items;
    for (POSITION pos = list.GetHeadPosition(); pos != nullptr;) {
        items.push_back(list.GetNext(pos));
    }
    return items;
}
