// The reference of the node types, written from what the module itself makes.
#pragma once

#include <string>

class CSession;

/// All node types that the module offers as a Markdown document: where the catalogue offers them, and each one's
/// parameters and outputs. Uses the session up: nodes are made in it, and its application folder is forgotten.
std::string NodeTypesMarkdown(CSession& session);
