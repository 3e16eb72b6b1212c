// The scene as a JSON file.
//   {"format": "iohost scene", "version": 1,
//    "clips": [{"name", "objects": [{"name", "matrix": [16 floats]}]}],
//    "nodes": [{"node", "type", "clip", "graph", "event_window", "notify_window", "own", "inputs", "outputs"}],
//    "links": [{"from", "output", "to", "input"}],
//    "devices": [{"id", "name", "parser", "address"}] or null}
// "own", "inputs" and "outputs" are groups as `inspect` shows them; only their ids, values, choices and availability
// matter for parameters that the node makes itself. Where one of the three is missing, the node has what a new one has.
// A link may name a pin that "inputs" or "outputs" lack, when the node makes it by itself: it was dropped.
#pragma once

#include <filesystem>

#include "engine/Host.h"
#include "protocol/Fields.h"

/// Write the scene; a file that can't be written is refused and an older one then stays.
void SaveScene(CHost& host, const std::filesystem::path& file);

/// A scene file's content; refused where there is no JSON to be read.
Json ReadSceneFile(const std::filesystem::path& file);

/// Replace the scene by that of a file's content. On a refusal, which names the fields by strPath, the scene stays as
/// it was.
void LoadScene(CHost& host, const Json& document, const std::string& strPath);

/// The request; a `load` request with the scene itself in place of the file's name, if that can be read.
Json WithSceneInside(Json request);
