// Clips, the units that own nodes, with their scene objects.
#pragma once

#include "host/ParamModel.h"

/// One object of a clip's scene.
class VEKRENDER_API VEKObject {
public:
    explicit VEKObject(const CString& strName);

    CString m_strName;
    float m_fMatrix[16]; ///< 4x4 transform; elements 12, 13, 14 in memory order are the position; starts as identity
};

/// The reference-node info of a clip: its link to the editor's view of the graph.
class VEKRENDER_API SClipRefNodeInfo {
public:
    /// Make the editor redraw the panel of the node that stands behind the graph node.
    void UpdateNodeByProperty(SGraphNode* pGraphNode);
};

/// A clip: the unit that owns nodes and scene objects.
class VEKRENDER_API VEKClip {
public:
    explicit VEKClip(const CString& strName);
    ~VEKClip();

    /// The scene object of that name, null if there is none. The clip owns it. nOption: 0.
    VEKObject* FindObject(const CString& strName, int nOption);

    CString m_strName;
    SClipRefNodeInfo m_refNodeInfo;
    CList<VEKObject*> m_lstObject; ///< owned
};
