#include "adapters/conversions/conversion_editor.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "vane/channels/coefficients.h"
#include "vane/channels/conversion_table.h"
#include "vane/components/components.h"
#include "vane/components/library_error.h"
#include "vane/dialogs/editing.h"
#include "vane/dialogs/number_field.h"
#include "vane/dialogs/user_guard.h"
#include "vane/support/display_texts.h"
#include "vane/support/field_editing.h"
#include "vane/support/messages.h"
#include "vane/support/numbers.h"
#include "vane/support/text_table.h"

namespace vane {
namespace {

// A thermometer's resistance is above 0. This is below any that there is.
constexpr double kLeastResistance = 1e-6;
constexpr double kAnyNumber = std::numeric_limits<double>::max();

// The ends of the subranges of ITS-90 in °C (H. Preston-Thomas, Metrologia 27, 1990, pp. 3-10).
struct SubrangeRow {
  std::int32_t subrange;
  const char* span;
};
constexpr SubrangeRow kSubranges[] = {
    {1, "-259.3467 to 0.01"}, {2, "-248.5939 to 0.01"},   {3, "-218.7916 to 0.01"},
    {4, "-189.3442 to 0.01"}, {5, "-38.8344 to 29.7646"}, {6, "0 to 961.78"},
    {7, "0 to 660.323"},      {8, "0 to 419.527"},        {9, "0 to 231.928"},
    {10, "0 to 156.5985"},    {11, "0 to 29.7646"},
};

std::string SubrangeText(std::int32_t subrange) {
  const auto row = std::ranges::find(kSubranges, subrange, &SubrangeRow::subrange);
  std::string text = std::to_string(subrange);
  if (row != std::end(kSubranges)) text += ": " + std::string(row->span) + " °C";
  return text;
}

bool IsResistance(const std::string& name) { return name == "R0" || name == "RTPW"; }

class CConversionEditor {
 public:
  CConversionEditor(CConversionSettings& settings, EVaneConversionType ct, bool allowedit);

  void Show(const std::shared_ptr<CVaneRegistry>& registry);

 private:
  // A value with its field. What is shown when the window opens stands for all of the digits that
  // the value has.
  struct Field {
    ui::CLabel& label;
    ui::CTextField& text;
    std::unique_ptr<CNumberField> number;
    Coefficient value;
    double least;
    std::string opened;
  };

  // One side of ITS-90.
  struct Side {
    CITS90Range& range;
    const RangeSide& side;
    ui::CLabel& label;
    ui::CDropDown& subrange;
    std::vector<Field*> fields;
  };

  Field& AddField(const std::string& name, const Coefficient& coefficient);
  void AddSide(CITS90Range& range, const RangeSide& side, const std::string& name);
  void AddScale(CIPTS68Settings& settings);
  void AddOrder();

  void Load();
  static void LimitTo(const Field& field);
  void LimitOrder() const;
  void FollowSubrange(const Side& side);
  void FollowOrder();
  void Gather();

