// What the tests of the network's plain parts share.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "HostSetup.h"
#include "host/RemoteControlRecord.h"

using Bytes = std::vector<unsigned char>;

inline std::string Utf8(const CString& strText) {
    return ToUtf8(strText, strText.GetLength());
}

inline Bytes ToBytes(std::string_view text) {
    return {text.begin(), text.end()};
}

/// A record whose nine fields all differ.
CQORPanelRemoteCtrlData SampleRecord();

/// All fields equal.
void ExpectSameRecord(const CQORPanelRemoteCtrlData& record, const CQORPanelRemoteCtrlData& expected);
