// What a user sees of a recording: a table that is kept up to date on a terminal, else a line for
// each reading and event.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "recorder/clock.h"
#include "recorder/record_types.h"

namespace vane::thermoscribe {

class CHost;

/// Mean and deviation of the readings of a channel, in one unit.
class CRunningFigures {
 public:
  void Add(const recorder::Reading& reading);

  std::int64_t Count() const { return count_; }
  double Mean() const { return mean_; }
  /// Of the sample; 0 of one reading.
  double Deviation() const;
  /// A minute; nothing of one reading.
  std::optional<double> Rate() const;
  const recorder::Reading& Last() const { return last_; }

 private:
  recorder::Reading last_;
  std::int64_t first_ = 0;
  std::int64_t count_ = 0;
  double mean_ = 0;
  double squares_ = 0;
};

class CRecordingView {
 public:
  /// `title` stands above the table. With `hasfile`, readings have numbers. Both outlive it.
  CRecordingView(CHost& host, const recorder::CClock& clock,
                 std::vector<recorder::RecordingHead::Channel> channels, std::string title,
                 bool hasfile);

  void Show(const std::vector<recorder::Reading>& readings);
  void Show(const recorder::Event& event);

  /// Brings the table up to date; `state` is the line below it.
  void Refresh(const std::string& state);

  /// True once nobody sees anything any more: the terminal or the reader of a pipe is gone.
  bool IsGone() const { return isgone_; }

 private:
  void Put(const std::function<void()>& output);
  std::string NameOf(std::int16_t channel) const;
  std::vector<std::string> TableLines(const std::string& state) const;

  CHost& host_;
  const recorder::CClock& clock_;
  const std::vector<recorder::RecordingHead::Channel> channels_;
  const std::string title_;
  const bool hasfile_;
  const bool istable_;
  bool isgone_ = false;
  std::map<std::int16_t, CRunningFigures> figures_;
  std::string lastevent_;
  std::size_t lines_ = 0;  // of the table that stands on the terminal
};

}  // namespace vane::thermoscribe
