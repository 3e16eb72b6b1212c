// Play-control items on their way from the contract's objects into frames and back.
#include "PlayControlParser.h"
#include "NetworkTest.h"
#include "host/Clip.h"
#include "host/PlayControlDevice.h"

namespace {

class Receiver final : public IRecordReceiver {
public:
    void OnRecord(const CString& strClip, CQORPanelRemoteCtrlData& record) override {
        m_clips.push_back(Utf8(strClip));
        m_records.push_back(record);
    }

    std::vector<std::string> m_clips;
    std::vector<CQORPanelRemoteCtrlData> m_records;
};

class PlayControlParser : public testing::Test {
protected:
    bool Receive(std::span<const unsigned char> bytes) {
        return m_parser.Receive(bytes.data(), static_cast<int>(bytes.size()));
    }

    unsigned long long Refused(EFrameRefusal nRefusal) const { return m_parser.Reader().RefusedCount(nRefusal); }

    Receiver m_receiver;
    CQORPlayCtlParser m_parser{m_receiver};
    CFrameWriter m_writer;
};

TEST_F(PlayControlParser, ReadsTheItemThatWasWritten) {
    VEKClip clip(L"\u7247\u5934 & <Intro>");
    CQORNetItemPlayCtlProtocol item;
    item.m_nCommandCode = 50;
    item.m_pAttachedData = new CQORPanelRemoteCtrlData(SampleRecord());
    item.m_pClip = &clip;
    EXPECT_TRUE(Receive(WriteItem(m_writer, item)));
    ASSERT_EQ(m_receiver.m_records.size(), 1u);
    ExpectSameRecord(m_receiver.m_records[0], SampleRecord());
    EXPECT_EQ(m_receiver.m_clips[0], Utf8(clip.m_strName));
}

TEST_F(PlayControlParser, WritesCommandClipAndXml) {
    VEKClip clip(L"Clip");
    CQORNetItemPlayCtlProtocol item;
    item.m_nCommandCode = 50;
    item.m_pAttachedData = new CQORPanelRemoteCtrlData;
    item.m_pClip = &clip;
    const auto frame = WriteItem(m_writer, item);
    EXPECT_EQ(std::string(frame.begin() + 16, frame.end()),
              "Clip<PanelRemoteCtrl DevID=\"\" DevName=\"\" ClipName=\"\" GroupName=\"\" KeyName=\"\" KeyNumber=\"0\" "
              "HelpParameter=\"\" KeyValue=\"\" Layer=\"0\"/>\r\n");
}

TEST_F(PlayControlParser, AnItemWithoutDataOrClipIsAFrameWithoutThem) {
    const CQORNetItemPlayCtlProtocol item;
    EXPECT_EQ(WriteItem(m_writer, item).size(), FRAME_HEADER_SIZE);
}

TEST_F(PlayControlParser, TooLongARecordHasNoFrame) {
    CQORNetItemPlayCtlProtocol item;
    auto* pRecord = new CQORPanelRemoteCtrlData;
    pRecord->m_strKeyValue = CString(L'x', static_cast<int>(FRAME_BODY_LIMIT));
    item.m_pAttachedData = pRecord;
    EXPECT_TRUE(WriteItem(m_writer, item).empty());
}

TEST_F(PlayControlParser, RefusesOtherCommands) {
    EXPECT_TRUE(Receive(m_writer.Write({51, "Clip", Utf8(SampleRecord().GetXmlDoc())})));
    EXPECT_TRUE(m_receiver.m_records.empty());
    EXPECT_EQ(Refused(EFrameRefusal::UnknownCommand), 1u);
}

TEST_F(PlayControlParser, RefusesTextsThatAreNoRecordAndReadsOn) {
    const std::string xml = Utf8(SampleRecord().GetXmlDoc());
    EXPECT_TRUE(Receive(m_writer.Write({50, "Clip", ""})));
    EXPECT_TRUE(Receive(m_writer.Write({50, "Clip", "<Broadcast/>"})));
    EXPECT_TRUE(Receive(m_writer.Write({50, "Clip", xml.substr(1)})));
    EXPECT_EQ(Refused(EFrameRefusal::Malformed), 3u);
    EXPECT_TRUE(Receive(m_writer.Write({50, "\xC3", xml})));
    EXPECT_TRUE(Receive(m_writer.Write({50, "Clip", "\xFF" + xml})));
    EXPECT_EQ(Refused(EFrameRefusal::Malformed), 5u);
    EXPECT_TRUE(m_receiver.m_records.empty());
    EXPECT_TRUE(Receive(m_writer.Write({50, "", xml})));
    EXPECT_EQ(m_receiver.m_records.size(), 1u);
}

TEST_F(PlayControlParser, NothingIsNothing) {
    const unsigned char byte = 'x';
    EXPECT_TRUE(m_parser.Receive(nullptr, 3));
    EXPECT_TRUE(m_parser.Receive(&byte, 0));
    EXPECT_TRUE(m_parser.Receive(&byte, -1));
    m_parser.Finish();
    EXPECT_EQ(m_parser.Reader().RefusedCount(), 0u);
}

TEST_F(PlayControlParser, AClipsNameEndsAtAZero) {
    VEKClip clip(CString(L"Clip\0more", 9));
    CQORNetItemPlayCtlProtocol item;
    item.m_pClip = &clip;
    const auto frame = WriteItem(m_writer, item);
    EXPECT_EQ(std::string(frame.begin() + 16, frame.end()), "Clip");
}

TEST_F(PlayControlParser, AsksToCloseWhenOutOfStep) {
    EXPECT_FALSE(Receive(ToBytes("this is no play-control frame")));
    m_parser.Reset();
    EXPECT_TRUE(Receive(m_writer.Write({50, "", Utf8(SampleRecord().GetXmlDoc())})));
    EXPECT_EQ(m_receiver.m_records.size(), 1u);
}

TEST_F(PlayControlParser, IsASocketParserButNotTheDirectOne) {
    EXPECT_TRUE(m_parser.IsKindOf(RUNTIME_CLASS(CZtSocketParser)));
    EXPECT_FALSE(m_parser.IsKindOf(RUNTIME_CLASS(CZTDirectParser)));
}

} // namespace
