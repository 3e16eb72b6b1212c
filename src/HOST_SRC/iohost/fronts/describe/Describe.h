// What --describe writes: the node types, from what the module itself makes, and the page's types.
#pragma once

#include <string>

class CSession;

/// All node types that the module offers as a Markdown document: where the catalogue offers them, and each one's
/// parameters and outputs. Uses the session up: nodes are made in it, and its application folder is forgotten.
std::string NodeTypesMarkdown(CSession& session);

/// A TypeScript module of what the page reads in replies and pushes, and of payloads, from the tables that read and
/// write them.
std::string ProtocolTypes();
