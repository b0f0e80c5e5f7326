// A probe with conversions of every type that tells what it is set to.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "vane/components/conversion.h"

namespace vane::test {

using Log = std::function<void(const std::string&)>;

std::string Number(double value);

/// Values under names, so that one store serves every kind of settings.
class CValueStore {
 public:
  CValueStore(Log log, std::string name) : log_(std::move(log)), name_(std::move(name)) {}

  void SetText(const std::string& member, const std::string& text) {
    texts_[member] = text;
    log_(name_ + "." + member + "=" + text);
  }
  void SetNumber(const std::string& member, double number) {
    numbers_[member] = number;
    log_(name_ + "." + member + "=" + Number(number));
  }
  const std::string& Text(const std::string& member) const { return texts_.at(member); }
  double NumberOf(const std::string& member) const {
    const auto found = numbers_.find(member);
    return found == numbers_.end() ? 0 : found->second;
  }
  std::int32_t Whole(const std::string& member) const {
    return static_cast<std::int32_t>(NumberOf(member));
  }

 private:
  Log log_;
  std::string name_;
  std::map<std::string, std::string> texts_;
  std::map<std::string, double> numbers_;
};

inline std::string At(const char* member, std::int32_t index) {
  return std::string(member) + "(" + std::to_string(index) + ")";
}

/// `Base` is one of the kinds with one format for all coefficients or one for each.
template <class Base>
class CFakeCoefficients : public Base, protected CValueStore {
 public:
  CFakeCoefficients(const Log& log, const std::string& name, std::int32_t count)
      : CValueStore(log, name), count_(count) {}

  double Coefficients(std::int32_t index) const override {
    return NumberOf(At("Coefficients", Checked(index)));
  }
  void SetCoefficients(std::int32_t index, double value) override {
    SetNumber(At("Coefficients", Checked(index)), value);
  }

 protected:
  std::int32_t Checked(std::int32_t index) const {
    if (index < 0 || index >= count_) throw std::out_of_range("coefficient");
    return index;
  }
  const std::int32_t count_;
};

template <class Base>
class CFakeFormats : public CFakeCoefficients<Base> {
 public:
  using CFakeCoefficients<Base>::CFakeCoefficients;
  const std::string& ValueFormat(std::int32_t index) const override {
    return this->Text(At("ValueFormat", index));
  }
  void SetValueFormat(std::int32_t index, const std::string& format) override {
    this->SetText(At("ValueFormat", this->Checked(index)), format);
  }
};

template <class Base>
class CFakeSeries : public CFakeCoefficients<Base> {
 public:
  using CFakeCoefficients<Base>::CFakeCoefficients;
  const std::string& ValueFormat() const override { return this->Text("ValueFormat"); }
  void SetValueFormat(const std::string& format) override { this->SetText("ValueFormat", format); }
  std::int16_t NumCoefficients() const override { return static_cast<std::int16_t>(this->count_); }
};

class CFakeIPTS68 : public CFakeFormats<CIPTS68Settings> {
 public:
  using CFakeFormats::CFakeFormats;
  bool ScaleEnabled() const override { return NumberOf("ScaleEnabled") != 0; }
  void SetScaleEnabled(bool value) override { SetNumber("ScaleEnabled", value); }
  std::int32_t IPTS68Scale() const override { return Whole("IPTS68Scale"); }
  void SetIPTS68Scale(std::int32_t value) override { SetNumber("IPTS68Scale", value); }
};

class CFakePolynomial : public CFakeSeries<CPolynomialSettings> {
 public:
  using CFakeSeries::CFakeSeries;
  std::int16_t NumCoefficients() const override {
    return hasnone ? std::int16_t{0} : CFakeSeries::NumCoefficients();
  }
  std::int32_t Order() const override { return Whole("Order"); }
  void SetOrder(std::int32_t value) override { SetNumber("Order", value); }

