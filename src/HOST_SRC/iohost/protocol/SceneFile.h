// Scenes in files.
//   {"format": "iohost scene", "version": 1,
//    "clips": [{"name", "objects": [{"name", "matrix": [16 floats]}]}],
//    "nodes": [{"node", "type", "clip", "graph", "event_window", "notify_window", "own", "inputs", "outputs",
//               "place": {"x", "y", "folded"}}],
//    "links": [{"from", "output", "to", "input"}],
//    "devices": [{"id", "name", "parser", "address", "drop_after"}] or null,
//    "notes": {ID: {"x", "y", "width", "height", "text"}}}
// "own", "inputs" and "outputs" are groups as `inspect` shows them; only their ids, values, choices and availability
// matter for parameters that the node makes itself. Where one of the three is missing, the node has what a new one has.
// A link may name a pin that "inputs" or "outputs" lack, when the node makes it by itself: it was dropped.
#pragma once

#include "protocol/Protocol.h"

/// Any file of the system. One that can't be written leaves an older one as it is.
class CSystemFiles final : public ISceneFiles {
public:
    std::string Read(const std::string& strName) override;
    void Write(const std::string& strName, const std::string& strText) override;
};

/// No file at all.
class CNoFiles final : public ISceneFiles {
public:
    std::string Read(const std::string& /*strName*/) override { Refuse("file", "is out of reach here"); }
    void Write(const std::string& /*strName*/, const std::string& /*strText*/) override {
        Refuse("file", "is out of reach here");
    }
};
