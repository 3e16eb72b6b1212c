#include "session/ScenePart.h"

#include <algorithm>

#include "scene/ParamSet.h"

namespace {

/// Whether one can become the other without being made anew.
bool IsSameObject(const SNodeState& a, const SNodeState& b) {
    return IsEqualGUID(a.document.guidType, b.document.guidType) && a.document.clip == b.document.clip &&
           a.document.bEventWindow == b.document.bEventWindow && a.document.bNotifyWindow == b.document.bNotifyWindow;
}

/// Ids of the parameters that differ.
std::vector<unsigned> Differing(const std::vector<SGroupState>& from, const std::vector<SGroupState>& to) {
    std::vector<unsigned> ids;
    for (size_t nGroup = 0; nGroup < std::min(from.size(), to.size()); ++nGroup) {
        for (const SParamState& param : to[nGroup].params) {
            if (std::ranges::find(from[nGroup].params, param) == from[nGroup].params.end()) {
                ids.push_back(param.nId);
            }
        }
    }
    return ids;
}

/// Tell the node of changed inputs as an editor's panel does, and undo what it then changes by itself.
void TellNode(CHost& host, SNode& node, const std::vector<unsigned>& ids) {
    const auto own = StateOf(node.pNode->m_lstParamGroup);
    const auto inputs = StateOf(node.pGraphNode->m_lstInputGroup);
    for (const unsigned nId : ids) {
        const GUID guid = MakeParamGuid(nId);
        LogFault([&] {
            if (host.Call(&node, [&] { return node.pNode->NeedUpdateSingleParam(guid); }) != FALSE) {
                host.Call(&node, [&] { return node.pNode->UpdateSingleParamValue(guid); });
            }
        });
    }
    RestoreGroups(node.pNode->m_lstParamGroup, own, false);
    RestoreGroups(node.pGraphNode->m_lstInputGroup, inputs, false);
}

void ChangeNode(CHost& host, SNode& node, const SNodeDocument& from, const SNodeDocument& to) {
    node.pGraphNode->m_strName = to.strGraph;
    if (to.own == nullptr) {
        return; // the step was about other things
    }
    ChangeGroups(node.pNode->m_lstParamGroup, *from.own, *to.own, false);
    ChangeGroups(node.pGraphNode->m_lstInputGroup, *from.inputs, *to.inputs, false);
    if (const auto ids = Differing(*from.inputs, *to.inputs); !ids.empty()) {
        TellNode(host, node, ids);
    }
    ChangeGroups(node.pGraphNode->m_lstOutputGroup, *from.outputs, *to.outputs, true);
    NoteParameters(node);
}

SNode& MakeNode(CHost& host, const SNodeDocument& document) {
    SNode& node = *host.Create(document, {.pOwn = document.own.get(),
                                          .pInputs = document.inputs.get(),
                                          .pOutputs = document.outputs.get(),
                                          .bOutputs = false,
                                          .bRestored = true})
                       .pNode;
    RestoreGroups(node.pNode->m_lstParamGroup, *document.own, false); // whatever InitParam made of them
    NoteParameters(node);
    return node;
}

void ChangeObjects(VEKClip& clip, const std::vector<SObjectDocument>& from, const std::vector<SObjectDocument>& to) {
    const auto find = [](const std::vector<SObjectDocument>& objects, const CString& strName) {
        return std::ranges::find(objects, strName, &SObjectDocument::strName);
    };
    std::vector<VEKObject*> objects;
    for (size_t i = 0; i < to.size(); ++i) {
        auto was = find(from, to[i].strName);
        if (was == from.end() && from.size() == to.size() && find(to, from[i].strName) == to.end()) {
            was = from.begin() + static_cast<std::ptrdiff_t>(i); // by its former name
        }
        VEKObject* pObject = was != from.end() ? clip.FindObject(was->strName, 0) : new VEKObject(CString());
        pObject->m_strName = to[i].strName;
        if (was == from.end() || was->matrix != to[i].matrix) {
            std::ranges::copy(*to[i].matrix, pObject->m_fMatrix);
        }
        objects.push_back(pObject);
    }
    while (!clip.m_lstObject.IsEmpty()) {
        VEKObject* pObject = clip.m_lstObject.RemoveHead();
        if (std::ranges::find(objects, pObject) == objects.end()) {
            delete pObject;
        }
    }
    for (VEKObject* pObject : objects) {
        clip.m_lstObject.AddTail(pObject);
    }
}

void ChangeClips(CScene& scene, const std::vector<SClipDocument>& from, const std::vector<SClipDocument>& to) {
    static const std::vector<SObjectDocument> NONE;
    std::vector<CString> names;
    std::ranges::transform(to, std::back_inserter(names), &SClipDocument::strName);
    scene.SetClips(names);
    for (const SClipDocument& clip : to) {
        const auto was = std::ranges::find(from, clip.strName, &SClipDocument::strName);
        ChangeObjects(*scene.FindClip(clip.strName), was != from.end() ? was->objects : NONE, clip.objects);
    }
}

} // namespace

