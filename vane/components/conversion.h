// The probe component: a thermometer's record and its conversion from resistance to temperature.
//
// Required by the library, implemented by an adapter. A channel makes one `CVaneProbe` through
// `CComponentFactory` and owns it for its whole life; the probe owns its conversion, and the
// conversion owns the settings of its type. Setting `ConversionType` replaces both, so a pointer
// to either is good until then.
//
// Lives on the thread of the channel. Nothing here reaches the instrument.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "vane/components/registry.h"

namespace vane {

/// Codes without a name here exist in the component and are not used by this library.
enum class EVaneConversionType : std::int32_t {
  CONV_NONE = -1,
  CONV_ITS90 = 0,
  CONV_IPTS68 = 1,
  CONV_CVD = 2,
  CONV_POLYNOMIAL = 4,
  CONV_THERMISTOR_TR = 5,
  CONV_THERMISTOR_RT = 6,
  CONV_RESISTANCE = 10,
  CONV_WT90 = 14,
  CONV_RATIO = 15,
};

/// The values of one conversion type. Which of the classes below an object is follows from the
/// type; a type without values has no settings object.
///
/// An index outside a settings object's coefficients or formats raises `std::out_of_range` and
/// changes nothing.
class CConversionSettings {
 public:
  virtual ~CConversionSettings() = default;
};

/// W(T90), and the part of ITS-90 that it shares: the resistance at the triple point of water.
class CWT90Settings : public CConversionSettings {
 public:
  virtual double RTPW() const = 0;  ///< ohms at 273.16 K
  virtual void SetRTPW(double value) = 0;
  virtual const std::string& RTPWFormat() const = 0;
  virtual void SetRTPWFormat(const std::string& format) = 0;
};

/// One subrange of the deviation equations of ITS-90.
class CITS90Range {
 public:
  virtual ~CITS90Range() = default;

  /// Number of the subrange; -1 is none.
  virtual std::int32_t Range() const = 0;
  virtual void SetRange(std::int32_t value) = 0;
  virtual std::int32_t MinRange() const = 0;
  virtual void SetMinRange(std::int32_t value) = 0;
  virtual std::int32_t MaxRange() const = 0;
  virtual void SetMaxRange(std::int32_t value) = 0;
  virtual const std::string& ValueFormat() const = 0;
  virtual void SetValueFormat(const std::string& format) = 0;

  virtual double Coefficients(std::int32_t index) const = 0;
  virtual void SetCoefficients(std::int32_t index, double value) = 0;

  /// Coefficients that the subrange `Range` has; 0 means that there is nothing to read or write.
  virtual std::int16_t NumCoefficients() const = 0;
};

class CITS90Settings : public CWT90Settings {
 public:
  virtual CITS90Range& LowRange() = 0;
  virtual CITS90Range& HighRange() = 0;
};

/// Callendar-Van Dusen: R0, alpha, delta, beta. Each coefficient has a format of its own.
class CCVDSettings : public CConversionSettings {
 public:
  virtual const std::string& ValueFormat(std::int32_t index) const = 0;
  virtual void SetValueFormat(std::int32_t index, const std::string& format) = 0;
  virtual double Coefficients(std::int32_t index) const = 0;
  virtual void SetCoefficients(std::int32_t index, double value) = 0;
};

/// IPTS-68: R0, alpha, delta, a4, c4, and the scale in which temperatures are reported.
class CIPTS68Settings : public CCVDSettings {
 public:
  virtual bool ScaleEnabled() const = 0;
  virtual void SetScaleEnabled(bool value) = 0;
  /// 0 is the scale of 1990, 1 that of 1968.
  virtual std::int32_t IPTS68Scale() const = 0;
  virtual void SetIPTS68Scale(std::int32_t value) = 0;
};

/// Thermistors, T(R) and R(T): one format for all coefficients.
class CThermistorSettings : public CConversionSettings {
 public:
  virtual const std::string& ValueFormat() const = 0;
  virtual void SetValueFormat(const std::string& format) = 0;
  virtual double Coefficients(std::int32_t index) const = 0;
  virtual void SetCoefficients(std::int32_t index, double value) = 0;
  /// Never 0: a run over the coefficients divides by it.
  virtual std::int16_t NumCoefficients() const = 0;
};

class CPolynomialSettings : public CThermistorSettings {
 public:
  virtual std::int32_t Order() const = 0;
  virtual void SetOrder(std::int32_t value) = 0;
};

class CVaneConversion {
 public:
  virtual ~CVaneConversion() = default;

  /// Whether the conversion's own dialog may change values.
  virtual void SetAllowEdit(bool value) = 0;
  virtual void SetFilePath(const std::string& folder) = 0;

  /// The values of the type; null for a type without values. Owned by the conversion.
  virtual CConversionSettings* Settings() = 0;

  /// Shows the type's dialog and returns when the user has closed it.
  virtual void EditSettings() = 0;
};

class CVaneProbe {
 public:
  virtual ~CVaneProbe() = default;

  virtual void SetHelpFile(const std::string& file) = 0;

  /// May put another registry into `registry`; the caller keeps what it finds there afterwards.
  virtual void SetRegistry(std::shared_ptr<CVaneRegistry>& registry) = 0;

  /// The probe's own dirty flag. The component sets it when its serial number or a value of its
  /// conversion changes.
  virtual bool Changed() const = 0;
  virtual void SetChanged(bool value) = 0;

  virtual void SetFilePath(const std::string& folder) = 0;

  /// Whether type `ct` has a dialog of its own.
  virtual bool ConversionHasSettings(EVaneConversionType ct) const = 0;

  virtual const std::string& SerialNumber() const = 0;
  virtual void SetSerialNumber(const std::string& text) = 0;

  /// Never null. Owned by the probe, replaced when the type is set.
  virtual CVaneConversion& Conversion() = 0;

  /// What kind of input the probe is on; 2 is a resistance input.
  virtual void SetInputKind(std::int32_t kind) = 0;

  virtual EVaneConversionType ConversionType() const = 0;
  /// Replaces `Conversion` and its `Settings` by new objects of type `ct`.
  virtual void SetConversionType(EVaneConversionType ct) = 0;
};

}  // namespace vane
