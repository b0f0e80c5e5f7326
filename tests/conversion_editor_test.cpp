// The window for the values of a conversion.
#include <gmock/gmock.h>

#include "adapters/conversions/probe.h"
#include "tests/support/form_text.h"
#include "tests/support/transcript.h"
#include "vane/channels/coefficients.h"
#include "vane/channels/conversion_table.h"
#include "vane/support/messages.h"
#include "vane/support/number_text.h"

namespace vane {
namespace {

using test::FormText;
using enum EVaneConversionType;

class ConversionEditor : public testing::Test {
 protected:
  ConversionEditor() { host_.platform.asksforms = true; }
  ~ConversionEditor() override { EXPECT_EQ(host_.forms.Faults(), ""); }

  // A probe as a channel sets it up.
  template <class Settings>
  Settings& Use(EVaneConversionType ct) {
    probe_.SetConversionType(ct);
    auto* const settings = probe_.Conversion().Settings();
    if (auto* const its90 = dynamic_cast<CITS90Settings*>(settings)) {
      for (CITS90Range* range : {&its90->LowRange(), &its90->HighRange()}) {
        range->SetValueFormat("0.0########E-00");
      }
      its90->SetRTPWFormat("##0.0####");
    }
    return dynamic_cast<Settings&>(*settings);
  }

  void Edit(bool allowed, const std::function<void(ui::CUser& user)>& acts) {
    probe_.SetChanged(false);
    probe_.Conversion().SetAllowEdit(allowed);
    host_.forms.Expect("frmConversionSettings", acts);
    probe_.Conversion().EditSettings();
  }

  static bool Enter(ui::CUser& user, const std::string& name, const std::string& text) {
    return user.Focus(user.Find<ui::CTextField>(name)) && user.SelectAll() && user.Paste(text) &&
           user.Tab();
  }
  static const std::string& Text(ui::CUser& user, const std::string& name) {
    return user.Find<ui::CTextField>(name).Text();
  }

