// The page's types, written from the tables by which the host reads and writes its messages.
#pragma once

#include <string>

/// A TypeScript module of the types that the page uses in requests, replies and pushes.
std::string ProtocolTypes();
