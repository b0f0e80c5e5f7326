// Takes the recordings that come over a broker into a PostgreSQL database.
//
// A row is keyed by its recording and number: what comes twice is there once, and two collectors
// beside each other do no harm. What is missing shows by the numbers, which have no holes, and is
// asked for again; so a broker or a collector that dies loses nothing that is still in a file.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "recorder/publishing/broker.h"
#include "recorder/publishing/broker_messages.h"

struct pg_conn;
struct pg_result;

namespace vane::recorder {

/// Raises `CBrokerError` for an address of a database that is none, or has a password in it.
void CheckDatabase(const std::string& database);

class CCollector {
 public:
  struct Counts {
    std::int64_t messages = 0;
    std::int64_t readings = 0;  ///< new ones
    std::int64_t events = 0;    ///< new ones
    std::int64_t strange = 0;   ///< messages that are none of ours
    std::int64_t asked = 0;     ///< how often something was asked for again
  };

  /// `name` is that of its session with the broker, which keeps what comes while it is away. `tell`
  /// hears of what goes wrong and is right again, each once.
  CCollector(Broker broker, std::string database, std::string name,
             std::function<void(const std::string&)> tell);
  ~CCollector();

  /// Takes what comes within about a quarter of a second, and returns when it is stored. Where the
  /// broker or the database is away it waits so long, and tries again when it is time.
  void Step();

  /// Leaves the broker. Everything that was taken is stored.
  void Finish();

  const Counts& Totals() const { return counts_; }

 private:
  struct CloseDatabase {
    void operator()(pg_conn* connection) const;
  };
  struct ClearResult {
    void operator()(pg_result* result) const;
  };
  using Result = std::unique_ptr<pg_result, ClearResult>;

  struct Known {
    Extent announced;  // by its recorder
    Extent complete;   // everything up to there is stored
    Extent highest;    // that came
    std::int64_t askedat = 0;
    std::int64_t heardat = 0;
    Extent told;
    std::int64_t toldat = 0;
  };

  /// What is tried again after pauses that grow.
  struct Attempt {
    std::int64_t at = 0;
    std::int64_t pause = 0;
    std::string trouble = {};
  };

  bool HasDatabase();
  bool HasBroker();
  void Hear(const std::string& topic, const std::string& payload);
  enum class EStored : std::int32_t { DONE, AWAY, REFUSED };

  bool Store();
  EStored TryToStore();
  void StoreBatch();
  void StoreHeads();
  void StoreReadings();
  void StoreEvents();
  void UpdateComplete();
  void AskAndTell();
  Missing MissingOf(const std::string& recording, const Known& known);
  void Publish(const std::string& recording, const char* topic, const std::string& payload,
               bool isretained);
  Result Run(const char* sql, const std::vector<std::string>& values);
  void Fail(Attempt& attempt, const std::string& trouble);
  void Succeed(Attempt& attempt, const std::string& what);
  void LoseBroker(const std::string& why);

  const Broker broker_;
  const std::string databaseurl_;
  const std::string name_;
  const std::function<void(const std::string&)> tell_;
  std::unique_ptr<pg_conn, CloseDatabase> database_;
  std::unique_ptr<CBrokerClient> client_;
  bool isconnected_ = false;
  bool iswaiting_ = false;
  std::int64_t triedat_ = 0;  // to connect with the broker
  Attempt databasetry_;
  Attempt brokertry_;

  // Came and isn't stored yet.
  struct Batch {
    std::map<std::string, std::string> heads;
    std::map<std::string, std::string> states;
    std::map<std::string, std::vector<SentReading>> readings;
    std::map<std::string, std::vector<SentEvent>> events;
    std::set<std::string> recordings;
    std::int64_t rows = 0;

    Batch Of(const std::string& recording) const;
  };
  Batch batch_;
  std::string refusal_;  // by the database
  std::map<std::string, Known> known_;
  Counts counts_;
};

}  // namespace vane::recorder
