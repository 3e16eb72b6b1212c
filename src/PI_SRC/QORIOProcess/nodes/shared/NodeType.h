// Bases of the node classes: what follows from a node's type alone. They are templates of the node class, whose static
// member TYPE says what it is, so that a class overrides no operation that its type doesn't need.
#pragma once

#include "nodes/shared/ControlLayout.h"
#include "nodes/shared/NodeTables.h"

/// What a node type is made of.
struct NodeType {
    GUID guidType;
    GroupRow inputs;
    std::span<const GroupRow> outputs = {}; ///< of a COutputNode
    CControlLayout* pLayout = nullptr;      ///< of a CNodeWithLayout
};

/// A node that starts as its type says.
template <typename Node, typename Base = P_ExtDevIOProcess>
class CIOProcessNode : public Base {
public:
    CIOProcessNode() { InitNode(*this, Node::TYPE.guidType, Node::TYPE.inputs); }
};

/// A node that also has outputs.
template <typename Node, typename Base = P_ExtDevIOProcess>
class COutputNode : public CIOProcessNode<Node, Base> {
public:
    void GetNodeOutput(SGraphNode* pGraphNode) override { AppendOutputGroupsOnce(pGraphNode, Node::TYPE.outputs); }
};

/// The Base of a node with a control layout.
template <typename Node>
class CNodeWithLayout : public P_ExtDevIOProcess {
public:
    CVEKXml* GetXmlReader() override { return Node::TYPE.pLayout->Reader(); }
    int* GetXmlLoadStatePtr() override { return Node::TYPE.pLayout->LoadState(); }
    CString GetCtrlPosXmlPath() override { return Node::TYPE.pLayout->Path(); }
    CArray<SNodeParamInfoGrp*>* GetNodeParamInfoGrpAr() override { return Node::TYPE.pLayout->Groups(*this); }
};