  test::CTestHost host_;
  CThermometerProbe probe_{true};
};

TEST_F(ConversionEditor, WhatIsNotTouchedKeepsAllItsDigits) {
  auto& settings = Use<CCVDSettings>(CONV_CVD);
  const double values[] = {100.0123456789012345, 1.0 / 3, 0.1 + 0.2, -1e-17};
  for (std::int32_t i = 0; i < 4; ++i) {
    settings.SetValueFormat(i, "0.00");
    settings.SetCoefficients(i, values[i]);
  }
  Edit(true, [&](ui::CUser& user) {
    EXPECT_EQ(user.Form().Caption(), "Callendar-Van Dusen");
    EXPECT_EQ(FormText(user.Form(), {"txt"}),
              "txtR0=100.01\ntxtalpha=0.33\ntxtdelta=0.30\ntxtbeta=0.00\n");
    while (user.Form().Focused()->Name() != "cmdOK") EXPECT_TRUE(user.Tab());
    EXPECT_TRUE(user.Return());
  });
  EXPECT_FALSE(probe_.Changed());
  for (std::int32_t i = 0; i < 4; ++i) EXPECT_EQ(settings.Coefficients(i), values[i]);

  Edit(true, [&](ui::CUser& user) {
    EXPECT_TRUE(Enter(user, "txtalpha", "0.5"));
    EXPECT_TRUE(user.Return());
  });
  EXPECT_TRUE(probe_.Changed());
  EXPECT_EQ(settings.Coefficients(0), values[0]);
  EXPECT_EQ(settings.Coefficients(1), 0.5);
  EXPECT_EQ(settings.Coefficients(2), values[2]);
}

TEST_F(ConversionEditor, NothingReachesTheConversionButByOK) {
  auto& settings = Use<CITS90Settings>(CONV_ITS90);
  settings.LowRange().SetRange(4);
  settings.SetRTPW(25.5);
  const auto work = [&](ui::CUser& user) {
    EXPECT_TRUE(Enter(user, "txtRTPW", "26"));
    EXPECT_TRUE(user.Pick(user.Find<ui::CDropDown>("cboLowRange"), 2));
    EXPECT_TRUE(Enter(user, "txtLow(0)", "1"));
  };
  for (const bool byclosebox : {false, true}) {
    Edit(true, [&](ui::CUser& user) {
      work(user);
      EXPECT_TRUE(byclosebox ? user.CloseBox() : user.Escape());
    });
    EXPECT_FALSE(probe_.Changed());
    EXPECT_EQ(settings.LowRange().Range(), 4);
    EXPECT_EQ(settings.RTPW(), 25.5);
  }
  Edit(false, [&](ui::CUser& user) {
    EXPECT_FALSE(Enter(user, "txtRTPW", "26"));
    EXPECT_FALSE(user.Pick(user.Find<ui::CDropDown>("cboLowRange"), 2));
    EXPECT_TRUE(user.Focus(user.Find<ui::CTextField>("txtRTPW")));
    EXPECT_EQ(user.Find<ui::CTextField>("txtRTPW").SelectionLength(), 4);
    EXPECT_TRUE(user.Return());
  });
  EXPECT_FALSE(probe_.Changed());
  Edit(true, [&](ui::CUser& user) {
    work(user);
    EXPECT_TRUE(user.Return());
  });
  EXPECT_EQ(settings.LowRange().Range(), 2);
  EXPECT_EQ(settings.LowRange().Coefficients(0), 1.0);
  EXPECT_EQ(settings.RTPW(), 26.0);
}

TEST_F(ConversionEditor, CoefficientsFollowTheSubrange) {
  auto& settings = Use<CITS90Settings>(CONV_ITS90);
  const char* const labels[] = {
      "",    "a1:b1:c1:c2:c3:c4:c5:", "a2:b2:c1:c2:c3:", "a3:b3:c1:", "a4:b4:", "a5:b5:",
      "",    "a6:b6:c6:d:",           "a7:b7:c7:",       "a8:b8:",    "a9:b9:", "a10:",
      "a11:"};
  Edit(true, [&](ui::CUser& user) {
    std::size_t at = 0;
    for (const char* side : {"Low", "High"}) {
      auto& list = user.Find<ui::CDropDown>(std::string("cbo") + side + "Range");
      EXPECT_EQ(list.ItemText(list.ListIndex()), "None");
      for (std::int32_t i = 0; i < list.ListCount(); ++i) {
        user.Pick(list, i);
        std::string shown;
        for (const auto& control : user.Form().Controls()) {
          const bool isof = control->Name().starts_with(std::string("lbl") + side + "(");
          if (isof && control->Visible()) shown += control->Caption();
        }
        EXPECT_EQ(shown, labels[at]) << list.ItemText(i);
        ++at;
      }
    }
    EXPECT_EQ(at, std::size(labels));
    EXPECT_TRUE(user.Escape());
  });
  // A subrange that the list does not have stays when nobody picks another.
  settings.LowRange().SetRange(99);
  Edit(true, [&](ui::CUser& user) {
    EXPECT_EQ(user.Find<ui::CDropDown>("cboLowRange").ListIndex(), -1);
    EXPECT_TRUE(user.Return());
  });
  EXPECT_EQ(settings.LowRange().Range(), 99);
}

TEST_F(ConversionEditor, OrderShowsItsCoefficients) {
  auto& settings = Use<CPolynomialSettings>(CONV_POLYNOMIAL);
  settings.SetValueFormat("0.0#");
  settings.SetOrder(2);
  settings.SetCoefficients(5, 5.5);
  Edit(true, [&](ui::CUser& user) {
    EXPECT_EQ(FormText(user.Form(), {"txtc"}), "txtc0=0.0\ntxtc1=0.0\ntxtc2=0.0\n");
    auto& updown = user.Find<ui::CUpDown>("udOrder");
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(user.Step(updown, true));
    EXPECT_EQ(Text(user, "txtOrder"), "5");
    EXPECT_TRUE(Enter(user, "txtc5", "7"));
    EXPECT_TRUE(user.Step(updown, false));
    EXPECT_FALSE(user.Find<ui::CTextField>("txtc5").IsOpen());
    EXPECT_TRUE(Enter(user, "txtOrder", "99"));
    EXPECT_EQ(Text(user, "txtOrder"), "10");
    EXPECT_TRUE(Enter(user, "txtOrder", "4"));
    EXPECT_TRUE(user.Return());
  });
  EXPECT_EQ(settings.Order(), 4);
  EXPECT_EQ(settings.Coefficients(5), 5.5);
}

TEST_F(ConversionEditor, WhatIsOutOfLimitsStaysUntilAnotherIsTyped) {
  const struct {
    double stored;
    const char* typed;  // null leaves the field as it is
    double kept;
  } resistances[] = {{-100, nullptr, -100}, {-100, "-100.0", -100}, {-100, "-50", 1e-6},
                     {0, nullptr, 0},       {0, "-1", 1e-6},        {0, "99", 99}};
  for (const auto& row : resistances) {
    auto& settings = Use<CCVDSettings>(CONV_CVD);
    for (std::int32_t i = 0; i < 4; ++i) settings.SetValueFormat(i, "##0.0##########");
    settings.SetCoefficients(0, row.stored);
    Edit(true, [&](ui::CUser& user) {
      EXPECT_TRUE(row.typed == nullptr || Enter(user, "txtR0", row.typed));
      EXPECT_TRUE(user.Focus(user.Find<ui::CTextField>("txtR0")));
      EXPECT_TRUE(user.Return());
    });
    EXPECT_EQ(settings.Coefficients(0), row.kept) << row.stored;
    EXPECT_EQ(probe_.Changed(), row.kept != row.stored) << row.stored;
  }
  const struct {
    std::int32_t stored;
    const char* typed;
    std::int32_t kept;
  } orders[] = {{12, nullptr, 12}, {12, "11", 10},          {-1, nullptr, -1},
                {-1, "-2", 0},     {40000, nullptr, 40000}, {40000, "3", 3}};
  for (const auto& row : orders) {
    auto& settings = Use<CPolynomialSettings>(CONV_POLYNOMIAL);
    settings.SetOrder(row.stored);
    Edit(true, [&](ui::CUser& user) {
      EXPECT_TRUE(row.typed == nullptr || Enter(user, "txtOrder", row.typed));
      EXPECT_TRUE(user.Return());
    });
    EXPECT_EQ(settings.Order(), row.kept);
    EXPECT_EQ(probe_.Changed(), row.kept != row.stored) << row.stored;
  }
}

// Keeps the places of windows, as a registry does, but fails to save where told.
class CPlaces : public test::CFakeRegistry {
 public:
  void RestoreFormPlacement(ui::CForm& form, std::int32_t, bool) override { form.SetPlace(place); }
  void SaveFormPlacement(ui::CForm& form, std::int32_t, bool) override {
    if (failstosave) throw LibraryError(test::kLineError, "registry", "Disk full");
    place = *form.Place();
  }

