// Control layouts: where the controls of a parameter panel stand. Some node classes have one; the host reads it from an
// XML file that comes with this module.
#pragma once

#include "nodes/shared/HostMembers.h"

/// The layout of one class.
class CControlLayout {
public:
    /// Layouts are released in the order of their ranks; no two have the same.
    CControlLayout(int nReleaseRank, const wchar_t* pszFileName);
    ~CControlLayout() { Release(); }

    /// Empty the layouts of all classes, each group deleted. They are filled again when the host asks for them.
    static void ReleaseAll();

    CVEKXml* Reader() { return &m_reader; }
    int* LoadState() { return &m_nLoadState; }
    CString Path() const;
    /// The layout's groups, filled by FillNodeParamInfoGrpAr while there are none.
    CArray<SNodeParamInfoGrp*>* Groups(SParamGrpPosAdjust& node);

private:
    void Release();

    const wchar_t* m_pszFileName;
    CVEKXml m_reader;
    int m_nLoadState = 0; ///< only the host reads and writes it
    CArray<SNodeParamInfoGrp*> m_arGroup;
};
