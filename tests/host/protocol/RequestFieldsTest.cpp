// How the fields of requests are read: which must be there, of which kind, and what the refusal of a wrong one says.
#include "HostTest.h"

#include <sstream>

#include "protocol/Shapes.h"

namespace {

/// A request that was read, as recordings have it.
Json Written(const Json& request) {
    CNoFiles files;
    SRequest read;
    ReadRequest(read, CFields(request), files);
    return ToJson(read.command);
}

/// What is as in a new request may be left out.
void ExpectWrittenTheSame(const Json& request) {
    const Json once = Written(request);
    EXPECT_EQ(Written(once), once);
    for (const auto& [strField, value] : once.items()) {
        EXPECT_EQ(value, request.value(strField, value)) << strField << " of " << request;
    }
    EXPECT_EQ(once["op"], request["op"]);
}

/// Why a request can't be read; empty for one that can.
std::string RefusalOf(const Json& request) {
    try {
        Written(request);
        return "";
    } catch (const CRefusal& refusal) {
        return refusal.what();
    }
}

/// A field of another kind must be refused, and one that is missing if it's needed. Its path is as in
/// scene.nodes[0].type.
void ExpectChecked(const Json& request, const std::string& strPath, bool bNeeded) {
    std::string strPlace = "/" + strPath;
    std::ranges::replace(strPlace, '.', '/');
    std::ranges::replace(strPlace, '[', '/');
    std::erase(strPlace, ']');
    const Json::json_pointer place(strPlace);
    Json changed = request;
    changed[place] = request[place].is_object() ? Json(1) : Json::object();
    EXPECT_TRUE(RefusalOf(changed).starts_with(strPath + ": must be ")) << changed << '\n' << RefusalOf(changed);
    Json without = request;
    without[place.parent_pointer()].erase(place.back());
    EXPECT_EQ(RefusalOf(without), bNeeded ? strPath + ": is missing" : "") << without;
}

TEST(RequestFields, OfEachRequestAreOfOneKindAndThereUnlessTheyMayBeMissing) {
    const std::pair<std::string, std::string> requests[] = {
        // with the fields that must be there, and those that may
        {"call code=1", ""},
        {"create node=n type=mouse clip=C graph=G", " event_window=true notify_window=true outputs=true saved={}"},
        {"inspect node=n", ""},
        {"inspect_nodes nodes=[]", ""},
        {"init node=n", ""},
        {"outputs node=n", ""},
        {"layout node=n", ""},
        {"destroy node=n", " type=mouse pointer=false"},
        {"evaluate on=frame", ""},
        {"process", " node=n graph=true frame=false"},
        {"event device=0 event=1", R"( node=n payload={"is":"key","text":""})"},
        {"release_held", R"( reason="" device=0 identity=1 everyone=true)"},
        {"trigger node=n param=1", ""},
        {R"(drop node=n param=1 from=["own"])", ""},
        {"link from=n output=1 to=n input=1", ""},
        {"unlink from=n output=1 to=n input=1", ""},
        {"keys", " down=[16,65] toggled=[20]"},
        {"clock ms=1", ""},
        {"main_window present=true enabled=true", ""},
        {"object clip=C name=O", " matrix=[1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1]"},
        {"change_object clip=C name=O", " to=P matrix=[1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1]"},
        {"remove_object clip=C name=O", ""},
        {"devices list=[]", ""},
        {"device device=1 name=D parser=none", " address=127.0.0.1:1 drop_after=1 new=true"},
        {"remove_device device=1", ""},
        {"connect device=1", ""},
        {"send device=1 text=t", ""},
        {"listen", " broadcast=0 control=0 address=127.0.0.1"},
        {"wait ms=0", ""},
        {"listen_only on=true", ""},
        {"log", " after=1"},
        {"reset_counters", " node=n"},
        {"rename node=n graph=G", ""},
        {"place", R"( nodes={} notes={} series="")"},
        {"undo", " to=1"},
        {"redo", " to=1"},
        {"save file=f", " replace=false"},
        {"recording version=1 texts=keys", " evaluate=frame rounding=true"},
        {"batch requests=[]", " name=N"},
    };
    for (const auto& [strNeeded, strMore] : requests) {
        const Json needed = Request(strNeeded);
        const Json all = Request(strNeeded + strMore);
        EXPECT_EQ(RefusalOf(needed), "") << strNeeded;
        ExpectWrittenTheSame(needed);
        ExpectWrittenTheSame(all);
        for (const auto& [strField, value] : all.items()) {
            ExpectChecked(all, strField, needed.contains(strField));
        }
    }
}

TEST(RequestFields, OfPayloadsMustAllBeThere) {
    const Json record = {{"is", "record"}, {"DevID", ""},    {"DevName", ""},       {"ClipName", ""}, {"GroupName", ""},
                         {"KeyName", ""},  {"KeyNumber", 0}, {"HelpParameter", ""}, {"KeyValue", ""}, {"Layer", 1}};
    const Json payloads[] = {KeyText(""),
                             PointerSample(),
                             HandSample(),
                             record,
                             Request(R"({"is":"broadcast","flag":"","clip":"","name":"","data":""})"),
                             Request(R"({"is":"device_text","device":1,"text":""})"),
                             Request(R"({"is":"object_text","clip":"","object":"","text":""})")};
    for (const Json& payload : payloads) {
        ExpectWrittenTheSame(Event(9, 1, payload));
        for (const auto& [strField, value] : payload.items()) {
            ExpectChecked(Event(9, 1, payload), "payload." + strField, true);
        }
    }
}

TEST(RequestFields, WithinFieldsAreCheckedTheSame) {
    const Json load =
        Request(R"(load scene={"format":"iohost scene","version":1,)"
                R"("clips":[{"name":"C","objects":[{"name":"O","matrix":[1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1]}]}],)"
                R"("nodes":[{"node":"n","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B03}","clip":null,)"
                R"("graph":"G","own":[{"id":1,"params":[{"id":2,"int":1,"range":[1,2,3,4]}]}],"inputs":[],)"
                R"("outputs":[],"event_window":true,"notify_window":true,"place":{"x":1,"y":1}}],)"
                R"("links":[{"from":"n","output":1,"to":"n","input":1}],)"
                R"("devices":[{"id":1,"name":"D","parser":"none","address":null,"drop_after":1}],)"
                R"("notes":{"n":{"x":1,"y":2,"width":3,"height":4,"text":""}}} name=N unsaved=true step=false)");
    const Json create = Request(R"(create node=n type=mouse clip=C graph=G saved={"values":{"2":1},"drop":[],)"
                                R"("available":{"2":0},"choices":[],"groups":true,"pins":[{"group":351,"ids":[]}]})");
    for (const char* pszField : {"name", "unsaved", "step"}) {
        ExpectChecked(load, pszField, false);
    }
    const std::tuple<const Json&, std::string, bool> cases[] = {
        // the request, where in it, what must be there, what may
        {load, "scene format version", true},
        {load, "scene clips nodes links devices notes", false},
        {load, "scene.clips[0] name objects", true},
        {load, "scene.clips[0].objects[0] name", true},
        {load, "scene.clips[0].objects[0] matrix", false},
        {load, "scene.nodes[0] node type clip graph", true},
        {load, "scene.nodes[0] own inputs outputs event_window notify_window place", false},
        {load, "scene.nodes[0].own[0] id params", true},
        {load, "scene.nodes[0].own[0].params[0] id", true},
        {load, "scene.nodes[0].own[0].params[0] int range", false},
        {load, "scene.nodes[0].place x y", true},
        {load, "scene.links[0] from output to input", true},
        {load, "scene.devices[0] id name parser", true},
        {load, "scene.devices[0] address drop_after", false},
        {load, "scene.notes.n x y width height text", true},
        {create, "saved values drop available choices groups pins", false},
        {create, "saved.values 2", false},
        {create, "saved.available 2", false},
        {create, "saved.pins[0] group ids", true},
    };
    for (const auto& [request, strFields, bNeeded] : cases) {
        std::istringstream words(strFields);
        std::string strWhere;
        words >> strWhere;
        for (std::string strField; words >> strField;) {
            ExpectChecked(request, strWhere + "." + strField, bNeeded);
        }
    }
}

