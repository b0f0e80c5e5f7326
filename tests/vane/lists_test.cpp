// The lists of choices, filled into a list of the host's own.
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

#include "tests/support/transcript.h"

namespace vane {
namespace {

using test::CTestHost;

// Sorts its entries, as a host's may; can fail at its n-th entry.
class CSortedList : public ui::CListControl {
 public:
  void Clear() override {
    items_.clear();
    selected_ = -1;
  }
  void AddItem(const std::string& text) override {
    if (items_.size() == failat) throw LibraryError(test::kLineError, "list", "full");
    const auto place =
        sorts ? std::ranges::lower_bound(items_, text, {}, &Entry::text) : items_.end();
    const auto added = items_.insert(place, {text, 0});
    newindex_ = static_cast<std::int32_t>(added - items_.begin());
  }
  std::int32_t NewIndex() const override { return newindex_; }
  std::int32_t ListCount() const override { return static_cast<std::int32_t>(items_.size()); }
  std::int32_t ItemData(std::int32_t index) const override { return items_.at(index).data; }
  void SetItemData(std::int32_t index, std::int32_t value) override {
    items_.at(index).data = value;
  }
  std::int32_t ListIndex() const override { return selected_; }
  void SetListIndex(std::int32_t index) override { selected_ = index; }

  // "text#code", separated by "|".
  std::string Text() const {
    std::string text;
    for (const Entry& item : items_) {
      text += (text.empty() ? "" : "|") + item.text + "#" + std::to_string(item.data);
    }
    return text;
  }

  bool sorts = false;
  std::optional<std::size_t> failat;

 private:
  struct Entry {
    std::string text;
    std::int32_t data;
  };
  std::vector<Entry> items_;
  std::int32_t newindex_ = -1;
  std::int32_t selected_ = -1;
};

class Lists : public testing::Test {
 protected:
  template <class Filler>
  std::string Of(Filler&& fill) {
    fill();
    EXPECT_EQ(list_.ListIndex(), -1);
    return list_.Text();
  }

