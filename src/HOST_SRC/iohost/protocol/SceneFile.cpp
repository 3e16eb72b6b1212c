#include "protocol/SceneFile.h"

#include <fstream>
#include <iterator>

#include "base/GuidText.h"
#include "base/TextUtf8.h"
#include "network/Peers.h"
#include "protocol/Inspect.h"
#include "scene/ParamSet.h"

namespace {

constexpr char FORMAT[] = "iohost scene";
constexpr int VERSION = 1;
constexpr std::uintmax_t LARGEST_FILE = 64u << 20;

OrderedJson ClipsToJson(const CScene& scene) {
    OrderedJson clips = OrderedJson::array();
    for (const VEKClip& clip : scene.Clips()) {
        OrderedJson objects = OrderedJson::array();
        for (POSITION pos = clip.m_lstObject.GetHeadPosition(); pos != nullptr;) {
            const VEKObject& object = *clip.m_lstObject.GetNext(pos);
            objects.push_back({{"name", Utf8(object.m_strName)}, {"matrix", object.m_fMatrix}});
        }
        clips.push_back({{"name", Utf8(clip.m_strName)}, {"objects", std::move(objects)}});
    }
    return clips;
}

OrderedJson SceneToJson(const CScene& scene, const CPeers& peers) {
    OrderedJson nodes = OrderedJson::array();
    OrderedJson links = OrderedJson::array();
    for (const auto& [nOrder, node] : scene.Nodes()) {
        const VEKClip* pClip = node.pNode->m_pOwnerClip;
        nodes.push_back({{"node", node.strHandle},
                         {"type", GuidText(node.guidType)},
                         {"clip", pClip != nullptr ? OrderedJson(Utf8(pClip->m_strName)) : OrderedJson()},
                         {"graph", Utf8(node.pGraphNode->m_strName)},
                         {"event_window", node.bEventWindow},
                         {"notify_window", node.bNotifyWindow},
                         {"own", GroupsToJson(node.pNode->m_lstParamGroup)},
                         {"inputs", GroupsToJson(node.pGraphNode->m_lstInputGroup)},
                         {"outputs", GroupsToJson(node.pGraphNode->m_lstOutputGroup)}});
        for (const SLink& link : node.arOutgoing) {
            if (!link.pFrom->OutputType(link.nOutput) || !link.pTo->InputType(link.nInput)) {
                continue; // of a pin that was dropped and that no node makes again
            }
            links.push_back({{"from", link.pFrom->strHandle},
                             {"output", link.nOutput},
                             {"to", link.pTo->strHandle},
                             {"input", link.nInput}});
        }
    }
    return {{"format", FORMAT}, {"version", VERSION}, {"clips", ClipsToJson(scene)},
            {"nodes", nodes},   {"links", links},     {"devices", peers.DeviceList()}};
}

void LoadClip(CScene& scene, const CFields& fields) {
    VEKClip& clip = scene.Clip(FromUtf8(fields.Text("name")));
    const Json& objects = fields.Array("objects");
    for (size_t i = 0; i < objects.size(); ++i) {
        const CFields object(objects[i], fields.Path("objects") + "[" + std::to_string(i) + "].");
        const CString strName = FromUtf8(object.Text("name"));
        if (clip.FindObject(strName, 0) != nullptr) {
            Refuse(object.Path("name"), "the clip has an object " + Quoted(Utf8(strName)) + " already");
        }
        auto pObject = std::make_unique<VEKObject>(strName);
        if (const Json* pMatrix = object.OptionalArray("matrix")) {
            if (pMatrix->size() != std::size(pObject->m_fMatrix)) {
                Refuse(object.Path("matrix"), "must hold 16 numbers");
            }
            for (size_t n = 0; n < pMatrix->size(); ++n) {
                pObject->m_fMatrix[n] = ReadFloat((*pMatrix)[n], object.Path("matrix"));
            }
        }
        clip.m_lstObject.AddTail(pObject.release());
    }
}

/// Restores one list of groups when the file has it.
std::function<void(VEKParamGroupList&)> Restorer(const CFields& fields, const char* pszName, bool bOutputs) {
    const Json* pGroups = fields.OptionalArray(pszName);
    if (pGroups == nullptr) {
        return nullptr;
    }
    return [pGroups, strPath = fields.Path(pszName), bOutputs](VEKParamGroupList& lstGroup) {
        RestoreGroups(lstGroup, *pGroups, strPath, bOutputs);
    };
}

void LoadNode(CHost& host, const CFields& fields) {
    const auto guidType = ParseGuid(fields.Text("type"));
    if (!guidType) {
        Refuse(fields.Path("type"), "isn't a GUID");
    }
    SNodeRequest request;
    request.strHandle = fields.Text("node");
    request.guidType = *guidType;
    request.clip = fields.TextOrNull("clip");
    request.strGraph = fields.Text("graph");
    request.bEventWindow = fields.Bool("event_window", true);
    request.bNotifyWindow = fields.Bool("notify_window", true);
    request.loadOwn = Restorer(fields, "own", false);
    request.loadInputs = Restorer(fields, "inputs", false);
    request.loadOutputs = Restorer(fields, "outputs", true);
    request.bOutputs = !request.loadOutputs;
    if (host.Create(request).pNode == nullptr) {
        Refuse(fields.Path("type"), "the module makes no node of the type " + GuidText(*guidType));
    }
}

SNode& LinkedNode(CScene& scene, const CFields& fields, const char* pszName) {
    SNode* pNode = scene.Find(fields.Text(pszName));
    if (pNode == nullptr) {
        Refuse(fields.Path(pszName), "there is no node " + Quoted(fields.Text(pszName)));
    }
    return *pNode;
}

/// A pin's number; one that the node neither has nor makes by itself is refused.
unsigned LinkedPin(const SNode& node, std::optional<int> (SNode::*pTypeOf)(unsigned) const, const CFields& fields,
                   const char* pszName, const char* pszPlace) {
    const unsigned nPin = fields.Unsigned(pszName);
    if (!(node.*pTypeOf)(nPin)) {
        Refuse(fields.Path(pszName), "there is no parameter " + std::to_string(nPin) + " among the node's " + pszPlace);
    }
    return nPin;
}

/// Pins that the file's nodes lack are linked all the same when the nodes make them by themselves: links outlive pins.
void LoadLink(CScene& scene, const CFields& fields) {
    SNode& from = LinkedNode(scene, fields, "from");
    SNode& to = LinkedNode(scene, fields, "to");
    const unsigned nOutput = LinkedPin(from, &SNode::OutputType, fields, "output", "outputs");
    const unsigned nInput = LinkedPin(to, &SNode::InputType, fields, "input", "graph inputs");
    scene.Link(from, nOutput, to, nInput);
}

template <typename Load>
void ForEachElement(const CFields& document, const char* pszName, Load load) {
    if (const Json* pList = document.OptionalArray(pszName)) {
        for (size_t i = 0; i < pList->size(); ++i) {
            load(CFields((*pList)[i], document.Path(pszName) + "[" + std::to_string(i) + "]."));
        }
    }
}

void BuildScene(CHost& host, const CFields& document) {
    CScene& scene = host.Scene();
    ForEachElement(document, "clips", [&](const CFields& clip) { LoadClip(scene, clip); });
    ForEachElement(document, "nodes", [&](const CFields& node) { LoadNode(host, node); });
    ForEachElement(document, "links", [&](const CFields& link) { LoadLink(scene, link); });
}

std::string ReadFile(const std::filesystem::path& file) {
    std::error_code error;
    const std::uintmax_t nSize = std::filesystem::file_size(file, error);
    if (error) {
        Refuse("file", "can't be read");
    }
    if (nSize > LARGEST_FILE) {
        Refuse("file", "is larger than 64 MiB");
    }
    std::ifstream stream(file, std::ios::binary);
    std::string strText((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    if (!stream) {
        Refuse("file", "can't be read");
    }
    return strText;
}

} // namespace

void SaveScene(CHost& host, const std::filesystem::path& file) {
    const std::string strText =
        SceneToJson(host.Scene(), host.Peers()).dump(1, ' ', false, OrderedJson::error_handler_t::replace) + "\n";
    // Beside the file first: an interrupted save leaves the older file whole.
    std::filesystem::path newFile = file;
    newFile += ".new";
    std::ofstream stream(newFile, std::ios::binary);
    stream << strText;
    stream.close();
    std::error_code error;
    if (stream) {
        std::filesystem::rename(newFile, file, error);
    }
    if (!stream || error) {
        std::error_code ignored;
        std::filesystem::remove(newFile, ignored);
        Refuse("file", "can't be written");
    }
}

Json ReadSceneFile(const std::filesystem::path& file) {
    return ParseJson(ReadFile(file), "file");
}

Json WithSceneInside(Json request) {
    if (request.is_object() && request.value("op", Json()) == "load" && request.value("file", Json()).is_string()) {
        try {
            request["scene"] = ReadSceneFile(PathFromUtf8(request["file"]));
            request.erase("file");
        } catch (const CRefusal&) {
            // Carrying the request out refuses it.
        }
    }
    return request;
}

void LoadScene(CHost& host, const Json& document, const std::string& strPath) {
    const CFields fields(document, strPath + ".");
    if (fields.Text("format") != FORMAT || fields.Int("version") != VERSION) {
        Refuse(strPath, "isn't a scene of this version");
    }
    const Json* pDevices = fields.Find("devices");
    auto devices = CPeers::ReadDevices(pDevices != nullptr ? *pDevices : Json(), fields.Path("devices"));
    CScene former;
    former.Swap(host.Scene());
    try {
        BuildScene(host, fields);
    } catch (...) {
        host.DestroyAll();
        former.Swap(host.Scene());
        throw;
    }
    former.Swap(host.Scene());
    host.DestroyAll();
    former.Swap(host.Scene());
    host.Peers().SetDevices(std::move(devices));
}