  static inline bool hasnone = false;  ///< as no component should
};

class CFakeRange : public CFakeSeries<CITS90Range> {
 public:
  using CFakeSeries::CFakeSeries;
  std::int32_t Range() const override { return Whole("Range"); }
  void SetRange(std::int32_t value) override { SetNumber("Range", value); }
  std::int32_t MinRange() const override { return Whole("MinRange"); }
  void SetMinRange(std::int32_t value) override { SetNumber("MinRange", value); }
  std::int32_t MaxRange() const override { return Whole("MaxRange"); }
  void SetMaxRange(std::int32_t value) override { SetNumber("MaxRange", value); }
  std::int16_t NumCoefficients() const override {
    return static_cast<std::int16_t>(Range() == -1 && !countsalways ? 0 : count_);
  }

  bool countsalways = false;  ///< a component that tells its places, whatever the subrange
};

template <class Base>
class CFakeRTPW : public Base, protected CValueStore {
 public:
  CFakeRTPW(const Log& log, const std::string& name) : CValueStore(log, name) {}
  double RTPW() const override { return NumberOf("RTPW"); }
  void SetRTPW(double value) override { SetNumber("RTPW", value); }
  const std::string& RTPWFormat() const override { return Text("RTPWFormat"); }
  void SetRTPWFormat(const std::string& format) override { SetText("RTPWFormat", format); }
};

class CFakeITS90 : public CFakeRTPW<CITS90Settings> {
 public:
  explicit CFakeITS90(const Log& log)
      : CFakeRTPW(log, "ITS-90"), low_(log, "low", 7), high_(log, "high", 4) {}
  CFakeRange& LowRange() override { return low_; }
  CFakeRange& HighRange() override { return high_; }

 private:
  CFakeRange low_;
  CFakeRange high_;
};

class CFakeConversion : public CVaneConversion {
 public:
  CFakeConversion(Log log, EVaneConversionType type);
  void SetAllowEdit(bool value) override { log_(value ? "edit allowed" : "edit refused"); }
  void SetFilePath(const std::string& folder) override { log_("conversion FilePath=" + folder); }
  CConversionSettings* Settings() override { return settings_.get(); }
  void EditSettings() override { log_("edit settings"); }

 private:
  Log log_;
  std::unique_ptr<CConversionSettings> settings_;
};

class CFakeProbe : public CVaneProbe {
 public:
  explicit CFakeProbe(Log log) : log_(log), conversion_(Make(EVaneConversionType::CONV_NONE)) {}

  void SetHelpFile(const std::string& file) override { log_("probe HelpFile=" + file); }
  void SetRegistry(std::shared_ptr<CVaneRegistry>& registry) override {
    if (replacement) registry = replacement;
  }
  bool Changed() const override { return changed_; }
  void SetChanged(bool value) override { changed_ = value; }
  void SetFilePath(const std::string& folder) override {
    filepath = folder;
    log_("probe FilePath=" + folder);
  }
  bool ConversionHasSettings(EVaneConversionType) const override { return true; }
  const std::string& SerialNumber() const override { return serial_; }
  void SetSerialNumber(const std::string& text) override { serial_ = text; }
  CVaneConversion& Conversion() override { return *conversion_; }
  void SetInputKind(std::int32_t kind) override { log_("probe InputKind=" + Number(kind)); }
  EVaneConversionType ConversionType() const override { return type_; }
  void SetConversionType(EVaneConversionType ct) override {
    type_ = ct;
    conversion_ = Make(ct);
    log_("probe ConversionType=" + Number(static_cast<int>(ct)));
  }

  std::shared_ptr<CVaneRegistry> replacement;  ///< handed back in place of any registry
  std::string filepath;

 private:
  std::unique_ptr<CFakeConversion> Make(EVaneConversionType ct) const {
    return std::make_unique<CFakeConversion>(log_, ct);
  }

  Log log_;
  bool changed_ = false;
  std::string serial_;
  EVaneConversionType type_ = EVaneConversionType::CONV_NONE;
  std::unique_ptr<CFakeConversion> conversion_;
};

}  // namespace vane::test
