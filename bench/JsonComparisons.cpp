#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>

#include <benchmark/benchmark.h>

#include "Comparison.h"
#include "HostSetup.h"
#include "host/EventRecord.h"
#include "host/HostJson.h"
#include "host/HostRender.h"
#include "host/NodeTypeGuid.h"

namespace {

// As in Comparison.cpp: set from what was measured (docs/benchmarks.md), but for the first one, which is what the node
// has to keep to.
constexpr double ACCEPTED_LIMIT = 1.15;
constexpr double SHORT_LIMIT = 1.4; // of its time much goes into the log line and the look-ups
constexpr double CHECKED_LIMIT = 1.5;
constexpr double OTHER_DEVICE_LIMIT = 1.2;

constexpr double OWN_LOOK_UPS = 17; // eight inputs, in two lists each, and the output

constexpr unsigned CHECK_KEY_VALUE = 1403;
constexpr unsigned FIRST_INPUT = 1402;
constexpr unsigned LAST_INPUT = 1409;
constexpr unsigned FIRST_KEY = 1404;

/// A text as a device sends it: an object of so many readings.
std::string StatusText(int nReadings) {
    std::string strText = R"({"cmd":"start","device":{"id":17,"name":"墙 3","zone":"left"},"readings":[)";
    for (int i = 0; i < nReadings; ++i) {
        strText += i > 0 ? "," : "";
        strText += R"({"sensor":"s)" + std::to_string(i) + R"(","value":)" + std::to_string(i) +
                   R"(.25,"unit":"mm","ok":true})";
    }
    return strText + R"(],"state":"running","last":"end"})";
}

/// Texts that the last check looks for.
struct Pair {
    const wchar_t* pszKey;
    const wchar_t* pszValue;
};
constexpr Pair PAIRS[] = {{L"cmd", L"start"}, {L"state", L"running"}, {L"last", L"end"}};

/// One node and one text.
class CReceiver {
public:
    CReceiver(const CBenchHost& host, const std::string& strText, int nDeviceId, size_t nPairs)
        : m_clip(L"Clip"), m_node(host, GUID_IOPROCESS_DEVICE_JSON_RECEIVE, m_clip),
          m_libraryText(utility::conversions::to_string_t(strText)) {
        m_text.m_nDeviceId = nDeviceId;
        m_text.m_strText = FromUtf8(strText);
        Own(CHECK_KEY_VALUE).m_nValue = nPairs > 0 ? 1 : 0;
        for (size_t i = 0; i < nPairs; ++i) {
            const auto nKey = FIRST_KEY + 2 * static_cast<unsigned>(i);
            Own(nKey).m_strValue = PAIRS[i].pszKey;
            Own(nKey + 1).m_strValue = PAIRS[i].pszValue;
        }
        m_node.m_pNode->ProcessNode(&m_node.m_graphNode);
        const int nExpected = nDeviceId == 1 ? 1 : 0;
        if (Receive() != nExpected || !Parse()) {
            throw std::runtime_error("the JSON node doesn't do what is measured");
        }
    }

    int Receive() const { return m_node.m_pNode->DevIOEventOccurred(&m_record); }

    bool Parse() const {
        web::json::keep_object_element_order(true);
        const web::json::value value = web::json::value::parse(m_libraryText);
        return value.is_object();
    }

    /// What also a refusal can't do without.
    bool LookUpInputs() const {
        for (unsigned nId = FIRST_INPUT; nId <= LAST_INPUT; ++nId) {
            benchmark::DoNotOptimize(QORFindParamByGuid(MakeParamGuid(nId), m_node.m_graphNode.m_lstInputGroup,
                                                        m_node.m_pNode->m_lstParamGroup));
        }
        return true;
    }

private:
    VEKParam& Own(unsigned nId) const { return *FindParam(m_node.m_pNode->m_lstParamGroup, MakeParamGuid(nId)); }

    VEKClip m_clip;
    CPlacedNode m_node;
    SDeviceTextData m_text;
    const SIOEventRecord m_record{DEVICE_TEXT, 0, &m_text};
    const utility::string_t m_libraryText;
};

} // namespace

std::vector<Comparison> MakeJsonComparisons(const CBenchHost& host) {
    std::vector<Comparison> comparisons;
    const auto add = [&](const std::string& strName, const std::string& strText, size_t nPairs, double fLimit,
                         double fOwnAllocations) {
        const auto pReceiver = std::make_shared<const CReceiver>(host, strText, 1, nPairs);
        comparisons.push_back({.strName = "DeviceJson/" + strName,
                               .nNodes = 1,
                               .fRatioLimit = fLimit,
                               .bMayAllocate = true,
                               .measured = [pReceiver] { return pReceiver->Receive() == 1; },
                               .floor = [pReceiver] { return pReceiver->Parse(); },
                               .fOwnAllocations = fOwnAllocations,
                               .fOwnLookUps = OWN_LOOK_UPS});
    };
    constexpr double ACCEPTING_ALLOCATIONS = 1; // the log line
    add("Short", StatusText(1), 0, SHORT_LIMIT, ACCEPTING_ALLOCATIONS);
    for (const int nReadings : {10, 100, 1000}) {
        add("Accepted/" + std::to_string(nReadings), StatusText(nReadings), 0, ACCEPTED_LIMIT, ACCEPTING_ALLOCATIONS);
    }
    for (size_t nPairs = 1; nPairs <= std::size(PAIRS); ++nPairs) {
        // The host splits the object, whose readings become one text.
        add("Pairs/" + std::to_string(nPairs), StatusText(100), nPairs, CHECKED_LIMIT, 50);
    }
    const auto pOther = std::make_shared<const CReceiver>(host, StatusText(100), 2, 0);
    comparisons.push_back({.strName = "DeviceJson/OtherDevice",
                           .nNodes = 1,
                           .fRatioLimit = OTHER_DEVICE_LIMIT,
                           .bMayAllocate = false,
                           .measured = [pOther] { return pOther->Receive() == 0; },
                           .floor = [pOther] { return pOther->LookUpInputs(); }});
    return comparisons;
}
