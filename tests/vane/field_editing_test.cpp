// Number texts, key filters, and the other routines that keep fields clean.
#include "vane/support/field_editing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "tests/support/transcript.h"
#include "vane/support/number_text.h"
#include "vane/support/numbers.h"

namespace vane {
namespace {

using test::CTestHost;

class FieldEditing : public testing::Test {
 protected:
  void UseSeparator(const std::string& separator) {
    host_.platform.separator = separator;
    SetDecimalSeparator({});
  }

  CTestHost host_;
};

TEST_F(FieldEditing, NumbersAreWrittenAsTheirPatternHasThem) {
  const struct {
    double value;
    const char* pattern;
    const char* text;
  } rows[] = {
      {25.0012, "###0.00", "25.00"},
      {100.52, "###0.0", "100.5"},
      {1.5, "0.0000", "1.5000"},
      {0, "###0.000", "0.000"},
      {0, "##0.0############", "0.0"},
      {0, "0.0########E-00", "0.0E00"},
      {0, "0.000000000E+00", "0.000000000E+00"},
      {-0.0, "0.00", "0.00"},
      {-0.004, "0.00", "0.00"},
      {-0.005, "0.00", "-0.01"},
      {0.005, "0.00", "0.01"},
      {1.005, "0.00", "1.01"},  // the binary number is below the half, the decimal one is it
      {0.0004, "0.00", "0.00"},
      {9.995, "#0.0", "10.0"},
      {99.96, "#0.0", "100.0"},
      {-999.9996, "###0.000", "-1000.000"},
      {2.5, "###0", "3"},
      {0.4, "###0", "0"},
      {-2.5, "0", "-3"},
      {123456, "0.00", "123456.00"},
      {1e21, "0.0", "1000000000000000000000.0"},
      {0.00385, "0.0############", "0.00385"},
      {5e-324, "0.0############", "0.0"},
      {1.5e-14, "0.0############", "0.0"},
      {25.000000000001, "##0.0############", "25.000000000001"},
      {10000, "0.000000000E+00", "1.000000000E+04"},
      {-0.00012345, "0.0########E-00", "-1.2345E-04"},
      {99999999999, "0.0########E-00", "1.0E11"},
      {1e300, "0.0########E-00", "1.0E300"},
      {5e-324, "0.0#######E-00", "5.0E-324"},
      {1.7976931348623157e308, "0.000000000E+00", "1.797693135E+308"},
      {-0.5, "0.00000000000", "-0.50000000000"},
      {0, "0.00000000000", "0.00000000000"},
      {0.999999999996, "0.00000000000", "1.00000000000"},
      {1e-7, "0.000000000E+00", "1.000000000E-07"},
      {-9.9999999999, "0.000000000E+00", "-1.000000000E+01"},
      {-0.99999999999999, "##0.0############", "-1.0"},
      {-9.99999999996, "0.0########E-00", "-1.0E01"},
      {-1e-9, "#0.0", "0.0"},
      {1e15, "###0.000", "1000000000000000.000"},
      {0.1, "", "0.1"},
      {1000000, "", "1000000"},
      {1e15, "", "1E+15"},
      {-1.5e-6, "", "-1.5E-06"},
      {0.00001, "", "0.00001"},
      {123456789.123, "", "123456789.123"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(FormatNumber(row.value, row.pattern), row.text) << row.value << " " << row.pattern;
  }
  for (const double value : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    for (const char* pattern :
         {"", "0.00", "0.0########E-00", "##0.0############", "0.000000000E+00"}) {
      EXPECT_EQ(CTestHost::ErrorOf([&] { FormatNumber(value, pattern); }).Number(),
                ERR_PLATFORM_OVERFLOW);
    }
  }
}

TEST_F(FieldEditing, NoDigitIsLostThatThePatternHasRoomFor) {
  std::mt19937_64 random(20);
  std::uniform_real_distribution<double> exponent(-12, 12);
  std::uniform_real_distribution<double> mantissa(-10, 10);
  const struct {
    const char* pattern;
    double step;  // of the last place; 0 for patterns whose last place moves with the number
    double relative;
  } rows[] = {
      {"0.00000000000", 1e-11, 0},
      {"0.0000000000000", 1e-13, 0},
      {"0.000000000000", 1e-12, 0},
      {"0.000000000E+00", 0, 0.5e-9},
      {"##0.0############", 1e-13, 0},
      {"##0.0###########", 1e-12, 0},
      {"##0.0##########", 1e-11, 0},
      {"0.0########E-00", 0, 0.5e-9},
      {"0.0#######E-00", 0, 0.5e-8},
      {"###0.000", 1e-3, 0},
      {"0.00", 1e-2, 0},
      {"", 0, 0},
  };
  for (const auto& row : rows) {
    for (int n = 0; n < 2000; ++n) {
      const double value = mantissa(random) * std::pow(10, exponent(random));
      const double read = NumberFromText(FormatNumber(value, row.pattern));
      // Beyond half a place, only what a Double can't hold.
      const double room = std::fabs(value) * (row.relative + 2.3e-16) + row.step / 2;
      ASSERT_LE(std::fabs(read - value), *row.pattern == 0 ? 0 : room) << row.pattern;
      // A number that the pattern has written is written the same way again.
      ASSERT_EQ(FormatNumber(read, row.pattern), FormatNumber(value, row.pattern)) << value;
    }
  }
}

TEST_F(FieldEditing, ADecimalCommaIsTheUsersAndNeverTheInstruments) {
  UseSeparator(",");
  EXPECT_EQ(FormatNumber(-1.5, "0.00"), "-1,50");
  EXPECT_EQ(FormatNumber(1.5e-9, "0.0########E-00"), "1,5E-09");
  EXPECT_EQ(PlainNumberText(0.25), "0,25");
  EXPECT_EQ(ToDotDecimal("1,5"), "1.5");
  EXPECT_EQ(ToDotDecimal("1.000,5,"), "1.000.5.");
  std::int16_t key = '.';
  FilterRealKey(key);
  EXPECT_EQ(key, ',');
  host_.platform.separator = ".";  // taken up by the next process only
  EXPECT_EQ(GetDecimalSeparator(), ",");
  UseSeparator("\u066B");
  EXPECT_EQ(ToDotDecimal(FormatNumber(-1.5, "0.00")), "-1.50");
  FilterRealKey(key = '.');
  EXPECT_EQ(key, 0x66B);
  UseSeparator(".");
  EXPECT_EQ(ToDotDecimal("1,5"), "1,5");
}

TEST_F(FieldEditing, FiltersLetTheirKeysThrough) {
  const struct {
    void (*filter)(std::int16_t&);
    const char* accepted;
  } rows[] = {{FilterRealKey, "0189+-."},
              {FilterExponentKey, "0189+-.eE"},
              {FilterIntegerKey, "0189"},
              {FilterSerialKey, "0189-azAZ"}};
  for (const auto& row : rows) {
    for (std::int16_t typed = 1; typed < 256; ++typed) {
      const bool control =
          std::string("\b\r\x03\x16\x18\x1A").find(static_cast<char>(typed)) != std::string::npos;
      const std::string accepted = row.accepted;
      bool expected = control || accepted.find(static_cast<char>(typed)) != std::string::npos;
      // The tables name the ends of what passes as a whole.
      expected |= typed >= '0' && typed <= '9';
      expected |= row.filter == FilterSerialKey && typed < 128 && std::isalpha(typed);
      std::int16_t key = typed;
      row.filter(key);
      EXPECT_EQ(key, expected ? typed : 0) << typed;
    }
  }
}

TEST(KeyFilters, ASeparatorThatNobodyTellsIsAPoint) {
  const auto expectpoint = [] {
    for (const auto filter : {FilterRealKey, FilterExponentKey}) {
      for (const char typed : std::string(".7-,x\b")) {
        std::int16_t key = typed;
        filter(key);
        EXPECT_EQ(key, typed == ',' || typed == 'x' ? 0 : typed) << typed;
      }
    }
  };
  SetDecimalSeparator({});
  expectpoint();  // nothing is installed

  struct CMutePlatform : test::CRecordingPlatform {
    using CRecordingPlatform::CRecordingPlatform;
    std::string DecimalSeparator() override { throw LibraryError(test::kLineError, {}, {}); }
  };
  CTestHost host;
  host.platform.separator = ",";
  CMutePlatform platform(host.log, host.forms);
  const Components components{platform, host};
  {
    const CInstalledComponents installed(components);
    expectpoint();
  }
  // What could not be found out is asked for again.
  std::int16_t key = '.';
  FilterRealKey(key);
  EXPECT_EQ(key, ',');
}

TEST_F(FieldEditing, LimitsAndSelections) {
  EXPECT_EQ(Clamp(5, 5, 9), 5);
  EXPECT_EQ(Clamp(9.5, 1.0, 9.5), 9.5);
  EXPECT_EQ(Clamp(-1, 0, 9), 0);
  EXPECT_EQ(Clamp(10, 0, 9), 9);
  EXPECT_EQ(Clamp(3, 9, 5), 9);

  struct CList : ui::CListControl {
    void Clear() override {}
    void AddItem(const std::string&) override {}
    std::int32_t NewIndex() const override { return -1; }
    std::int32_t ListCount() const override { return 3; }
    std::int32_t ItemData(std::int32_t index) const override { return index == 0 ? 4 : 5; }
    void SetItemData(std::int32_t, std::int32_t) override {}
    std::int32_t ListIndex() const override { return selected; }
    void SetListIndex(std::int32_t index) override { selected = index; }
    std::int32_t selected = -1;
  } list;
  SelectItemByData(list, 5);
  EXPECT_EQ(list.selected, 1);
  SelectItemByData(list, 6);
  EXPECT_EQ(list.selected, 1);
}

}  // namespace
}  // namespace vane
