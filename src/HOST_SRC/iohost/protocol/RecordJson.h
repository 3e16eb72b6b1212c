// Network items as JSON.
#pragma once

#include <span>
#include <string>

#include "host/RemoteControlRecord.h"
#include "protocol/Fields.h"

/// A record's nine fields by name, in their stored order.
OrderedJson RecordToJson(const CQORPanelRemoteCtrlData& record);

/// A record out of its nine fields; all are required.
CQORPanelRemoteCtrlData ReadRecord(const CFields& fields);

/// Bytes in hexadecimal.
std::string HexText(std::span<const unsigned char> bytes);

/// Bytes as text: what isn't printable ASCII becomes a dot.
std::string DottedText(std::span<const unsigned char> bytes);
