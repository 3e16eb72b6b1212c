// What the reference host sets up in VEKCommonx before it loads the module.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/NodeBase.h"

/// Where PXLoadString answers from.
enum class ETextTable {
    Keys,    ///< every key is its own text
    English, ///< Config/Texts/en.json of the application folder
    Chinese, ///< Config/Texts/zh.json
};

/// Set the application folder (without a trailing separator): PXGetAppPath, PXGetPath and G_GetModulePath form their
/// answers from it.
VEKCOMMON_API void SetAppPath(const CString& strPath);

/// Choose the text table, reading its file in the application folder. False, with the table left as it was, when the
/// file is missing or isn't a JSON object of strings.
VEKCOMMON_API bool SetTextTable(ETextTable nTable);

/// From now on PXGetPath answers a folder that can't exist, so that no configuration is found; until the next
/// SetAppPath.
VEKCOMMON_API void HideConfiguration();

/// UTF-8 of a wide text and back. Unpaired surrogates and invalid bytes become U+FFFD.
VEKCOMMON_API std::string ToUtf8(const wchar_t* pszText, int nLength = -1);
VEKCOMMON_API CString FromUtf8(std::string_view text);

/// The text of well-formed UTF-8; nothing for other bytes.
VEKCOMMON_API std::optional<CString> WellFormedText(std::string_view utf8);

/// Learns of the end of nodes.
class INodeSink {
public:
    /// The node's destructor runs; the pointer only tells which one it is and must not be followed.
    virtual void OnNodeDestroyed(const VEKProperty* pNode) = 0;

protected:
    ~INodeSink() = default;
};

/// Set the receiver; null for none. It isn't owned and must outlive its registration.
VEKCOMMON_API void SetNodeSink(INodeSink* pSink);