void SSceneChange::Add(const SSceneChange& other) {
    nodes.insert(other.nodes.begin(), other.nodes.end());
    bList |= other.bList;
    bEverything |= other.bEverything;
}

void SSceneScope::Add(const SSceneScope& other) {
    nodes.insert(other.nodes.begin(), other.nodes.end());
    bParameters |= other.bParameters;
    bClips |= other.bClips;
    bDevices |= other.bDevices;
    bNotes |= other.bNotes;
}

void NoteParameters(SNode& node) {
    const auto share = [](const VEKParamGroupList& lstGroup) {
        return std::make_shared<const std::vector<SGroupState>>(StateOf(lstGroup));
    };
    node.left = {share(node.pNode->m_lstParamGroup), share(node.pGraphNode->m_lstInputGroup),
                 share(node.pGraphNode->m_lstOutputGroup)};
}

SNodeDocument DocumentOf(const SNode& node) {
    const VEKClip* pClip = node.pNode->m_pOwnerClip;
    SNodeDocument document;
    static_cast<SNodeStart&>(document) = {node.strHandle,
                                          node.guidType,
                                          pClip != nullptr ? std::optional(pClip->m_strName) : std::nullopt,
                                          node.pGraphNode->m_strName,
                                          node.bEventWindow,
                                          node.bNotifyWindow};
    static_cast<SParamSets&>(document) = node.left;
    document.place = node.place;
    return document;
}

SLinkDocument DocumentOf(const SLink& link) {
    return {link.pFrom->strHandle, link.nOutput, link.pTo->strHandle, link.nInput};
}

std::vector<SClipDocument> ClipDocumentsOf(const CScene& scene) {
    std::vector<SClipDocument> documents;
    for (const VEKClip& clip : scene.Clips()) {
        SClipDocument& document = documents.emplace_back(SClipDocument{clip.m_strName, {}});
        for (POSITION pos = clip.m_lstObject.GetHeadPosition(); pos != nullptr;) {
            const VEKObject& object = *clip.m_lstObject.GetNext(pos);
            document.objects.push_back({object.m_strName, std::to_array(object.m_fMatrix)});
        }
    }
    return documents;
}

std::vector<SObjectState> ObjectsOf(const CScene& scene) {
    std::vector<SObjectState> objects;
    for (const VEKClip& clip : scene.Clips()) {
        for (POSITION pos = clip.m_lstObject.GetHeadPosition(); pos != nullptr;) {
            const VEKObject& object = *clip.m_lstObject.GetNext(pos);
            objects.push_back({clip.m_strName, object.m_strName, std::to_array(object.m_fMatrix)});
        }
    }
    return objects;
}

SScenePart TakePart(CScene& scene, const CPeers& peers, const SSceneScope& scope) {
    SScenePart part;
    const auto take = [&](SNode& node) {
        if (scope.bParameters) {
            NoteParameters(node);
        }
        SNodeState& state = part.nodes[node.strHandle];
        state = {node.nOrder, node.ownInputs, node.ownOutputs, DocumentOf(node)};
        if (!scope.bParameters) {
            static_cast<SParamSets&>(state.document) = {};
        }
        for (const auto* pLinks : {&node.arIncoming, &node.arOutgoing}) {
            for (const SLink& link : *pLinks) {
                part.links[link.nOrder] = {DocumentOf(link), link.nKind};
            }
        }
    };
    if (scope.bAllNodes) {
        for (const auto& pNode : scene.Nodes()) {
            take(*pNode);
        }
    } else {
        for (const std::string& strHandle : scope.nodes) {
            if (SNode* pNode = scene.Find(strHandle)) {
                take(*pNode);
            }
        }
    }
    if (scope.bClips) {
        part.clips = ClipDocumentsOf(scene);
    }
    if (scope.bDevices) {
        part.devices = peers.Devices();
    }
    if (scope.bNotes) {
        part.notes = scene.CanvasNotes();
    }
    return part;
}

