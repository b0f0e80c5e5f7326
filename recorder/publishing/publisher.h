// Sends a recording to a broker, out of its file.
//
// What was acknowledged is remembered in the file, so that a broker that is away costs nothing but
// the catching up, and a program that dies nothing at all. What comes twice has the same number. A
// collector that misses something asks for it again, and gets it from the file.
//
// It has a thread and a connection to the file of its own; the recording waits for none of it.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "recorder/database.h"
#include "recorder/publishing/broker.h"
#include "recorder/publishing/broker_messages.h"

namespace vane::recorder {

class CPublisher {
 public:
  /// Nothing is opened yet. Raises `CBrokerError` for what can never be a connection.
  CPublisher(std::filesystem::path file, Broker broker);
  ~CPublisher();
  CPublisher(const CPublisher&) = delete;
  CPublisher& operator=(const CPublisher&) = delete;

  void Start();

  /// There is more in the file.
  void Wake() { iswoken_ = true; }

  /// Ends it, once everything was acknowledged and, where a collector is known, stored; at the
  /// latest after `patience`. With `isended` the recording is over. True when nothing is left.
  bool Stop(std::chrono::milliseconds patience, bool isended);
  /// The same without waiting for it: `IsOver` tells when it is time for `Stop`.
  void BeginToStop(std::chrono::milliseconds patience, bool isended);
  bool IsOver() const { return isover_; }

  /// Of the recording, up to where the broker has acknowledged.
  Extent Acknowledged() const;
  /// Why there is no connection; empty: there is one, or none was tried.
  std::string Trouble() const;

 private:
  struct Outstanding {
    int message;
    Extent upto;  // 0: none of that
    bool isacknowledged = false;
  };

  void Run();
  bool LoadFile();
  void Connect();
  void Lose(const std::string& why);
  void SendMore();
  bool SendReadings(const Span& span, bool isagain);
  bool SendEvents(const Span& span, bool isagain);
  bool Send(const char* topic, const std::string& payload, bool isretained, const Extent& upto);
  void SayState(const char* state);
  void Acknowledge(int message);
  void Hear(const std::string& topic, const std::string& payload);
  void SaveMark(bool atonce);
  Extent ExtentOfFile();
  bool IsDone();
  std::string Topic(const std::string& last) const;

  const std::filesystem::path path_;
  const Broker broker_;
  std::unique_ptr<CBrokerClient> client_;
  std::thread thread_;
  std::atomic<bool> iswoken_ = true;
  std::atomic<bool> isstopping_ = false;
  std::atomic<bool> isended_ = false;
  std::atomic<std::int64_t> deadline_ = 0;
  std::atomic<bool> isdone_ = false;
  std::atomic<bool> isover_ = false;
  mutable std::mutex mutex_;  // of what is told to the owner
  std::string trouble_;
  Extent told_;

  // Of the thread alone.
  std::optional<CDatabase> database_;
  std::string uuid_;
  std::string about_;
  std::map<std::int16_t, std::string> names_;
  std::map<std::int64_t, std::string> units_;
  bool isconnected_ = false;
  bool iswaiting_ = false;  // for the broker's word to a connection
  std::int64_t pause_ = 0;
  std::int64_t tryat_ = 0;
  std::deque<Outstanding> outstanding_;
  std::int64_t movedat_ = 0;  // when something was acknowledged last
  Extent sent_;
  Extent mark_;
  Extent saved_;
  std::int64_t savedat_ = 0;
  std::vector<Missing> again_;
  std::optional<Extent> stored_;
  Extent saidextent_;
  std::int64_t saidat_ = 0;
  bool isfinalsaid_ = false;
  std::int64_t lookedat_ = 0;
};

}  // namespace vane::recorder
