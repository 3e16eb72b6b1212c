// The host's part of the contract: it owns the loaded module and the scene, and makes every call into the module.
#pragma once

#include <boost/core/noncopyable.hpp>
#include <filesystem>
#include <memory>
#include <string>

#include "HostSetup.h"
#include "base/Caught.h"
#include "base/HostLine.h"
#include "base/Refusal.h"
#include "engine/ActivityLog.h"
#include "engine/EventWindow.h"
#include "engine/JsonVerdicts.h"
#include "engine/MainWindow.h"
#include "engine/Module.h"
#include "host/EventRecord.h"
#include "host/PluginContract.h"
#include "scene/Document.h"
#include "scene/Scene.h"

/// What a session is opened with.
struct SSessionOptions {
    std::filesystem::path appFolder;        ///< application folder
    std::filesystem::path moduleFile;       ///< the module's library
    ETextTable texts = ETextTable::English; ///< where display texts come from
    bool bMayBroadcast = true;              ///< false: nodes find no port, so that their broadcasts go nowhere
};

/// The module raised an exception; what() names it. What the call did until then stays done.
class CModuleFault : public CRefusal {
public:
    using CRefusal::CRefusal;
};

/// Do something with the module; a fault of it is a line of the log.
template <typename Function>
void LogFault(Function function) {
    try {
        function();
    } catch (const CModuleFault& fault) {
        WriteHostLine(LOG_ERROR, fault.what());
    }
}

/// What a new node holds. Null: what the node makes by itself.
struct SNodeContents {
    const SSavedSet* pSaved = nullptr; ///< changes the own groups
    const std::vector<SGroupState>* pOwn = nullptr;
    const std::vector<SGroupState>* pInputs = nullptr;
    const std::vector<SGroupState>* pOutputs = nullptr;
    bool bOutputs = true;   ///< ask the node for its outputs in the end
    bool bRestored = false; ///< it existed before: what it raises is logged, and doesn't keep it away
};

/// What operation 2 did.
struct SNodeCreated {
    int nResult;
    SNode* pNode; ///< null when the slot was left untouched; there is no node then
};

/// What operation 3 did.
struct SDestroyed {
    int nResult;
    bool bSlotNull; ///< the record's pointer was cleared
    bool bFreed;    ///< the node's destructor ran
};

/// One at a time in a process, since the host libraries are.
class CHost final : private INodeSink {
public:
    /// Load the module and register its node types. Throws std::runtime_error, with a clear message, when that fails.
    static std::unique_ptr<CHost> Open(const SSessionOptions& options);

    /// Closes first.
    ~CHost();

    /// Destroy all nodes, release the module's data and unload it.
    void Close();
    bool IsClosed() const { return m_pModule == nullptr; }

    /// Where display texts come from.
    ETextTable Texts() const { return m_nTexts; }

    CScene& Scene() { return m_scene; }
    CActivityLog& Activity() { return m_activity; }
    CJsonVerdicts& JsonVerdicts() { return m_jsonVerdicts; }
    CMainWindow& MainWindow() { return m_mainWindow; }
    const CArray<SIOProcessNodeInfo>& Catalogue() const { return m_data.arNodeInfo; }

    /// Call the exported function; operations that take an argument get one that names nothing.
    int CallModule(unsigned nOperation);

    /// Make a node. On a refusal or a fault nothing is left of it.
    SNodeCreated Create(const SNodeStart& start, const SNodeContents& contents);

    /// Let the node make its outputs.
    void MakeOutputs(SNode& node);

    /// Operation 3 with this type, and with the node's pointer or null, in the record. The node leaves the scene when
    /// the module freed it, or got the node's type and pointer: then it is unlinked at least, and the host lets it be.
    SDestroyed Destroy(SNode& node, const GUID& guidType, bool bPointer);

    /// Destroy a node; it leaves the scene whatever becomes of it.
    void Discard(SNode& node);

    /// Discard all nodes of the scene, the last one first.
    void DestroyAll();

    /// One evaluation; bGraph false hands over a null graph node.
    int Evaluate(SNode& node, bool bGraph);

    /// Hand an event record to the node; null is a null record.
    int Deliver(SNode& node, const SIOEventRecord* pRecord);

    /// Make any other call into a node, or into the module itself (null). Messages posted during the call are handled
    /// at its end, and an exception becomes a CModuleFault.
    template <typename Function>
    auto Call(SNode* pNode, Function function) {
        const SCall call(*this, pNode);
        try {
            return function();
        } catch (...) {
            throw CModuleFault("the module raised " + CaughtText());
        }
    }

private:
    /// Notes which node is being called, and handles the messages that were posted when the call ends.
    struct SCall : boost::noncopyable {
        SCall(CHost& host, SNode* pNode) : m_host(host) { host.m_activity.SetCalledNode(pNode); }
        ~SCall() {
            m_host.m_window.Pump();
            m_host.m_activity.SetCalledNode(nullptr);
        }

        CHost& m_host;
    };

    CHost() { SetNodeSink(this); }

    void OnNodeDestroyed(const VEKProperty* pNode) override;
    void Prepare(SNode& node, const SNodeStart& start, const SNodeContents& contents);

    CScene m_scene;
    CActivityLog m_activity{m_scene};
    CJsonVerdicts m_jsonVerdicts;
    CEventWindow m_window{m_activity};
    CMainWindow m_mainWindow{m_window.Handle()}; ///< in a session without a render window the event window stands in
    std::unique_ptr<CModule> m_pModule;          ///< null once closed
    SIOProcessPluginData m_data;
    ETextTable m_nTexts = ETextTable::Keys;
    const VEKProperty* m_pLastDestroyed = nullptr;
};
