// Part of a scene as it stands at one time: what a step of the history found, and what it left.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "engine/Host.h"
#include "network/Peers.h"
#include "session/SceneDocument.h"

/// What a part is about.
struct SSceneScope {
    std::set<std::string> nodes = {}; ///< handles, also of nodes that aren't there yet
    bool bAllNodes = false;           ///< also all others
    bool bParameters = false;         ///< also parameters of these nodes
    bool bClips = false;
    bool bDevices = false;
    bool bNotes = false;

    void Add(const SSceneScope& other);
};

struct SNodeState {
    unsigned long long nOrder; ///< this and the pins: as in SNode
    PinKinds ownInputs;
    PinKinds ownOutputs;
    SNodeDocument document;

    bool operator==(const SNodeState&) const = default;
};

struct SLinkState {
    SLinkDocument document;
    ELinkKind nKind;

    bool operator==(const SLinkState&) const = default;
};

struct SScenePart {
    std::map<std::string, SNodeState> nodes;         ///< by handle
    std::map<unsigned long long, SLinkState> links;  ///< that lead to these nodes or from them, by order
    std::optional<std::vector<SClipDocument>> clips; ///< none, here and below: the part isn't about them
    std::optional<DeviceSetups> devices;
    std::optional<Notes> notes;

    bool operator==(const SScenePart&) const = default;
};

/// What changed of a scene.
struct SSceneChange {
    std::set<std::string> nodes = {}; ///< handles of those that came, went or have other parameters
    bool bList = false;               ///< nodes came or went, or links, names, places or notes changed
    bool bEverything = false;         ///< there is another scene

    void Add(const SSceneChange& other);
};

/// Remember the node's parameters as its steps left them.
void NoteParameters(SNode& node);

/// A node as a scene file holds it, with its parameters as they were noted.
SNodeDocument DocumentOf(const SNode& node);
SLinkDocument DocumentOf(const SLink& link);
std::vector<SClipDocument> ClipDocumentsOf(const CScene& scene);

/// The objects of all clips.
std::vector<SObjectState> ObjectsOf(const CScene& scene);

SScenePart TakePart(CScene& scene, const CPeers& peers, const SSceneScope& scope);

/// The memory that a part takes, about. Texts that it shares with others count.
size_t BytesOf(const SScenePart& part);

/// Leave in both parts only nodes that differ.
void KeepDifferences(SScenePart& before, SScenePart& after);

/// Change the scene from `from` to `to`. Nodes in both stay the same objects, and what is equal in both isn't touched.
void ChangePart(CHost& host, CPeers& peers, const SScenePart& from, const SScenePart& to);

/// What is different in the two.
SSceneChange ChangeBetween(const SScenePart& before, const SScenePart& after);
