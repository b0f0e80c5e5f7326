#include "adapters/conversions/conversion_settings.h"

#include <iterator>
#include <string>
#include <vector>

#include "vane/channels/conversion_table.h"

namespace vane {
namespace {

// What is not a number never replaces a number.
template <class T>
using MarkedValue = CTracked<T, CChangedFlag, OrderedDiffers>;

// The position of a caller's index; `at` refuses what lies outside, negative ones included.
std::size_t Position(std::int32_t index) { return static_cast<std::size_t>(index); }

class CCoefficients {
 public:
  CCoefficients(CChangedFlag& changed, std::size_t count)
      : values_(count, MarkedValue<double>(changed)) {}

  double Get(std::int32_t index) const { return values_.at(Position(index)).Get(); }
  void Set(std::int32_t index, double value) { values_.at(Position(index)).Set(value); }
  std::int16_t Count() const { return static_cast<std::int16_t>(values_.size()); }

 private:
  std::vector<MarkedValue<double>> values_;
};

class CSubrange : public CITS90Range {
 public:
  CSubrange(CChangedFlag& changed, const RangeSide& side)
      : side_(side),
        minrange_(side.first),
        maxrange_(side.last),
        range_(changed, kNoRange),
        coefficients_(changed, std::size(side.rows)) {}

  std::int32_t Range() const override { return range_.Get(); }
  void SetRange(std::int32_t value) override { range_.Set(value); }
  std::int32_t MinRange() const override { return minrange_; }
  void SetMinRange(std::int32_t value) override { minrange_ = value; }
  std::int32_t MaxRange() const override { return maxrange_; }
  void SetMaxRange(std::int32_t value) override { maxrange_ = value; }
  const std::string& ValueFormat() const override { return format_; }
  void SetValueFormat(const std::string& format) override { format_ = format; }

  double Coefficients(std::int32_t index) const override { return coefficients_.Get(index); }
  void SetCoefficients(std::int32_t index, double value) override {
    coefficients_.Set(index, value);
  }

  std::int16_t NumCoefficients() const override { return side_.CoefficientsOf(Range()); }

 private:
  const RangeSide& side_;
  std::int32_t minrange_;
  std::int32_t maxrange_;
  std::string format_;
  MarkedValue<std::int32_t> range_;
  CCoefficients coefficients_;
};

// The triple point's resistance, for the two interfaces that have it.
template <class Interface>
class CTriplePoint : public Interface {
 public:
  explicit CTriplePoint(CChangedFlag& changed) : rtpw_(changed) {}

  double RTPW() const override { return rtpw_.Get(); }
  void SetRTPW(double value) override { rtpw_.Set(value); }
  const std::string& RTPWFormat() const override { return format_; }
  void SetRTPWFormat(const std::string& format) override { format_ = format; }

 private:
  MarkedValue<double> rtpw_;
  std::string format_;
};

class CITS90 : public CTriplePoint<CITS90Settings> {
 public:
  explicit CITS90(CChangedFlag& changed)
      : CTriplePoint(changed), low_(changed, kLowSide), high_(changed, kHighSide) {}

  CITS90Range& LowRange() override { return low_; }
  CITS90Range& HighRange() override { return high_; }

 private:
  CSubrange low_;
  CSubrange high_;
};

// Coefficients with a format each.
template <class Interface>
class CFormattedCoefficients : public Interface {
 public:
  CFormattedCoefficients(CChangedFlag& changed, std::size_t count)
      : coefficients_(changed, count), formats_(count) {}

  const std::string& ValueFormat(std::int32_t index) const override {
    return formats_.at(Position(index));
  }
  void SetValueFormat(std::int32_t index, const std::string& format) override {
    formats_.at(Position(index)) = format;
  }
  double Coefficients(std::int32_t index) const override { return coefficients_.Get(index); }
  void SetCoefficients(std::int32_t index, double value) override {
    coefficients_.Set(index, value);
  }

 private:
  CCoefficients coefficients_;
  std::vector<std::string> formats_;
};

class CCVD : public CFormattedCoefficients<CCVDSettings> {
 public:
  explicit CCVD(CChangedFlag& changed) : CFormattedCoefficients(changed, std::size(kCVDRows)) {}
};

class CIPTS68 : public CFormattedCoefficients<CIPTS68Settings> {
 public:
  explicit CIPTS68(CChangedFlag& changed)
      : CFormattedCoefficients(changed, std::size(kIPTS68Rows)),
        scaleenabled_(changed),
        scale_(changed) {}

  bool ScaleEnabled() const override { return scaleenabled_.Get(); }
  void SetScaleEnabled(bool value) override { scaleenabled_.Set(value); }
  std::int32_t IPTS68Scale() const override { return scale_.Get(); }
  void SetIPTS68Scale(std::int32_t value) override { scale_.Set(value); }

 private:
  MarkedValue<bool> scaleenabled_;
  MarkedValue<std::int32_t> scale_;
};

// Coefficients with one format for all.
template <class Interface>
class CNumberedCoefficients : public Interface {
 public:
  CNumberedCoefficients(CChangedFlag& changed, std::size_t count) : coefficients_(changed, count) {}

  const std::string& ValueFormat() const override { return format_; }
  void SetValueFormat(const std::string& format) override { format_ = format; }
  double Coefficients(std::int32_t index) const override { return coefficients_.Get(index); }
  void SetCoefficients(std::int32_t index, double value) override {
    coefficients_.Set(index, value);
  }
  std::int16_t NumCoefficients() const override { return coefficients_.Count(); }

 private:
  CCoefficients coefficients_;
  std::string format_;
};

class CThermistor : public CNumberedCoefficients<CThermistorSettings> {
 public:
  explicit CThermistor(CChangedFlag& changed)
      : CNumberedCoefficients(changed, kThermistorCoefficients) {}
};

// The readout keeps all eleven coefficients whatever the order is, and so does this.
class CPolynomial : public CNumberedCoefficients<CPolynomialSettings> {
 public:
  explicit CPolynomial(CChangedFlag& changed)
      : CNumberedCoefficients(changed, kPolynomialCoefficients), order_(changed) {}

  std::int32_t Order() const override { return order_.Get(); }
  void SetOrder(std::int32_t value) override { order_.Set(value); }

 private:
  MarkedValue<std::int32_t> order_;
};

}  // namespace

bool HasConversionSettings(EVaneConversionType ct) {
  CChangedFlag unused;
  return MakeConversionSettings(ct, unused) != nullptr;
}

std::unique_ptr<CConversionSettings> MakeConversionSettings(EVaneConversionType ct,
                                                            CChangedFlag& changed) {
  switch (ct) {
    case EVaneConversionType::CONV_ITS90:
      return std::make_unique<CITS90>(changed);
    case EVaneConversionType::CONV_IPTS68:
      return std::make_unique<CIPTS68>(changed);
    case EVaneConversionType::CONV_CVD:
      return std::make_unique<CCVD>(changed);
    case EVaneConversionType::CONV_POLYNOMIAL:
      return std::make_unique<CPolynomial>(changed);
    case EVaneConversionType::CONV_THERMISTOR_TR:
    case EVaneConversionType::CONV_THERMISTOR_RT:
      return std::make_unique<CThermistor>(changed);
    case EVaneConversionType::CONV_WT90:
      return std::make_unique<CTriplePoint<CWT90Settings>>(changed);
    case EVaneConversionType::CONV_NONE:
    case EVaneConversionType::CONV_RESISTANCE:
    case EVaneConversionType::CONV_RATIO:
      break;
  }
  return nullptr;
}

}  // namespace vane
