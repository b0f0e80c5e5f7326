// The readout on a line, as a recorder needs it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "adapters/serial/serial_communications.h"
#include "recorder/readout_source.h"
#include "vane/components/commands.h"
#include "vane/instrument/t312b.h"

namespace vane::thermoscribe {

class CLineSource final : public recorder::CReadoutSource {
 public:
  /// `instrument`, whose communications are made, and `failure`, the latest of their exchange,
  /// outlive it. It asks for the readings of `channels`.
  CLineSource(CVaneT312B& instrument, const LineFailure& failure,
              std::vector<std::int16_t> channels);

  /// Fills in who answers: its identification and the serial number of each probe's record.
  void Identify(recorder::RecordingHead& head);

  std::string Differs(const recorder::RecordingHead& head) override;
  recorder::MeasuringSetup ReadSetup() override;
  bool HasNew() override;
  std::string ReadReading(std::int16_t channel) override;
  std::string ReadUnit() override;

  std::size_t NumWatched() const override { return watched_.size(); }
  std::string WatchedName(std::size_t idx) const override { return watched_[idx].name; }
  std::string ReadWatched(std::size_t idx) override { return Ask(watched_[idx].question); }

 private:
  struct Question {
    ECommand command;
    std::string CommandParams::*field = nullptr;  // that holds `place`; null: none
    std::string place = {};
  };
  struct Watched {
    std::string name;
    Question question;
  };

  std::string ReadSerial(std::int16_t probe);
  std::string Ask(const Question& question);
  void Exchange(const std::function<void()>& exchange);

  CVaneT312B& instrument_;
  const LineFailure& failure_;
  std::vector<Watched> watched_;
};

}  // namespace vane::thermoscribe