  const bool allowedit_;
  std::unique_ptr<ui::CForm> form_;
  ui::CFrame& frame_;
  std::vector<std::unique_ptr<Field>> fields_;
  std::vector<std::unique_ptr<Side>> sides_;
  CIPTS68Settings* ipts68_ = nullptr;
  ui::CDropDown* scale_ = nullptr;
  CPolynomialSettings* polynomial_ = nullptr;
  ui::CTextField* txtorder_ = nullptr;
  ui::CUpDown* udorder_ = nullptr;
  std::unique_ptr<CNumberField> order_;
  std::string openedorder_;
};

CConversionEditor::CConversionEditor(CConversionSettings& settings, EVaneConversionType ct,
                                     bool allowedit)
    : allowedit_(allowedit),
      form_(InstalledComponents().factory.MakeForm("frmConversionSettings")),
      frame_(form_->Add<ui::CFrame>("framConversion")) {
  GuardEvents(*form_);
  auto* const its90 = dynamic_cast<CITS90Settings*>(&settings);
  ipts68_ = dynamic_cast<CIPTS68Settings*>(&settings);
  polynomial_ = dynamic_cast<CPolynomialSettings*>(&settings);
  if (polynomial_ != nullptr) AddOrder();
  for (const Coefficient& coefficient : CoefficientsOf(&settings, ct)) {
    // Those of a range follow the subrange that is chosen, not the one at hand.
    if (its90 != nullptr && !IsResistance(coefficient.name)) continue;
    AddField(coefficient.name, coefficient);
  }
  if (its90 != nullptr) {
    AddSide(its90->LowRange(), kLowSide, "Low");
    AddSide(its90->HighRange(), kHighSide, "High");
  }
  if (ipts68_ != nullptr) AddScale(*ipts68_);

  auto& ok = form_->Add<ui::CButton>("cmdOK", nullptr, ui::EButtonRole::DEFAULT);
  auto& cancel = form_->Add<ui::CButton>("cmdCancel", nullptr, ui::EButtonRole::CANCEL);
  auto& help = form_->Add<ui::CButton>("cmdHelp", nullptr, ui::EButtonRole::HELP);
  form_->OnLoad([this, ct, &ok, &cancel, &help] {
    form_->SetCaption(ConversionTypeText(static_cast<std::int32_t>(ct)));
    frame_.SetCaption(form_->Caption() + ":");
    ok.SetCaption(ResourceText(EText::OK));
    cancel.SetCaption(ResourceText(EText::CANCEL));
    help.SetCaption(ResourceText(EText::HELP));
    Load();
  });
  ok.OnClick([this] {
    if (allowedit_) Gather();
    form_->Hide();
  });
  cancel.OnClick([this] { form_->Hide(); });
  help.OnClick([this] { ShowHelpTopic(form_->HelpContext()); });
}

void CConversionEditor::Show(const std::shared_ptr<CVaneRegistry>& registry) {
  const CLoadedForm loaded(*form_);
  form_->OnUnload([this, registry] { SavePlacement(registry, *form_); });
  if (registry) RestorePlacement(registry, *form_);
  form_->ShowModal(ui::CForm::Active());
}

CConversionEditor::Field& CConversionEditor::AddField(const std::string& name,
                                                      const Coefficient& coefficient) {
  auto& label = form_->Add<ui::CLabel>("lbl" + name, &frame_);
  label.SetCaption(coefficient.name + ":");
  auto& text = form_->Add<ui::CTextField>("txt" + name, &frame_, !allowedit_);
  auto number = std::make_unique<CNumberField>(text, EFieldKind::REAL, FilterExponentKey);
  const double least = IsResistance(coefficient.name) ? kLeastResistance : -kAnyNumber;
  number->SetFormat(coefficient.format);
  fields_.push_back(
      std::unique_ptr<Field>(new Field{label, text, std::move(number), coefficient, least, {}}));
  return *fields_.back();
}

void CConversionEditor::AddSide(CITS90Range& range, const RangeSide& side,
                                const std::string& name) {
  auto& label = form_->Add<ui::CLabel>("lbl" + name + "Range", &frame_);
  auto& list = form_->Add<ui::CDropDown>("cbo" + name + "Range", &frame_);
  label.SetCaption(name + " range:");
  sides_.push_back(std::unique_ptr<Side>(new Side{range, side, label, list, {}}));
  Side& added = *sides_.back();
  for (std::int32_t i = 0; i < std::ssize(side.rows); ++i) {
    added.fields.push_back(
        &AddField(name + "(" + std::to_string(i) + ")",
                  {{},
                   range.ValueFormat(),
                   [&range, i] { return range.Coefficients(i); },
                   [&range, i](double value) { range.SetCoefficients(i, value); }}));
  }
  list.SetEnabled(allowedit_);
  list.OnClick([this, &added] { FollowSubrange(added); });
}

void CConversionEditor::AddScale(CIPTS68Settings& settings) {
  auto& label = form_->Add<ui::CLabel>("lblScale", &frame_);
  label.SetCaption("Scale:");
  scale_ = &form_->Add<ui::CDropDown>("cboScale", &frame_);
  label.SetEnabled(settings.ScaleEnabled());
  scale_->SetEnabled(allowedit_ && settings.ScaleEnabled());
}

void CConversionEditor::AddOrder() {
  auto& label = form_->Add<ui::CLabel>("lblOrder", &frame_);
  label.SetCaption("Order:");
  txtorder_ = &form_->Add<ui::CTextField>("txtOrder", &frame_, !allowedit_);
  udorder_ = &form_->Add<ui::CUpDown>("udOrder", &frame_, *txtorder_);
  udorder_->SetEnabled(allowedit_);
  order_ =
      std::make_unique<CNumberField>(*txtorder_, EFieldKind::WHOLE, FilterIntegerKey, udorder_);
}

void CConversionEditor::Load() {
  for (const auto& field : fields_) {
    field->number->Show(field->value.get());
    field->opened = field->text.Text();
    LimitTo(*field);
    field->text.OnChange([changed = field.get()] { LimitTo(*changed); });
  }
  for (const auto& side : sides_) {
    side->subrange.AddItem(ResourceText(EText::NONE));
    side->subrange.SetItemData(side->subrange.NewIndex(), kNoRange);
    for (std::int32_t i = side->range.MinRange(); i <= side->range.MaxRange(); ++i) {
      side->subrange.AddItem(SubrangeText(i));
      side->subrange.SetItemData(side->subrange.NewIndex(), i);
    }
    SelectItemByData(side->subrange, side->range.Range());
    FollowSubrange(*side);
  }
  if (ipts68_ != nullptr) {
    // 0 is the scale of 1990, 1 that of 1968; so are the codes of the conversions.
    for (std::int32_t scale = 0; scale <= 1; ++scale) {
      scale_->AddItem(ConversionTypeText(scale));
      scale_->SetItemData(scale_->NewIndex(), scale);
    }
    SelectItemByData(*scale_, ipts68_->IPTS68Scale());
  }
  if (polynomial_ != nullptr) {
    order_->Show(polynomial_->Order());
    openedorder_ = txtorder_->Text();
    LimitOrder();
    txtorder_->OnChange([this] {
      LimitOrder();
      FollowOrder();
    });
    FollowOrder();
  }
}

// A value that is out of limits stays as long as nobody types another.
void CConversionEditor::LimitTo(const Field& field) {
  const bool isopened = field.text.Text() == field.opened;
  field.number->SetLimits(isopened ? std::min(field.least, field.value.get()) : field.least,
                          kAnyNumber, field.value.format);
}

void CConversionEditor::LimitOrder() const {
  const std::int32_t stays = txtorder_->Text() == openedorder_ ? polynomial_->Order() : 0;
  udorder_->SetRange(std::min(0, stays), std::max(kPolynomialCoefficients - 1, stays), 1);
}

void CConversionEditor::FollowSubrange(const Side& side) {
  const std::int32_t subrange =
      side.subrange.ListIndex() < 0 ? kNoRange : SelectedCode(side.subrange);
  const std::int32_t count = side.side.CoefficientsOf(subrange);
  for (std::int32_t i = 0; i < std::ssize(side.fields); ++i) {
    Field& field = *side.fields[static_cast<std::size_t>(i)];
    field.label.SetCaption(RangeCoefficientName(subrange, i) + ":");
    field.label.SetVisible(i < count);
    field.text.SetVisible(i < count);
  }
}

void CConversionEditor::FollowOrder() {
  double order = kPolynomialCoefficients - 1;
  try {
    order = NumberFromText(txtorder_->Text());
  } catch (const LibraryError&) {
    return;  // beyond all numbers; leaving the field puts it in order
  }
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    fields_[i]->label.SetVisible(static_cast<double>(i) <= order);
    fields_[i]->text.SetVisible(static_cast<double>(i) <= order);
  }
}

void CConversionEditor::Gather() {
  // All texts first: one that is no number must leave the values as they were.
  std::vector<std::pair<Field*, double>> changes;
  for (const auto& field : fields_) {
    if (!field->text.Visible() || field->text.Text() == field->opened) continue;
    changes.emplace_back(field.get(), RealFromField(field->text.Text()));
  }
  if (polynomial_ != nullptr && txtorder_->Text() != openedorder_)
    polynomial_->SetOrder(WholeFromField(txtorder_->Text()));
  for (const auto& side : sides_) {
    if (side->subrange.ListIndex() >= 0) side->range.SetRange(SelectedCode(side->subrange));
  }
  if (ipts68_ != nullptr && scale_->ListIndex() >= 0)
    ipts68_->SetIPTS68Scale(SelectedCode(*scale_));
  for (const auto& [field, value] : changes) field->value.set(value);
}

}  // namespace

void EditConversion(CConversionSettings& settings, EVaneConversionType ct, bool allowedit,
                    const std::shared_ptr<CVaneRegistry>& registry) {
  CConversionEditor(settings, ct, allowedit).Show(registry);
}

}  // namespace vane