  ui::Placement place{1, 2, 3, 4};
  bool failstosave = false;
};

TEST_F(ConversionEditor, WindowStandsOverItsOwnerKeepsItsPlaceAndOutlivesAFailure) {
  const auto places = std::make_shared<CPlaces>();
  std::shared_ptr<CVaneRegistry> registry = places;
  probe_.SetRegistry(registry);
  Use<CCVDSettings>(CONV_CVD);
  const auto owner = host_.forms.Make("frmOwner");
  const auto work = [&](const std::function<void(ui::CUser & user)>& acts) {
    host_.forms.Expect("frmOwner", [&](ui::CUser& user) {
      Edit(true, acts);
      EXPECT_EQ(host_.forms.LastOwner(), &user.Form());
      user.Form().Hide();
    });
    owner->ShowModal(nullptr);
  };
  work([&](ui::CUser& user) {
    EXPECT_EQ(user.Form().Place(), (ui::Placement{1, 2, 3, 4}));
    user.Move({5, 6, 7, 8});
    EXPECT_TRUE(Enter(user, "txtalpha", "0.5"));
    host_.log.Clear();
    SetLibraryHelpFile("vane.hlp");
    EXPECT_TRUE(user.Help());
    EXPECT_EQ(host_.log.Only({"help"}), "help vane.hlp 1 0\n");
    SetLibraryHelpFile("");
    host_.forms.ExpectBox("An error occurred while carrying out the command.\r\rError: 4711");
    EXPECT_FALSE(user.Help());
    EXPECT_EQ(Text(user, "txtalpha"), "0.5");
    EXPECT_TRUE(user.Return());
  });
  EXPECT_EQ(places->place, (ui::Placement{5, 6, 7, 8}));
  places->failstosave = true;
  work([&](ui::CUser& user) { EXPECT_TRUE(user.Escape()); });
}

TEST_F(ConversionEditor, NothingCanBeChangedThatMayOnlyBeLookedAt) {
  Use<CIPTS68Settings>(CONV_IPTS68).SetScaleEnabled(true);
  Edit(false, [&](ui::CUser& user) {
    EXPECT_FALSE(user.Pick(user.Find<ui::CDropDown>("cboScale"), 1));
    EXPECT_TRUE(user.Return());
  });
  Use<CPolynomialSettings>(CONV_POLYNOMIAL);
  Edit(false, [&](ui::CUser& user) {
    EXPECT_FALSE(user.Step(user.Find<ui::CUpDown>("udOrder"), true));
    EXPECT_TRUE(user.Return());
  });
  EXPECT_FALSE(probe_.Changed());
}

TEST_F(ConversionEditor, FieldsAreLimitedByPhysicsAlone) {
  host_.platform.separator = ",";
  SetDecimalSeparator("");
  auto& settings = Use<CIPTS68Settings>(CONV_IPTS68);
  for (std::int32_t i = 0; i < 5; ++i) settings.SetValueFormat(i, "0.0#####");
  settings.SetCoefficients(0, 100);
  const struct {
    const char* field;
    const char* text;
    const char* shown;
  } rows[] = {{"txtR0", "-5", "0,000001"}, {"txtR0", "1e3", "1000,0"},
              {"txtR0", "1.5", "1000,0"},  {"txtR0", "", "1000,0"},
              {"txtalpha", "-5", "-5,0"},  {"txtalpha", "1e999", "-5,0"},
              {"txtalpha", "--1", "-5,0"}};
  Edit(true, [&](ui::CUser& user) {
    for (const auto& row : rows) {
      EXPECT_TRUE(Enter(user, row.field, row.text));
      EXPECT_EQ(Text(user, row.field), row.shown) << row.text;
    }
    // The scale can be chosen where the conversion has one.
    EXPECT_FALSE(user.Pick(user.Find<ui::CDropDown>("cboScale"), 1));
    EXPECT_TRUE(user.Focus(user.Find<ui::CTextField>("txtdelta")));
    EXPECT_FALSE(user.Type("x1e"));
    EXPECT_TRUE(user.Return());
  });
  EXPECT_EQ(settings.Coefficients(0), 1000.0);
  EXPECT_EQ(settings.Coefficients(2), 0.0);
  SetDecimalSeparator("");
}

}  // namespace
}  // namespace vane
