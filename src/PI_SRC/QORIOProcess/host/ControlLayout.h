// The control layout of a node's parameter panel: where each parameter's control stands.
#pragma once

#include <afxtempl.h>
#include <afxwin.h>

#include "host/Export.h"

/// Position of one parameter control in a node's panel; pixels from the panel's top left corner.
struct SNodeParamInfo {
    GUID m_guid;
    int m_nX;
    int m_nY;
    int m_nWidth;
    int m_nHeight;
    int m_nLabelWidth;
};

/// Layout of one parameter group in a node's panel.
class VEKCOMMON_API SNodeParamInfoGrp {
public:
    SNodeParamInfoGrp();
    virtual ~SNodeParamInfoGrp();

    GUID m_guid;
    CString m_strName;
    CArray<SNodeParamInfo> m_arParam;
};

/// Reader of a control-layout XML file. Holds the parsed document of the file that it last loaded.
class VEKCOMMON_API CVEKXml {
public:
    CVEKXml();
    ~CVEKXml();

    CVEKXml(const CVEKXml&) = delete;
    CVEKXml& operator=(const CVEKXml&) = delete;

    /// Read and parse the file. False when it's missing or isn't well-formed XML; the document is then empty.
    bool Load(const CString& strPath);

    /// Append the layout groups of the document to the array, which then owns them. Does nothing without a document.
    void ReadParamLayout(CArray<SNodeParamInfoGrp*>& arGroup) const;

private:
    struct SDocument;
    SDocument* m_pDocument; ///< owned; null until Load succeeded
};

/// What GetXmlLoadStatePtr points at: whether the class's layout file was read.
enum EXmlLoadState : int { XML_NOT_LOADED = 0, XML_LOADED = 1, XML_FAILED = 2 };

/// Supplies the control layout of a node's parameter panel. The defaults are those of a node without a layout file.
class VEKCOMMON_API SParamGrpPosAdjust {
public:
    virtual CVEKXml* GetXmlReader();     ///< reader of the layout file, one per class; null without one
    virtual int* GetXmlLoadStatePtr();   ///< EXmlLoadState of that file; null without one
    virtual BOOL ShouldReCalHeight();    ///< whether the editor computes the panel's height anew
    virtual CString GetCtrlPosXmlPath(); ///< path of the layout file; empty without one
    virtual CArray<SNodeParamInfoGrp*>* GetNodeParamInfoGrpAr(); ///< the class's layout groups; null without a layout

    /// Fill an empty layout array from the file that the virtual operations name; a missing or broken file leaves it
    /// empty. The array owns the groups.
    void FillNodeParamInfoGrpAr(CArray<SNodeParamInfoGrp*>& arGroup);

protected:
    ~SParamGrpPosAdjust() = default;
};
