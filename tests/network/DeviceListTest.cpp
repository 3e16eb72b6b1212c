// The host's device list as nodes see it.
#include "DeviceList.h"
#include "NetworkTest.h"
#include "host/HostRender.h"

namespace {

class DeviceList : public testing::Test {
protected:
    ~DeviceList() override { SetNetPlayCtrlDevices(nullptr); }
};

TEST_F(DeviceList, IsNullUntilTheHostSetsIt) {
    EXPECT_EQ(G_GetArNetPlayCtrlDev(), nullptr);
    EXPECT_EQ(G_FindNetPlayCtrlDevByID(0), nullptr);
}

TEST_F(DeviceList, FindsTheFirstDeviceOfANumber) {
    SQORNetPlayCtrlDev devices[3];
    const int ids[] = {7, 0, 7};
    NetPlayCtrlDevArray arDevice;
    arDevice.Add(nullptr); // passed over
    for (int i = 0; i < 3; ++i) {
        devices[i].m_nId = ids[i];
        arDevice.Add(&devices[i]);
    }
    SetNetPlayCtrlDevices(&arDevice);
    EXPECT_EQ(G_GetArNetPlayCtrlDev(), &arDevice);
    EXPECT_EQ(G_FindNetPlayCtrlDevByID(7), &devices[0]);
    EXPECT_EQ(G_FindNetPlayCtrlDevByID(0), &devices[1]);
    EXPECT_EQ(G_FindNetPlayCtrlDevByID(1), nullptr);
}

TEST(IntToStr, IsDecimal) {
    EXPECT_EQ(Utf8(QORIntToStr(0)), "0");
    EXPECT_EQ(Utf8(QORIntToStr(-12)), "-12");
    EXPECT_EQ(Utf8(QORIntToStr(2147483647)), "2147483647");
    EXPECT_EQ(Utf8(QORIntToStr(-2147483647 - 1)), "-2147483648");
}

} // namespace