TEST(RequestFields, RefusalsSayWhatAValueMustBe) {
    const std::pair<const char*, const char*> cases[] = {
        {"call code=1.0", "code: must be an integer"},
        {"call code=-1", "code: is outside the unsigned 32-bit range"},
        {"call code=4294967296", "code: is outside the unsigned 32-bit range"},
        {"event device=2147483648 event=1", "device: is outside the signed 32-bit range"},
        {"event device=1 event=18446744073709551615", "event: is outside the signed 32-bit range"},
        {"event node=null device=1 event=1", "node: must be a string"},
        {"event record=1", "record: must be null or missing"},
        {R"(event device=1 event=1 payload={"is":"smoke"})", R"(payload.is: there is no payload kind "smoke")"},
        {"set node=p param=11", "int, float, string, choice: exactly one of them must be there"},
        {"set node=p param=11 int=1 float=1", "int, float, string, choice: exactly one of them must be there"},
        {R"(set node=p param=11 choice="a")", "choice: must be an integer"},
        {"set node=p param=11 float=-3.5e38", "float: is outside the range of a 32-bit float"},
        {"create node=n type=mouse clip=1", "clip: must be a string or null"},
        {"keys down=[65,256]", "down: 256 isn't a virtual-key code"},
        {"clock ms=1.5", "ms: must be a whole number"},
        {"evaluate on=later", R"(on: "later" is none of frame, event)"},
        {"listen broadcast=65536", "broadcast: 65536 isn't a port"},
        {"device device=3 name=W parser=none drop_after=0", "drop_after: must be from 0.001 to 86400 seconds"},
        {"device device=3 name=W parser=none drop_after=86401", "drop_after: must be from 0.001 to 86400 seconds"},
        {"release_held identity=0.5",
         "identity: must be the text of a key or the number of a pointer, hand or virtual key"},
        {R"(drop node=p param=10 from=["own","attic"])", R"(from: "attic" is none of own, inputs, outputs)"},
        {"object clip=C name=O matrix=[1]", "matrix: must be an array of 16 numbers"},
        {R"(object clip=C name=O matrix=["1",0,0,0,0,1,0,0,0,0,1,0,0,0,0,1])", "matrix[0]: must be a number"},
        {R"(create node=n type=mouse clip=C graph=G saved={"values":{"x":1}})",
         R"(saved.values: the key "x" isn't a parameter id)"},
        {R"(create node=n type=mouse clip=C graph=G saved={"values":{"2":true}})",
         "saved.values.2: must be a number or a string"},
        {R"(create node=n type=mouse clip=C graph=G saved={"values":{"2":4294967296}})",
         "saved.values.2: is outside the signed 32-bit range"},
        {R"(create node=n type=mouse clip=C graph=G saved={"values":{"2":1e300}})",
         "saved.values.2: is outside the range of a 32-bit float"},
        {R"(create node=n type=mouse clip=C graph=G saved={"drop":[2,2]})", "saved.drop: names parameter 2 twice"},
        {R"(create node=n type=mouse clip=C graph=G saved={"drop":[2],"choices":[2]})",
         "saved.choices: parameter 2 is dropped"},
        {"process frame=true node=p", "node: doesn't go with frame, which evaluates the whole scene"},
        {"process frame=true graph=false", "graph: doesn't go with frame, which evaluates the whole scene"},
        {"objects id=[1]", "id: must be a string, a number, true, false or null"},
        {R"(load scene={"format":"other","version":1})", "scene: isn't a scene of this version"},
        {R"(load scene={"format":"iohost scene","version":2})", "scene: isn't a scene of this version"},
        {"load file=f", "file: is out of reach here"},
    };
    for (const auto& [pszRequest, pszRefusal] : cases) {
        EXPECT_EQ(RefusalOf(Request(pszRequest)), pszRefusal) << pszRequest;
    }
    EXPECT_EQ(RefusalOf(Event(1, 3013, PointerSample({{"relative", 2}}))), "payload.relative: must be 0 or 1");
    for (const char* pszAddress :
         {"127.0.0.1", "127.0.0.1:", "127.0.0.1:0", "127.0.0.1:65536", "127.0.0.1:90x", "localhost:9000"}) {
        EXPECT_EQ(
            RefusalOf({{"op", "device"}, {"device", 1}, {"name", "D"}, {"parser", "none"}, {"address", pszAddress}}),
            "address: \"" + std::string(pszAddress) + "\" isn't a numeric address and a port, as in 127.0.0.1:9000");
    }
}

TEST(RequestFields, WhatIsNoGuidIsRefused) {
    for (const std::string strType :
         {"", "{}", "8164BB40-6B6A-4707-88B7-386BCB0D1B03", "{8164BB40-6B6A-4707-88B7-386BCB0D1B0}",
          "{8164BB40-6B6A-4707-88B7-386BCB0D1B030}", "{8164BB4006B6A-4707-88B7-386BCB0D1B03}",
          "{0x64BB40-6B6A-4707-88B7-386BCB0D1B03}", "{ 164BB40-6B6A-4707-88B7-386BCB0D1B03}",
          "(8164BB40-6B6A-4707-88B7-386BCB0D1B03)"}) {
        EXPECT_EQ(RefusalOf({{"op", "destroy"}, {"node", "n"}, {"type", strType}}),
                  "type: \"" + strType + "\" isn't a GUID");
    }
}

} // namespace
