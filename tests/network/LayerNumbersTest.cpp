// Layer choices, layer numbers and their labels.
#include <climits>

#include "NetworkTest.h"
#include "nodes/network/LayerNumbers.h"

namespace {

const int LAYER_NUMBERS[] = {-1, 0, 2147483446, -1023, -1022, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 2147483447, 2147483448};

const char* const LABELS[] = {
    "ZT_BASEOBJ_LAYER_BACK",          "ZT_BASEOBJ_LAYER_MIDDLE",       "ZT_BASEOBJ_LAYER_FRONT",
    "ZT_BASEOBJ_LAYER_OUTPUT_BACK",   "ZT_BASEOBJ_LAYER_OUTPUT_KEY",   "ZT_BASEOBJ_LAYER_ONLY1",
    "ZT_BASEOBJ_LAYER_ONLY2",         "ZT_BASEOBJ_LAYER_ONLY3",        "ZT_BASEOBJ_LAYER_ONLY4",
    "ZT_BASEOBJ_LAYER_ONLY5",         "ZT_BASEOBJ_LAYER_ONLY6",        "ZT_BASEOBJ_LAYER_ONLY7",
    "ZT_BASEOBJ_LAYER_ONLY8",         "ZT_BASEOBJ_LAYER_ONLY9",        "ZT_BASEOBJ_LAYER_ONLY10",
    "ZT_BASEOBJ_LAYER_OUTPUT_FIRST1", "ZT_BASEOBJ_LAYER_OUTPUT_FIRST2"};

TEST(LayerNumbers, EachChoiceHasItsNumber) {
    for (int nIndex = 0; nIndex < 17; ++nIndex) {
        EXPECT_EQ(LayerNumberOfChoice(nIndex), LAYER_NUMBERS[nIndex]) << nIndex;
    }
}

TEST(LayerNumbers, AreDefinedForEveryIndex) {
    EXPECT_EQ(LayerNumberOfChoice(-1), -1);
    EXPECT_EQ(LayerNumberOfChoice(INT_MIN), -1);
    EXPECT_EQ(LayerNumberOfChoice(17), 0x7FFFFF39);
    EXPECT_EQ(LayerNumberOfChoice(215), INT_MAX);
    EXPECT_EQ(LayerNumberOfChoice(216), INT_MIN);
    EXPECT_EQ(LayerNumberOfChoice(INT_MAX), -217);
}

TEST(LayerNumbers, EachChoiceHasItsLabel) {
    CStringArray arChoice;
    FillLayerLabels(arChoice);
    ASSERT_EQ(arChoice.GetSize(), 17);
    for (int nIndex = 0; nIndex < 17; ++nIndex) {
        EXPECT_EQ(Utf8(arChoice[nIndex]), LABELS[nIndex]);
    }
}

TEST(LayerNumbers, LabelsOfOtherNumbers) {
    EXPECT_EQ(Utf8(LayerLabel(11)), "ZT_BASEOBJ_LAYER_ONLY11");
    EXPECT_EQ(Utf8(LayerLabel(0x7FFFFF35)), "ZT_BASEOBJ_LAYER_ONLY2147483445");
    EXPECT_EQ(Utf8(LayerLabel(0x7FFFFF36)), "ZT_BASEOBJ_LAYER_FRONT");
    EXPECT_EQ(Utf8(LayerLabel(0x7FFFFF37)), "ZT_BASEOBJ_LAYER_OUTPUT_FIRST1");
    EXPECT_EQ(Utf8(LayerLabel(0x7FFFFF39)), "ZT_BASEOBJ_LAYER_ONLY");
    EXPECT_EQ(Utf8(LayerLabel(INT_MAX)), "ZT_BASEOBJ_LAYER_ONLY");
    EXPECT_EQ(Utf8(LayerLabel(-2)), "ZT_BASEOBJ_LAYER_ONLY");
    EXPECT_EQ(Utf8(LayerLabel(INT_MIN)), "ZT_BASEOBJ_LAYER_ONLY");
}

} // namespace
