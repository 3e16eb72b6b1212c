// The parameter model: parameters, their groups and the graph node that carries them. VEKCommonx implements it; nodes
// fill it and read it.
#pragma once

#include <afxtempl.h>
#include <afxwin.h>

#include "host/Codes.h"
#include "host/Export.h"

/// One parameter of a node, or one parameter of a general event.
class VEKCOMMON_API VEKParam {
public:
    VEKParam(unsigned nId, const CString& strName, const CString& strDisplay, int nType, int nControl);
    virtual ~VEKParam();

    VEKParam(const VEKParam& other);

    /// A new parameter with the same contents; the caller owns it.
    virtual VEKParam* Clone() const;

    GUID m_guid;          ///< MakeParamGuid of the id
    CString m_strName;    ///< fixed English identifier
    CString m_strDisplay; ///< text shown in the editor
    int m_nType;
    int m_nControl;

    float m_fRange[4] = {};       ///< value, minimum, maximum, step as given to SetParamValue
    int m_bRangeSet = 0;          ///< not 0 once SetParamValue was called
    int m_nBoolValue[4] = {};     ///< the four flags as given to SetParamBoolValue
    int m_bBoolValueSet = 0;      ///< not 0 once SetParamBoolValue was called
    union {                       ///< one 64-bit slot
        int m_nValue;             ///< value of a switch, integer, choice, key-code or event parameter
        void* m_pValue = nullptr; ///< value of a pointer parameter; not owned unless the type name says so
    };
    float m_fValue = 0.0f;     ///< value of a float parameter
    wchar_t m_szTypeName[128]; ///< type name of the pointee, up to a zero; empty at first
    CString m_strValue;        ///< value of a string parameter
    CStringArray m_arChoice;   ///< labels of a choice parameter, in index order
    int m_bAvailable = 1;      ///< availability flag: 0 hides the parameter in the editor
};

/// A named list of parameters; owns them.
class VEKCOMMON_API VEKParamGroup {
public:
    VEKParamGroup();
    ~VEKParamGroup();

    GUID m_guid;
    CString m_strName;
    CString m_strDisplay;
    CList<VEKParam*> m_lstParam;
};

using VEKParamGroupList = CList<VEKParamGroup*>;

/// The host's graph node: what a node sees of its place in the graph. Owns the groups in both lists.
class VEKCOMMON_API SGraphNode {
public:
    SGraphNode();
    ~SGraphNode();

    CString m_strName;
    VEKParamGroupList m_lstOutputGroup;
    VEKParamGroupList m_lstInputGroup;
};

/// Record the value and the numeric range of a parameter; value also becomes its current integer and float value.
VEKCOMMON_API void SetParamValue(VEKParam* pParam, float fValue, float fMinimum, float fMaximum, float fStep);

/// Record the four host flags of a parameter.
VEKCOMMON_API void SetParamBoolValue(VEKParam* pParam, int a, int b, int c, int d);

/// The first parameter with this GUID in any of the groups; null if absent.
VEKCOMMON_API VEKParam* FindParam(const VEKParamGroupList& lstGroup, const GUID& guid);

/// The first parameter with this GUID in the group; null if absent or if the group is null.
VEKCOMMON_API VEKParam* FindParam(const VEKParamGroup* pGroup, const GUID& guid);

/// The first group with this GUID; null if absent.
VEKCOMMON_API VEKParamGroup* FindGroup(const VEKParamGroupList& lstGroup, const GUID& guid);
