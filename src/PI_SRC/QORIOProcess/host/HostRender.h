// Output pins and services of the host's library VEKRenderx.
#pragma once

#include "host/Clip.h"
#include "host/NodeBase.h"

/// One output pin of a graph node: a parameter that the graph sends on.
class VEKRENDER_API SQORNodeOutput : public VEKParam {
public:
    SQORNodeOutput(unsigned nId, const CString& strName, const CString& strDisplay, int nType, int nControl);

    VEKParam* Clone() const override;

    long long m_nExtra = -1; ///< host word that whoever creates the pin sets to zero
};

/// The current value of a parameter as the graph supplies it: looked for in the graph node's input groups, then in the
/// node's own groups. Null if absent in both.
VEKRENDER_API VEKParam* QORFindParamByGuid(const GUID& guid, const VEKParamGroupList& lstGraphInput,
                                           const VEKParamGroupList& lstOwn);

/// Fire an event output on behalf of a node, straight to the host. pObject may be null. 1 when it was taken.
VEKRENDER_API int PostGeneralEventMessage(VEKProperty* pNode, VEKClip* pClip, VEKObject* pObject, int nOutput);

/// Folder that layout file paths are formed against; no trailing separator.
VEKRENDER_API CString G_GetModulePath();

/// A number in decimal.
VEKRENDER_API CString QORIntToStr(int nValue);