  CTestHost host_;
  CVaneT312B& it_ = *host_.instrument;
  CSortedList list_;
};

TEST_F(Lists, HoldTheirChoicesInOrder) {
  host_.ConnectWith(true);
  EXPECT_EQ(Of([&] { it_.FillFilterTypeList(list_); }), "None#0|Average#1|Exponential#2");
  EXPECT_EQ(Of([&] { it_.FillUnitsList(list_, true); }),
            "<keep existing>#-1|°C#0|°F#1|K#2|Ohms#4|Ratio#6|W#10");
  EXPECT_EQ(Of([&] { it_.FillUnitsList(list_, false, false); }), "°C#0|°F#1|K#2");
  EXPECT_EQ(Of([&] { it_.FillRTLSUnitsList(list_); }), "°C#0|°F#1|K#2");
  EXPECT_EQ(Of([&] { it_.FillRTLSUnitsList(list_, true); }), "<keep existing>#-1|°C#0|°F#1|K#2");
  EXPECT_EQ(Of([&] { it_.FillSampleActionList(list_); }), "Run#0|Stop#1|Sample n#2");
  EXPECT_EQ(Of([&] { it_.FillOvenList(list_); }), "On#0|Off#1");
  EXPECT_EQ(Of([&] { it_.FillScannerScanModeList(list_); }),
            "Scanner channels only#1|Input 2 and scanner channels#2|"
            "Alternate input 2/scanner channels#3|"
            "Alternate scanner channel 1/scanner channels#4|User-defined scanner sequence#5");
  EXPECT_EQ(Of([&] { it_.FillProbeNameList(list_); }).substr(0, 18), "Probe 1#1|Probe 2#");
  EXPECT_EQ(list_.ItemData(15), 16);
  auto& channel = *it_.GetChannelReference(3);
  EXPECT_EQ(Of([&] { channel.FillRefResistorList(list_); }),
            "External resistor#0|1 Ohm#1|10 Ohm#2|100 Ohm#3|10K Ohm#4");
  EXPECT_EQ(Of([&] { it_.GetChannelReference(2)->FillRefResistorList(list_); }),
            "1 Ohm#1|10 Ohm#2|100 Ohm#3|10K Ohm#4");
  EXPECT_EQ(Of([&] { channel.FillConversionTypeList(list_, true); }),
            "<keep existing>#-1|ITS-90#0|IPTS-68#1|Callendar-Van Dusen#2|W(T90)#14|R(T)#6|T(R)#5|"
            "Polynomial#4|Ohms#10|Ratio#15");
  list_.sorts = true;
  EXPECT_EQ(Of([&] { it_.FillFilterTypeList(list_); }), "Average#1|Exponential#2|None#0");
}

TEST_F(Lists, FollowTheScanner) {
  host_.ConnectWith(false);
  EXPECT_EQ(Of([&] { it_.FillChannelModeList(list_); }),
            "Alternate input 1/input 2#0|Input 1#1|Input 2#2");
  EXPECT_EQ(Of([&] { it_.FillScanChannelList(list_); }), "");
  EXPECT_EQ(Of([&] { it_.FillChannelNameList(list_); }), "Input 2#2");
  it_.GetChannelReference(1)->SetProbeIndex(5);
  it_.GetChannelReference(2)->SetProbeIndex(7);
  EXPECT_EQ(Of([&] { it_.FillChannelList(list_); }), "Input 1) Probe 5#1|Input 2) Probe 7#2");

  host_.ConnectWith(true);
  EXPECT_EQ(Of([&] { it_.FillChannelModeList(list_); }),
            "Alternate input 1/input 2#0|Input 1#1|Input 2#2|Scanner channel#3|Scanner sequence#4");
  EXPECT_EQ(Of([&] { it_.FillScanChannelList(list_); }),
            "1#1|2#2|3#3|4#4|5#5|6#6|7#7|8#8|9#9|10#10");
  EXPECT_EQ(Of([&] { it_.FillChannelNameList(list_); }).substr(0, 29),
            "Input 2#2|Scanner 1#3|Scanner");
  EXPECT_EQ(list_.ListCount(), 11);
  it_.GetChannelReference(2)->SetProbeIndex(7);
  it_.GetChannelReference(12)->SetProbeIndex(9);
  EXPECT_EQ(Of([&] { it_.FillChannelList(list_); }).substr(0, 47),
            "Input 2) Probe 7#2|Scanner 1) Probe -1#3|Scanne");
  EXPECT_EQ(list_.Text().substr(list_.Text().rfind('|')), "|Scanner 10) Probe 9#12");
  EXPECT_EQ(list_.ListCount(), 11);

  // What the readout says of its channels counts for the one list, its modules for the others.
  host_.script.replies["read 43"] = "9";
  it_.QueryChannelInfo();
  EXPECT_EQ(Of([&] { it_.FillScanChannelList(list_); }), "1#1|2#2|3#3|4#4|5#5|6#6|7#7");
  it_.FillChannelNameList(list_);
  EXPECT_EQ(list_.ListCount(), 11);
  it_.FillChannelList(list_);
  EXPECT_EQ(list_.ListCount(), 11);
}

TEST_F(Lists, SequenceHasAnEntryForEachStep) {
  const struct {
    const char* channels;
    std::int16_t steps;
    const char* entries;
  } rows[] = {{"3,12", 2, "1) Scanner 1#3|2) Scanner 10#12"},
              {"3,12", 1, "1) Scanner 1#3"},
              {"2", 3, "1) Input 2#2|2) Input 0#0|3) Input 0#0"},
              {"-1,,x,4z", 4, "1) Input -1#-1|2) Input 0#0|3) Input 0#0|4) Scanner 2#4"},
              {"", 0, ""},
              {"3,4", -1, ""}};
  for (const auto& row : rows) {
    it_.SetScanChannels(row.channels);
    it_.SetScanSeqSteps(row.steps);
    EXPECT_EQ(Of([&] { it_.FillScanSeqList(list_); }), row.entries);
  }
  it_.SetScanChannels("3,70000");
  it_.SetScanSeqSteps(2);
  EXPECT_EQ(CTestHost::ErrorOf([&] { it_.FillScanSeqList(list_); }).Number(),
            ERR_PLATFORM_OVERFLOW);
  EXPECT_EQ(list_.Text(), "1) Scanner 1#3");
}

TEST_F(Lists, EntriesBeforeAFailureStay) {
  host_.ConnectWith(true);
  auto& channel = *it_.GetChannelReference(3);
  it_.SetScanSeqSteps(3);
  it_.SetHelpFile("help");
  list_.failat = 2;
  const std::pair<const char*, std::function<void()>> fillers[] = {
      {"CVaneT312B - FillFilterTypeList", [&] { it_.FillFilterTypeList(list_); }},
      {"CVaneT312B - FillUnitsList", [&] { it_.FillUnitsList(list_); }},
      {"CVaneT312B - FillUnitsList", [&] { it_.FillRTLSUnitsList(list_); }},
      {"CVaneT312B - FillSampleActionList", [&] { it_.FillSampleActionList(list_); }},
      {"CVaneT312B - FillChannelModeList", [&] { it_.FillChannelModeList(list_); }},
      {"CVaneT312B - FillScannerScanModeList", [&] { it_.FillScannerScanModeList(list_); }},
      {"CVaneT312B - FillScanChannelList", [&] { it_.FillScanChannelList(list_); }},
      {"CVaneT312B - FillScanSeqList", [&] { it_.FillScanSeqList(list_); }},
      {"CVaneT312B - FillChannelNameList", [&] { it_.FillChannelNameList(list_); }},
      {"CVaneT312B - FillChannelList", [&] { it_.FillChannelList(list_); }},
      {"CVaneT312B - FillProbeNameList", [&] { it_.FillProbeNameList(list_); }},
      {"CVaneT312BPRTTHRMChannel - FillRefResistorList",
       [&] { channel.FillRefResistorList(list_); }},
      {"CVaneT312BPRTTHRMChannel - FillConversionTypeList",
       [&] { channel.FillConversionTypeList(list_); }}};
  for (const auto& [label, fill] : fillers) {
    const LibraryError error = CTestHost::ErrorOf(fill);
    EXPECT_EQ(error.Source(), label);
    EXPECT_EQ(error.HelpFile(), "");
    EXPECT_EQ(list_.ListCount(), 2) << label;
  }
  list_.failat = 1;
  EXPECT_EQ(CTestHost::ErrorOf([&] { it_.FillOvenList(list_); }).Source(),
            "CVaneT312B - FillOvenList");
}

}  // namespace
}  // namespace vane
