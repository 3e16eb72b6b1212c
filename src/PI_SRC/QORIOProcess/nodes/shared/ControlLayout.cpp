#include "nodes/shared/ControlLayout.h"

#include <map>

#include "nodes/shared/NodeSupport.h"

namespace {

/// All layouts by their ranks. In a function, since static objects of several files are made in no given order.
std::map<int, CControlLayout*>& AllLayouts() {
    static std::map<int, CControlLayout*> s_layouts;
    return s_layouts;
}

} // namespace

CControlLayout::CControlLayout(int nReleaseRank, const wchar_t* pszFileName) : m_pszFileName(pszFileName) {
    AllLayouts().emplace(nReleaseRank, this);
}

void CControlLayout::ReleaseAll() {
    for (const auto& [nRank, pLayout] : AllLayouts()) {
        pLayout->Release();
    }
}

void CControlLayout::Release() {
    for (INT_PTR i = m_arGroup.GetUpperBound(); i >= 0; --i) {
        delete m_arGroup[i];
    }
    m_arGroup.RemoveAll();
}

CString CControlLayout::Path() const try {
    return G_GetModulePath() + L"\\Plugins\\NodePlugin\\IOProcess\\" + m_pszFileName;
} catch (...) {
    EndException();
    return CString();
}

CArray<SNodeParamInfoGrp*>* CControlLayout::Groups(SParamGrpPosAdjust& node) try {
    if (m_arGroup.IsEmpty()) {
        FillLayout(node, m_arGroup);
    }
    return &m_arGroup;
} catch (...) {
    EndException();
    return &m_arGroup;
}