size_t BytesOf(const SScenePart& part) {
    const auto text = [](const CString& strText) { return static_cast<size_t>(strText.GetLength()) * sizeof(wchar_t); };
    size_t nBytes = part.links.size() * sizeof(SLinkState);
    for (const auto& [strHandle, state] : part.nodes) {
        const SNodeDocument& node = state.document;
        nBytes += sizeof state + text(node.strGraph);
        for (const SharedGroups& pGroups : {node.own, node.inputs, node.outputs}) {
            if (pGroups == nullptr) {
                continue;
            }
            for (const SGroupState& group : *pGroups) {
                nBytes += sizeof group + group.params.size() * sizeof(SParamState);
                for (const SParamState& param : group.params) {
                    nBytes += text(*param.name) + text(*param.display) + text(*param.text);
                    for (const CString& strChoice : *param.choices) {
                        nBytes += sizeof strChoice + text(strChoice);
                    }
                }
            }
        }
    }
    if (part.clips) {
        for (const SClipDocument& clip : *part.clips) {
            for (const SObjectDocument& object : clip.objects) {
                nBytes += sizeof object + text(object.strName);
            }
        }
    }
    if (part.notes) {
        for (const auto& [strId, note] : *part.notes) {
            nBytes += sizeof note + text(note.strText);
        }
    }
    return nBytes;
}

void KeepDifferences(SScenePart& before, SScenePart& after) {
    std::erase_if(before.nodes, [&](const auto& entry) {
        const auto same = after.nodes.find(entry.first);
        if (same == after.nodes.end() || same->second != entry.second) {
            return false;
        }
        after.nodes.erase(same);
        return true;
    });
}

void ChangePart(CHost& host, CPeers& peers, const SScenePart& from, const SScenePart& to) {
    CScene& scene = host.Scene();
    for (const auto& [nOrder, link] : from.links) {
        const auto same = to.links.find(nOrder);
        if (same == to.links.end() || same->second != link) {
            const SLinkDocument& document = link.document;
            scene.Unlink(*scene.Find(document.strFrom), document.nOutput, *scene.Find(document.strTo), document.nInput);
        }
    }
    for (const auto& [strHandle, state] : from.nodes) {
        const auto next = to.nodes.find(strHandle);
        if (next == to.nodes.end() || !IsSameObject(state, next->second)) {
            host.Discard(*scene.Find(strHandle));
        }
    }
    if (to.clips) {
        ChangeClips(scene, *from.clips, *to.clips);
    }
    std::vector<std::pair<SNode*, unsigned long long>> orders;
    for (const auto& [strHandle, state] : to.nodes) {
        SNode* pNode = scene.Find(strHandle);
        if (pNode != nullptr) {
            ChangeNode(host, *pNode, from.nodes.at(strHandle).document, state.document);
        } else {
            pNode = &MakeNode(host, state.document);
        }
        pNode->ownInputs = state.ownInputs;
        pNode->ownOutputs = state.ownOutputs;
        pNode->place = state.document.place;
        orders.emplace_back(pNode, state.nOrder);
    }
    scene.SetOrders(orders);
    for (const auto& [nOrder, link] : to.links) {
        SNode& source = *scene.Find(link.document.strFrom);
        if (std::ranges::find(source.arOutgoing, nOrder, &SLink::nOrder) == source.arOutgoing.end()) {
            scene.Relink({&source, link.document.nOutput, scene.Find(link.document.strTo), link.document.nInput,
                          link.nKind, nOrder});
        }
    }
    if (to.notes) {
        scene.CanvasNotes() = *to.notes;
    }
    if (from.devices != to.devices) {
        peers.ChangeDevices(*to.devices);
    }
}

SSceneChange ChangeBetween(const SScenePart& before, const SScenePart& after) {
    SSceneChange change{.bList = before.links != after.links || before.notes != after.notes};
    for (const auto& [strHandle, state] : before.nodes) {
        if (!after.nodes.contains(strHandle)) {
            change.bList = true;
            change.nodes.insert(strHandle);
        }
    }
    for (const auto& [strHandle, state] : after.nodes) {
        const auto was = before.nodes.find(strHandle);
        const bool bAnother =
            was == before.nodes.end() || was->second.nOrder != state.nOrder || !IsSameObject(was->second, state);
        change.bList |= bAnother || was->second.document.strGraph != state.document.strGraph ||
                        was->second.document.place != state.document.place;
        if (bAnother || !(static_cast<const SParamSets&>(was->second.document) == state.document)) {
            change.nodes.insert(strHandle);
        }
    }
    return change;
}
