#include "ModuleHost.h"

#include <cstring>
#include <fstream>
#include <stdexcept>
#include <utility>

#include "HostCalls.h"
#include "HostSetup.h"
#include "SystemCalls.h"

namespace {

const wchar_t WINDOW_CLASS[] = L"module_tests";

std::filesystem::path NewTemporaryFolder() {
    static int s_nFolders = 0;
    auto folder = std::filesystem::temp_directory_path() /
                  ("module_tests-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++s_nFolders));
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    return folder;
}

CString ToCString(const std::filesystem::path& path) {
    return CString(path.wstring().c_str());
}

} // namespace

std::string Utf8(const CString& strText) {
    return ToUtf8(strText.GetString(), strText.GetLength());
}

std::array<unsigned, 4> GuidWords(const GUID& guid) {
    static_assert(sizeof(GUID) == 16);
    std::array<unsigned, 4> words;
    std::memcpy(words.data(), &guid, sizeof guid);
    return words;
}

std::ostream& operator<<(std::ostream& out, const LogLine& line) {
    out << "level " << line.nLevel << " (";
    for (const int nArgument : line.arguments) {
        out << ' ' << nArgument;
    }
    return out << " ) \"" << line.text << '"';
}

LogLine Information(std::string text) {
    return {4, {15, 567, 0, -1}, std::move(text)};
}

LogLine Error(std::string text) {
    return {32, {15, 567, 0, -1}, std::move(text)};
}

int FiredOutput(const PostedEvent& posted) {
    const POSITION pos = posted.pEvent->m_lstParam.FindIndex(3);
    const VEKParam* pParam = pos != nullptr ? posted.pEvent->m_lstParam.GetAt(pos) : nullptr;
    if (pParam == nullptr || pParam->m_pValue == nullptr) {
        ADD_FAILURE() << "a general event without an output id";
        return -1;
    }
    return *static_cast<const int*>(pParam->m_pValue);
}

void NodeDeleter::operator()(P_ExtDevIOProcess* pNode) const {
    SIOProcessNodeRef ref{TypeGuid(nTypeByte), pNode};
    pHost->Call(3, &ref, nullptr);
    if (nTypeByte == TYPE_KEY_CHECK) {
        delete pNode; // the module only unlinks nodes of this type
    }
}

ModuleHost::ModuleHost() : m_appFolder(NewTemporaryFolder()) {
    static const ATOM s_nWindowClass = [] {
        WNDCLASSW windowClass = {};
        windowClass.lpfnWndProc = WindowProcedure;
        windowClass.hInstance = GetModuleHandleW(nullptr);
        windowClass.lpszClassName = WINDOW_CLASS;
        return RegisterClassW(&windowClass);
    }();
    if (s_nWindowClass != 0) {
        m_hWnd = CreateWindowExW(0, WINDOW_CLASS, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, GetModuleHandleW(nullptr),
                                 nullptr);
    }
    if (m_hWnd == nullptr) {
        throw std::runtime_error("no event window");
    }
    SetWindowLongPtrW(m_hWnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    SetAppPath(ToCString(m_appFolder));
    SetTextTable(ETextTable::Keys);
    SetLogSink(this);
    SetRenderSink(this);
    Load();
}

ModuleHost::~ModuleHost() {
    if (m_hModule != nullptr) {
        Call(1, nullptr, nullptr);
        Unload();
    }
    Pump();
    DestroyWindow(m_hWnd);
    SetRenderSink(nullptr);
    SetLogSink(nullptr);
    std::error_code ignored;
    std::filesystem::remove_all(m_appFolder, ignored);
}

std::filesystem::path ModuleHost::ModulePath() {
    wchar_t szProgram[4096];
    const DWORD nLength = GetModuleFileNameW(nullptr, szProgram, 4096);
    return std::filesystem::path(std::wstring(szProgram, nLength)).parent_path() / MODULE_FILE_NAME;
}

void ModuleHost::Load() {
    m_hModule = LoadLibraryW(ModulePath().wstring().c_str());
    if (m_hModule == nullptr) {
        throw std::runtime_error("the module doesn't load, error " + std::to_string(GetLastError()));
    }
    WatchSystemCalls(m_hModule);
    WatchHostCalls(m_hModule);
    // By way of a pointer to object: a cast from one function type to another is warned of.
    m_pIOProcessFunc =
        reinterpret_cast<IOProcessFuncType>(reinterpret_cast<void*>(GetProcAddress(m_hModule, "IOProcessFunc")));
    if (m_pIOProcessFunc == nullptr) {
        throw std::runtime_error("the module doesn't export IOProcessFunc");
    }
}

void ModuleHost::Unload() {
    m_pIOProcessFunc = nullptr;
    FreeLibrary(std::exchange(m_hModule, nullptr));
}

NodePtr ModuleHost::CreateNode(unsigned char nTypeByte) {
    GUID guidType = TypeGuid(nTypeByte);
    SIOProcessPluginData data;
    Call(2, &guidType, &data);
    if (data.pNode == nullptr) {
        throw std::runtime_error("no node of type " + std::to_string(nTypeByte));
    }
    return NodePtr(static_cast<P_ExtDevIOProcess*>(data.pNode), NodeDeleter{this, nTypeByte});
}

void ModuleHost::WriteFile(const std::filesystem::path& relativePath, std::string_view bytes) const {
    const auto path = m_appFolder / relativePath;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

void ModuleHost::Pump() {
    MSG message;
    while (PeekMessageW(&message, m_hWnd, 0, 0, PM_REMOVE)) {
        DispatchMessageW(&message);
    }
}

std::vector<PostedEvent> ModuleHost::TakeEvents() {
    Pump();
    return std::exchange(m_events, {});
}

std::vector<int> ModuleHost::TakeFiredOutputs() {
    std::vector<int> outputs;
    for (const PostedEvent& posted : TakeEvents()) {
        outputs.push_back(FiredOutput(posted));
    }
    return outputs;
}

std::vector<MSG> ModuleHost::TakeOtherMessages() {
    Pump();
    return std::exchange(m_otherMessages, {});
}

LRESULT CALLBACK ModuleHost::WindowProcedure(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    auto* pHost = reinterpret_cast<ModuleHost*>(GetWindowLongPtrW(hWnd, GWLP_USERDATA));
    if (pHost == nullptr || (nMessage != WM_NULL && nMessage < WM_USER)) {
        return DefWindowProcW(hWnd, nMessage, wParam, lParam);
    }
    if (nMessage == EVENT_MESSAGE) {
        ++pHost->m_nEvents;
        PostedEvent posted{nMessage, wParam, std::unique_ptr<SQOREvent>(reinterpret_cast<SQOREvent*>(lParam))};
        if (pHost->m_bKeep) {
            pHost->m_events.push_back(std::move(posted));
        }
    } else {
        MSG message = {};
        message.hwnd = hWnd;
        message.message = nMessage;
        message.wParam = wParam;
        message.lParam = lParam;
        pHost->m_otherMessages.push_back(message);
    }
    return 0;
}

void ModuleHost::OnLogLine(const SLogLine& line) {
    ++m_nLogLines;
    if (m_bKeep) {
        m_log.push_back({line.nLevel,
                         {line.nArguments[0], line.nArguments[1], line.nArguments[2], line.nArguments[3]},
                         Utf8(line.strText)});
    }
}

void ModuleHost::OnGeneralEvent(VEKProperty* pNode, VEKClip* pClip, VEKObject* pObject, int nOutput) {
    m_reportedEvents.push_back({pNode, pClip, pObject, nOutput});
}

void ModuleHost::OnNodeRedraw(SGraphNode* pGraphNode) {
    m_redraws.push_back(pGraphNode);
}

NodeScene::NodeScene(ModuleHost& host, unsigned char nTypeByte) : m_clip(L"Clip"), m_pNode(host.CreateNode(nTypeByte)) {
    m_graphNode.m_strName = L"Graph";
    m_pNode->m_strName = L"Node";
    m_pNode->m_pOwnerClip = &m_clip;
    m_pNode->m_hEventWnd = host.Window();
    m_pNode->m_nEventMsg = ModuleHost::EVENT_MESSAGE;
    m_pNode->GetNodeOutput(&m_graphNode);
}

int NodeScene::Send(int nDevice, int nEvent, void* pPayload) {
    const SIOEventRecord record{nDevice, nEvent, pPayload};
    return m_pNode->DevIOEventOccurred(&record);
}

VEKParam& NodeScene::Input(unsigned nId) const {
    if (VEKParam* pParam = FindParam(m_pNode->m_lstParamGroup, MakeParamGuid(nId))) {
        return *pParam;
    }
    throw std::runtime_error("no input " + std::to_string(nId));
}

VEKParam& NodeScene::Output(unsigned nId) const {
    if (VEKParam* pParam = FindParam(m_graphNode.m_lstOutputGroup, MakeParamGuid(nId))) {
        return *pParam;
    }
    throw std::runtime_error("no output " + std::to_string(nId));
}

VEKParam& NodeScene::AddGraphInput(unsigned nId, int nType, int nControl) {
    if (m_graphNode.m_lstInputGroup.IsEmpty()) {
        m_graphNode.m_lstInputGroup.AddTail(new VEKParamGroup);
    }
    auto* pParam = new VEKParam(nId, L"", L"", nType, nControl);
    m_graphNode.m_lstInputGroup.GetHead()->m_lstParam.AddTail(pParam);
    return *pParam;
}

namespace {

void Remove(VEKParam* pParam, const VEKParamGroupList& lstGroup) {
    for (VEKParamGroup* pGroup : Items(lstGroup)) {
        if (const POSITION pos = pGroup->m_lstParam.Find(pParam)) {
            pGroup->m_lstParam.RemoveAt(pos);
        }
    }
    delete pParam;
}

} // namespace

void NodeScene::RemoveInput(unsigned nId) {
    Remove(&Input(nId), m_pNode->m_lstParamGroup);
}

void NodeScene::RemoveOutput(unsigned nId) {
    Remove(&Output(nId), m_graphNode.m_lstOutputGroup);
}

void ModuleTest::ExpectSilence(const std::vector<LogLine>& log) {
    EXPECT_EQ(m_host.TakeLog(), log);
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{});
    EXPECT_TRUE(m_host.TakeReportedEvents().empty());
}

void ModuleTest::ExpectReported(const NodeScene& scene, int nOutput, const LogLine& line) {
    const std::vector<ReportedEvent> events = m_host.TakeReportedEvents();
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].pNode, scene.m_pNode.get());
    EXPECT_EQ(events[0].pClip, &scene.m_clip);
    EXPECT_EQ(events[0].pObject, nullptr);
    EXPECT_EQ(events[0].nOutput, nOutput);
    ExpectSilence({line});
}
