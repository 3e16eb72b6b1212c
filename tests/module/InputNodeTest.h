// What the tests of input nodes share: a node at its place and what comes out of it, and a node beside older outputs.
#pragma once

#include <algorithm>
#include <map>
#include <sstream>

#include "ModuleHost.h"
#include "ParamText.h"

using Outputs = std::vector<int>;

/// A parameter with this GUID is missing: nobody looks for it.
inline const GUID MISSING = MakeParamGuid(9999);

/// The node of the tests, connected, not evaluated yet.
class InputNodeTest : public ModuleTest {
protected:
    /// The messages are those of outputs that are logged when they are fired.
    explicit InputNodeTest(unsigned char nTypeByte, std::map<int, std::string> messages = {})
        : m_scene(m_host, nTypeByte), m_messages(std::move(messages)) {}

    /// What was fired since the last call, in order; the log holds its lines, and nothing else came of the node.
    Outputs Fired() {
        Outputs outputs = m_host.TakeFiredOutputs();
        std::vector<LogLine> lines;
        for (const int nOutput : outputs) {
            if (const auto message = m_messages.find(nOutput); message != m_messages.end()) {
                lines.push_back(Information("[Clip.Graph.Node]" + message->second));
            }
        }
        EXPECT_EQ(m_host.TakeLog(), lines);
        EXPECT_TRUE(m_host.TakeOtherMessages().empty());
        EXPECT_TRUE(m_host.TakeReportedEvents().empty());
        return outputs;
    }

    /// Give all outputs values that no node writes.
    void MarkOutputs() {
        for (const VEKParamGroup* pGroup : Items(m_scene.m_graphNode.m_lstOutputGroup)) {
            for (VEKParam* pOutput : Items(pGroup->m_lstParam)) {
                pOutput->m_nValue = 77;
                pOutput->m_fValue = 78.0f;
                pOutput->m_strValue = L"mark";
            }
        }
    }

    /// The members that were written since then, as "854 float".
    std::vector<std::string> Written() const {
        std::vector<std::string> written;
        for (const VEKParamGroup* pGroup : Items(m_scene.m_graphNode.m_lstOutputGroup)) {
            for (const VEKParam* pOutput : Items(pGroup->m_lstParam)) {
                const std::string id = std::to_string(pOutput->m_guid.Data1);
                if (pOutput->m_nValue != 77) {
                    written.push_back(id + " integer");
                }
                if (pOutput->m_fValue != 78.0f) {
                    written.push_back(id + " float");
                }
                if (pOutput->m_strValue != L"mark") {
                    written.push_back(id + " text");
                }
            }
        }
        return written;
    }

    NodeScene m_scene;
    std::map<int, std::string> m_messages;
};

/// A new node, and graph nodes as older projects have them.
class InputNodeUpgradeTest : public ModuleTest {
protected:
    explicit InputNodeUpgradeTest(unsigned char nTypeByte) : m_pNode(m_host.CreateNode(nTypeByte)) {}

    VEKParam& Own(unsigned nId) const { return *FindParam(m_pNode->m_lstParamGroup, MakeParamGuid(nId)); }

    using Groups = std::vector<std::pair<unsigned, std::vector<unsigned>>>;

    /// The ids of the groups and outputs that GetNodeOutput makes of old ones, as "851(852 853) 861()".
    std::string OutputsMadeOf(const Groups& old) {
        m_pGraphNode = std::make_unique<SGraphNode>();
        for (const auto& [nGroup, outputs] : old) {
            auto* pGroup = new VEKParamGroup;
            pGroup->m_guid = MakeParamGuid(nGroup);
            for (const unsigned nOutput : outputs) {
                pGroup->m_lstParam.AddTail(new SQORNodeOutput(nOutput, L"", L"", 26, 7));
            }
            m_pGraphNode->m_lstOutputGroup.AddTail(pGroup);
        }
        // The graph's version counts for nothing.
        m_pGraphNode->m_lstInputGroup.AddTail(new VEKParamGroup);
        m_pGraphNode->m_lstInputGroup.GetHead()->m_lstParam.AddTail(new VEKParam(7, L"Version", L"", 2, 1));
        m_pGraphNode->m_lstInputGroup.GetHead()->m_lstParam.GetHead()->m_nValue = 3;
        m_pNode->GetNodeOutput(m_pGraphNode.get());
        const std::string made = Ids();
        m_pNode->GetNodeOutput(m_pGraphNode.get());
        EXPECT_EQ(Ids(), made) << "once";
        return made;
    }

    /// An output that was added to the old ones is like that of a graph node whose outputs are all new.
    void ExpectAsNew(unsigned nOutput) const {
        SGraphNode fresh;
        m_pNode->GetNodeOutput(&fresh);
        EXPECT_EQ(CellsOf(*FindParam(m_pGraphNode->m_lstOutputGroup, MakeParamGuid(nOutput))),
                  CellsOf(*FindParam(fresh.m_lstOutputGroup, MakeParamGuid(nOutput))));
    }

    NodePtr m_pNode;
    std::unique_ptr<SGraphNode> m_pGraphNode;

private:
    std::string Ids() const {
        std::string ids;
        for (const VEKParamGroup* pGroup : Items(m_pGraphNode->m_lstOutputGroup)) {
            std::string outputs;
            for (const VEKParam* pOutput : Items(pGroup->m_lstParam)) {
                outputs += (outputs.empty() ? "" : " ") + std::to_string(pOutput->m_guid.Data1);
            }
            ids += (ids.empty() ? "" : " ") + std::to_string(pGroup->m_guid.Data1) + "(" + outputs + ")";
        }
        return ids;
    }
};
