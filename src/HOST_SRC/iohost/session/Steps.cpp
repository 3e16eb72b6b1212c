#include "session/Steps.h"

#include "base/TextUtf8.h"

namespace {

class CPlanner {
public:
    CPlanner(CScene& scene, const CPeers& peers) : m_scene(scene), m_peers(peers) {}

    SStepPlan operator()(const SCreateCommand& command) const {
        return {{"Add " + NameOr(command.strGraph, command.strHandle), "create",
                 NameOr(command.strGraph, command.strHandle)},
                {.nodes = {command.strHandle}, .bParameters = true, .bClips = command.clip.has_value()}};
    }

    SStepPlan operator()(const SDestroyCommand& command) const {
        return OfNode("Delete", "destroy", command.strHandle);
    }
    SStepPlan operator()(const SInitCommand& command) const { return OfNode("Change", "init", command.strHandle); }
    SStepPlan operator()(const SOutputsCommand& command) const {
        return OfNode("Change", "outputs", command.strHandle);
    }
    SStepPlan operator()(const SSetCommand& command) const { return OfParam("set", command); }
    SStepPlan operator()(const SEditCommand& command) const { return OfParam("edit", command); }
    SStepPlan operator()(const SDropCommand& command) const { return OfNode("Change", "drop", command.strHandle); }
    SStepPlan operator()(const SRenameCommand& command) const {
        const std::string strOf = NodeName(command.strHandle) + " to " + NameOr(command.strGraph, command.strHandle);
        return {{"Rename " + strOf, "rename", strOf}, {.nodes = {command.strHandle}}};
    }

    SStepPlan operator()(const SLinkCommand& command) const { return OfLink("Link", "to", "link", command); }
    SStepPlan operator()(const SUnlinkCommand& command) const { return OfLink("Unlink", "from", "unlink", command); }

    SStepPlan operator()(const SPlaceCommand& command) const {
        SSceneScope scope{.bNotes = !command.notes.empty()};
        for (const auto& [strHandle, place] : command.nodes) {
            scope.nodes.insert(strHandle);
        }
        if (command.nodes.empty()) {
            return {{"Change notes", "place", {}, {}, command.strSeries}, scope};
        }
        const std::string strOf = command.nodes.size() == 1 ? NodeName(command.nodes.front().first)
                                                            : std::to_string(command.nodes.size()) + " nodes";
        return {{"Move " + strOf, "place", strOf, {}, command.strSeries}, scope};
    }

    SStepPlan operator()(const SObjectCommand& command) const { return OfObject("Add", "object", command.strName); }
    SStepPlan operator()(const SChangeObjectCommand& command) const {
        return OfObject("Change", "change_object", command.strName);
    }
    SStepPlan operator()(const SRemoveObjectCommand& command) const {
        return OfObject("Remove", "remove_object", command.strName);
    }

    SStepPlan operator()(const SDevicesCommand& /*command*/) const {
        return {{"Change devices", "devices", {}}, {.bDevices = true}};
    }

    SStepPlan operator()(const SDeviceCommand& command) const {
        return OfDevice(m_peers.FindDevice(command.nId) != nullptr ? "Change" : "Add", "device", command.strName);
    }
    SStepPlan operator()(const SRemoveDeviceCommand& command) const {
        const SDeviceSetup* pDevice = m_peers.FindDevice(command.nId);
        return OfDevice("Remove", "remove_device", pDevice != nullptr ? pDevice->strName : std::string());
    }

    SStepPlan operator()(const SLoadCommand& command) const {
        const std::string strVerb = command.bUnsaved ? "Recover " : "Open ";
        return {{strVerb + (command.strFile.empty() ? "a scene" : command.strFile), "load", command.strFile},
                {.bAllNodes = true, .bParameters = true, .bClips = true, .bDevices = true, .bNotes = true}};
    }

    SStepPlan operator()(const SBatchCommand& command) const {
        SStepPlan batch{{command.name.value_or("Change the scene"), "batch", {}}, {}};
        for (const Command& part : command.pCommands->list) {
            batch.scope.Add(PlanOf(part, m_scene, m_peers)->scope);
        }
        return batch;
    }

private:
    static std::string NameOr(const CString& strName, const std::string& strHandle) {
        return strName.IsEmpty() ? strHandle : Utf8(strName);
    }

    std::string NodeName(const std::string& strHandle) const {
        const SNode* pNode = m_scene.Find(strHandle);
        return pNode != nullptr ? NameOr(pNode->pGraphNode->m_strName, strHandle) : strHandle;
    }

    SStepPlan OfNode(const std::string& strVerb, const char* pszOp, const std::string& strHandle) const {
        const std::string strOf = NodeName(strHandle);
        return {{strVerb + " " + strOf, pszOp, strOf}, {.nodes = {strHandle}, .bParameters = true}};
    }

    SStepPlan OfParam(const char* pszOp, const SSetCommand& command) const {
        SStepPlan plan = OfNode("Change", pszOp, command.strHandle);
        if (const SNode* pNode = m_scene.Find(command.strHandle)) {
            const auto& lstGroup = command.bOwn ? pNode->pNode->m_lstParamGroup : pNode->pGraphNode->m_lstInputGroup;
            const VEKParam* pParam = FindParam(lstGroup, MakeParamGuid(command.nParam));
            plan.step.strParam = pParam != nullptr ? Utf8(pParam->m_strDisplay) : std::string();
        }
        return plan;
    }

    SStepPlan OfLink(const std::string& strVerb, const char* pszWhere, const char* pszOp,
                     const SLinkDocument& link) const {
        const std::string strOf = NodeName(link.strFrom) + " " + pszWhere + " " + NodeName(link.strTo);
        return {{strVerb + " " + strOf, pszOp, strOf}, {.nodes = {link.strFrom, link.strTo}}};
    }

    static SStepPlan OfObject(const std::string& strVerb, const char* pszOp, const CString& strName) {
        return {{strVerb + " object " + Utf8(strName), pszOp, Utf8(strName)}, {.bClips = true}};
    }

    static SStepPlan OfDevice(const std::string& strVerb, const char* pszOp, const std::string& strName) {
        return {{strVerb + " device " + strName, pszOp, strName}, {.bDevices = true}};
    }

    CScene& m_scene;
    const CPeers& m_peers;
};

} // namespace

std::optional<SStepPlan> PlanOf(const Command& command, CScene& scene, const CPeers& peers) {
    return std::visit(
        [&]<typename Kind>(const Kind& kind) -> std::optional<SStepPlan> {
            if constexpr (requires(const CPlanner& planner) { planner(kind); }) {
                return CPlanner(scene, peers)(kind);
            } else {
                static_assert(!FITS_BATCH<Kind>, "what changes the scene is a step");
                return std::nullopt;
            }
        },
        command);
}
