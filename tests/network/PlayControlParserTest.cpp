// Play-control items on their way from the contract's objects into frames and back.
#include "PlayControlParser.h"
#include "NetworkTest.h"
#include "host/Clip.h"
#include "host/PlayControlDevice.h"

namespace {

class PlayControlParser : public testing::Test, private IRecordReceiver {
protected:
    bool Receive(std::span<const unsigned char> bytes) {
        return m_parser.Receive(bytes.data(), static_cast<int>(bytes.size()));
    }

    /// The body of an item's frame.
    std::string Written(const CQORNetItemPlayCtlProtocol& item) {
        const auto frame = WriteItem(m_writer, item);
        return {frame.begin() + (frame.empty() ? 0 : FRAME_HEADER_SIZE), frame.end()};
    }

    unsigned long long Refused(EFrameRefusal nRefusal) const { return m_parser.Reader().RefusedCount(nRefusal); }

    std::vector<std::pair<std::string, CQORPanelRemoteCtrlData>> m_records; ///< with their clips
    CQORPlayCtlParser m_parser{*this};
    CFrameWriter m_writer;

private:
    void OnRecord(const CString& strClip, CQORPanelRemoteCtrlData& record) override {
        m_records.emplace_back(Utf8(strClip), record);
    }
};

TEST_F(PlayControlParser, ReadsTheItemThatWasWritten) {
    VEKClip clip(L"\u7247\u5934 & <Intro>");
    CQORNetItemPlayCtlProtocol item;
    item.m_nCommandCode = 50;
    item.m_pAttachedData = new CQORPanelRemoteCtrlData(SampleRecord());
    item.m_pClip = &clip;
    EXPECT_TRUE(Receive(WriteItem(m_writer, item)));
    ASSERT_EQ(m_records.size(), 1u);
    EXPECT_EQ(m_records[0].first, Utf8(clip.m_strName));
    ExpectSameRecord(m_records[0].second, SampleRecord());
}

TEST_F(PlayControlParser, WritesClipAndXml) {
    CQORNetItemPlayCtlProtocol item;
    EXPECT_EQ(WriteItem(m_writer, item).size(), FRAME_HEADER_SIZE) << "without data and clip";
    VEKClip clip(CString(L"Clip\0more", 9)); // ends at the zero
    item.m_pClip = &clip;
    EXPECT_EQ(Written(item), "Clip");
    auto* pRecord = new CQORPanelRemoteCtrlData;
    item.m_pAttachedData = pRecord;
    EXPECT_EQ(Written(item), "Clip<PanelRemoteCtrl DevID=\"\" DevName=\"\" ClipName=\"\" GroupName=\"\" KeyName=\"\" "
                             "KeyNumber=\"0\" HelpParameter=\"\" KeyValue=\"\" Layer=\"0\"/>\r\n");
    pRecord->m_strKeyValue = CString(L'x', static_cast<int>(FRAME_BODY_LIMIT));
    EXPECT_TRUE(WriteItem(m_writer, item).empty()) << "too long";
}

TEST_F(PlayControlParser, RefusesWhatIsNoRecordAndReadsOn) {
    const std::string xml = Utf8(SampleRecord().GetXmlDoc());
    EXPECT_TRUE(Receive(m_writer.Write({51, "Clip", xml})));
    EXPECT_EQ(Refused(EFrameRefusal::UnknownCommand), 1u);
    const std::pair<const char*, std::string> malformed[] = {
        {"Clip", ""}, {"Clip", "<Broadcast/>"}, {"Clip", xml.substr(1)}, {"\xC3", xml}, {"Clip", "\xFF" + xml}};
    for (const auto& [pszClip, body] : malformed) {
        EXPECT_TRUE(Receive(m_writer.Write({50, pszClip, body})));
    }
    EXPECT_EQ(Refused(EFrameRefusal::Malformed), 5u);
    EXPECT_TRUE(m_records.empty());
    EXPECT_TRUE(m_parser.Receive(nullptr, 3)) << "nothing is nothing";
    EXPECT_TRUE(m_parser.Receive(reinterpret_cast<const unsigned char*>("x"), -1));
    EXPECT_TRUE(Receive(m_writer.Write({50, "", xml})));
    EXPECT_FALSE(Receive(ToBytes("this is no play-control frame")));
    m_parser.Reset();
    EXPECT_TRUE(Receive(m_writer.Write({50, "", xml})));
    EXPECT_EQ(m_records.size(), 2u);
}

} // namespace
