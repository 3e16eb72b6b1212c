// The page's types, written from the tables by which the host reads and writes its messages.
#pragma once

#include <string>

/// A TypeScript module of what requests carry, and replies and pushes tell.
std::string ProtocolTypes();
