#include "protocol/NetworkJson.h"

#include <algorithm>
#include <charconv>

#include "base/ByteText.h"

namespace asio = boost::asio;

namespace {

constexpr const char* PARSER_NAMES[] = {"none", "direct", "framed", "json"};
constexpr const char* STATE_NAMES[] = {"unconnected", "connecting", "connected", "waiting"};

/// A numeric address and a port; a port alone is refused as well.
asio::ip::tcp::endpoint ReadEndpoint(const std::string& strText, const std::string& strField) {
    const size_t nColon = strText.rfind(':');
    unsigned short nPort = 0;
    boost::system::error_code error = asio::error::invalid_argument;
    asio::ip::address address;
    if (nColon != std::string::npos) {
        std::string strAddress = strText.substr(0, nColon);
        if (strAddress.size() > 2 && strAddress.front() == '[' && strAddress.back() == ']') {
            strAddress = strAddress.substr(1, strAddress.size() - 2);
        }
        address = asio::ip::make_address(strAddress, error);
        const char* pEnd = strText.data() + strText.size();
        const auto [pRead, nError] = std::from_chars(strText.data() + nColon + 1, pEnd, nPort);
        if (nError != std::errc() || pRead != pEnd || nPort == 0) {
            error = asio::error::invalid_argument;
        }
    }
    if (error) {
        Refuse(strField, Quoted(strText) + " isn't a numeric address and a port, as in 127.0.0.1:9000");
    }
    return {address, nPort};
}

EDeviceParser ReadParser(const std::string& strText, const std::string& strField) {
    const auto* pName = std::ranges::find(PARSER_NAMES, strText);
    if (pName == std::end(PARSER_NAMES)) {
        Refuse(strField, Quoted(strText) + " is none of framed, direct, json, none");
    }
    return static_cast<EDeviceParser>(pName - PARSER_NAMES);
}

OrderedJson TextOrNull(const std::string& strText) {
    return strText.empty() ? OrderedJson() : OrderedJson(strText);
}

OrderedJson SetupToJson(const SDeviceSetup& setup) {
    return {{"id", setup.nId},
            {"name", setup.strName},
            {"parser", PARSER_NAMES[static_cast<size_t>(setup.nParser)]},
            {"address", setup.address ? OrderedJson(EndpointText(*setup.address)) : OrderedJson()}};
}

OrderedJson LastToJson(const std::optional<SLastBytes>& last) {
    return !last ? OrderedJson()
                 : OrderedJson{{"size", last->nSize}, {"text", DottedText(last->bytes)}, {"hex", HexText(last->bytes)}};
}

void AddCounts(OrderedJson& state, const SItemCounts& counts) {
    state["received"] = counts.nReceived;
    state["matched"] = counts.nMatched;
    state["rejected"] = counts.nRejected;
    state["last_rejected"] = TextOrNull(counts.strLastRejected);
}

OrderedJson StateToJson(const SDeviceState& device) {
    OrderedJson state = SetupToJson(device.setup);
    state["state"] = STATE_NAMES[static_cast<size_t>(device.nState)];
    state["since_ms"] = device.since.count();
    state["last_problem"] = TextOrNull(device.strLastProblem);
    state["queued_items"] = device.nQueuedItems;
    state["queued_bytes"] = device.nQueuedBytes;
    state["sent"] = device.nSent;
    state["refused"] = device.nRefused;
    state["lost"] = device.nLost;
    state["shown"] = device.nShown;
    state["errors"] = device.nErrors;
    state["received_bytes"] = device.nReceivedBytes;
    AddCounts(state, device.counts);
    if (device.setup.nParser == EDeviceParser::JsonLines) {
        OrderedJson& lines = state["rejected_lines"];
        for (size_t i = 0; i < LINE_REFUSAL_COUNT; ++i) {
            lines[LineRefusalName(static_cast<ELineRefusal>(i))] = device.rejectedLines[i];
        }
    }
    OrderedJson& lastSent = state["last_sent_bytes"] = LastToJson(device.lastSent);
    if (!lastSent.is_null()) {
        lastSent["sent"] = !device.bLastShownOnly;
    }
    state["last_received_bytes"] = LastToJson(device.lastReceived);
    return state;
}

OrderedJson StateToJson(const SBroadcastState& broadcast) {
    OrderedJson state = {{"port", broadcast.nPort},
                         {"problem", TextOrNull(broadcast.strProblem)},
                         {"errors", broadcast.nErrors},
                         {"last_error", TextOrNull(broadcast.strLastError)}};
    AddCounts(state, broadcast.counts);
    state["last_received_bytes"] = LastToJson(broadcast.lastReceived);
    return state;
}

OrderedJson StateToJson(const SControlState& control) {
    OrderedJson state = {{"port", control.nPort},
                         {"connections", control.nConnections},
                         {"turned_away", control.nTurnedAway},
                         {"errors", control.nErrors},
                         {"last_error", TextOrNull(control.strLastError)}};
    AddCounts(state, control.counts);
    return state;
}

/// A list of what each element is as JSON; null without a list.
template <typename Element, typename Convert>
OrderedJson ListOrNull(const std::optional<std::vector<Element>>& elements, Convert convert) {
    if (!elements) {
        return nullptr;
    }
    OrderedJson list = OrderedJson::array();
    for (const Element& element : *elements) {
        list.push_back(convert(element));
    }
    return list;
}

} // namespace

std::optional<std::vector<SDeviceSetup>> ReadDevices(const Json& list, const std::string& strPath) {
    if (list.is_null()) {
        return std::nullopt;
    }
    if (!list.is_array()) {
        Refuse(strPath, "must be an array or null");
    }
    std::vector<SDeviceSetup> setups;
    for (size_t i = 0; i < list.size(); ++i) {
        const CFields fields(list[i], strPath + "[" + std::to_string(i) + "].");
        SDeviceSetup setup;
        setup.nId = fields.Int("id");
        setup.strName = fields.Text("name");
        setup.nParser = ReadParser(fields.Text("parser"), fields.Path("parser"));
        const Json* pAddress = fields.Find("address");
        if (pAddress != nullptr && !pAddress->is_null()) {
            setup.address = ReadEndpoint(ReadText(*pAddress, fields.Path("address")), fields.Path("address"));
        }
        setups.push_back(std::move(setup));
    }
    return setups;
}

OrderedJson DevicesToJson(const std::optional<std::vector<SDeviceSetup>>& setups) {
    return ListOrNull(setups, SetupToJson);
}

OrderedJson NetworkToJson(const SNetworkState& state) {
    return {{"devices", ListOrNull(state.devices, [](const SDeviceState& device) { return StateToJson(device); })},
            {"broadcast", state.broadcast ? StateToJson(*state.broadcast) : OrderedJson()},
            {"control", state.control ? StateToJson(*state.control) : OrderedJson()},
            {"listen_only", state.bListenOnly}};
}
