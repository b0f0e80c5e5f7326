#include "recorder/publishing/collector.h"

#include <mosquitto.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <iterator>
#include <thread>
#include <utility>

#include "recorder/publishing/postgres.h"

namespace vane::recorder {
namespace {

constexpr int kQos = 1;
constexpr int kKeepAlive = 30;              // s
constexpr std::int64_t kTurn = 250;         // ms of a step
constexpr int kLoop = 20;                   // ms
constexpr std::int64_t kMostRows = 20'000;  // that wait for the database
constexpr std::int64_t kFirstPause = 500;   // ms
constexpr std::int64_t kLongestPause = 60'000;
constexpr std::int64_t kConnectPatience = 20'000;
constexpr std::int64_t kAskPause = 3000;  // ms; what is under way must have the time to come
constexpr std::int64_t kTellPause = 1000;
constexpr std::int64_t kMostAsked = 5000;  // rows
constexpr int kTries = 5;                  // of two collectors that are in each other's way

// Versions would be steps here, as in the files of recordings.
constexpr const char* kSchema = R"(
SET client_min_messages = warning;
CREATE SCHEMA IF NOT EXISTS thermoscribe;
CREATE TABLE IF NOT EXISTS thermoscribe.recording (
  recording uuid PRIMARY KEY,
  about jsonb,
  state jsonb,
  complete bigint NOT NULL DEFAULT 0,
  completeevents bigint NOT NULL DEFAULT 0,
  heard timestamptz NOT NULL DEFAULT now());
CREATE TABLE IF NOT EXISTS thermoscribe.reading (
  recording uuid NOT NULL,
  sequence bigint NOT NULL,
  time timestamptz NOT NULL,
  channel smallint NOT NULL,
  name text NOT NULL,
  text text NOT NULL,
  value double precision NOT NULL,
  unit text NOT NULL,
  sample bigint NOT NULL,
  PRIMARY KEY (recording, sequence));
CREATE TABLE IF NOT EXISTS thermoscribe.event (
  recording uuid NOT NULL,
  event bigint NOT NULL,
  behind bigint NOT NULL,
  time timestamptz NOT NULL,
  kind text NOT NULL,
  channel smallint,
  number double precision,
  text text NOT NULL,
  PRIMARY KEY (recording, event));
)";

// Who makes the tables first makes them for all.
constexpr std::int64_t kSchemaLock = 0x54333132;

class CDatabaseError : public std::runtime_error {
 public:
  /// `code` is the five letters of the standard.
  CDatabaseError(const std::string& text, std::string code)
      : std::runtime_error(text), code_(std::move(code)) {}

  /// Two collectors were in each other's way: the same again will do.
  bool IsTwins() const { return code_ == "40P01" || code_ == "40001"; }
  /// The same again will never do.
  bool IsOfData() const { return code_.starts_with("22") || code_.starts_with("23"); }

 private:
  std::string code_;
};

std::int64_t NowMs() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

std::string NumberText(double value) {
  char digits[40];
  return {digits, std::to_chars(std::begin(digits), std::end(digits), value).ptr};
}

// An array as the database reads it, item by item.
class CArray {
 public:
  void Add(const std::string& text) {
    Begin();
    text_ += '"';
    for (const char c : text) {
      if (c == '"' || c == '\\') text_ += '\\';
      // The database takes no such character in a text.
      if (c != '\0') text_ += c;
    }
    text_ += '"';
  }
  void AddNumber(const std::string& number) {
    Begin();
    text_ += number;
  }
  void AddNull() { AddNumber("NULL"); }

  std::string Text() const { return (text_.empty() ? "{" : text_) + "}"; }

 private:
  void Begin() { text_ += text_.empty() ? '{' : ','; }

  std::string text_;
};

std::string Trimmed(std::string text) {
  while (!text.empty() && (text.back() == '\n' || text.back() == '.')) text.pop_back();
  std::ranges::replace(text, '\n', ' ');
  return text;
}

}  // namespace

void CheckDatabase(const std::string& database) {
  char* trouble = nullptr;
  PQconninfoOption* const options = Postgres().conninfoparse(database.c_str(), &trouble);
  if (options == nullptr) {
    const std::string text = trouble == nullptr ? "" : Trimmed(trouble);
    Postgres().freemem(trouble);
    throw CBrokerError("The address of the database can't be read: " + text + ".");
  }
  bool haspassword = false;
  for (const PQconninfoOption* option = options; option->keyword != nullptr; ++option) {
    haspassword =
        haspassword || (std::string(option->keyword) == "password" && option->val != nullptr);
  }
  Postgres().conninfofree(options);
  if (haspassword) {
    throw CBrokerError(
        "A password doesn't belong into the address of a database, which everybody can see; "
        "~/.pgpass, or the file that $PGPASSFILE names, takes it.");
  }
}

void CCollector::CloseDatabase::operator()(pg_conn* connection) const {
  Postgres().finish(connection);
}

void CCollector::ClearResult::operator()(pg_result* result) const { Postgres().clear(result); }

CCollector::CCollector(Broker broker, std::string database, std::string name,
                       std::function<void(const std::string&)> tell)
    : broker_(std::move(broker)),
      databaseurl_(std::move(database)),
      name_(std::move(name)),
      tell_(std::move(tell)) {
  CheckDatabase(databaseurl_);
  CBrokerClient(broker_, name_, this);
}

CCollector::~CCollector() = default;

void CCollector::Step() {
  const std::int64_t start = NowMs();
  // What can't be stored isn't taken: the broker keeps it.
  if (HasDatabase() && HasBroker()) {
    while (NowMs() - start < kTurn && batch_.rows < kMostRows) {
      const int result = mosquitto_loop(client_->Get(), kLoop, 1);
      if (result != MOSQ_ERR_SUCCESS) {
        LoseBroker(mosquitto_strerror(result));
        break;
      }
      if (!isconnected_ && NowMs() - triedat_ > kConnectPatience) {
        LoseBroker("no answer");
        break;
      }
    }
    if (Store() && isconnected_) AskAndTell();
    return;
  }
  if (database_) Store();
  std::this_thread::sleep_for(std::chrono::milliseconds(kTurn));
}

void CCollector::Finish() {
  if (database_) Store();
  if (isconnected_) {
    mosquitto_disconnect(client_->Get());
    mosquitto_loop(client_->Get(), 0, 1);
  }
}

bool CCollector::HasDatabase() {
  if (database_) return true;
  if (NowMs() < databasetry_.at) return false;
  database_.reset(Postgres().connectdb(databaseurl_.c_str()));
  if (Postgres().status(database_.get()) != CONNECTION_OK) {
    Fail(databasetry_, "The database: " + Trimmed(Postgres().errormessage(database_.get())) + ".");
    database_.reset();
    return false;
  }
  try {
    Run("SELECT pg_advisory_lock($1)", {std::to_string(kSchemaLock)});
    const Result made(Postgres().exec(database_.get(), kSchema));
    if (Postgres().resultstatus(made.get()) != PGRES_COMMAND_OK) {
      throw CDatabaseError(Trimmed(Postgres().resulterrormessage(made.get())), {});
    }
    Run("SELECT pg_advisory_unlock($1)", {std::to_string(kSchemaLock)});
  } catch (const CDatabaseError& error) {
    Fail(databasetry_, std::string("The database: ") + error.what() + ".");
    database_.reset();
    return false;
  }
  Succeed(databasetry_, "The database is there again.");
  return true;
}

bool CCollector::HasBroker() {
  if (isconnected_ || iswaiting_) return true;
  const std::int64_t now = NowMs();
  if (now < brokertry_.at) return false;
  client_ = std::make_unique<CBrokerClient>(broker_, name_, this);
  mosquitto* const client = client_->Get();
  mosquitto_connect_callback_set(client, [](mosquitto* one, void* self, int code) {
    auto* const collector = static_cast<CCollector*>(self);
    if (code != 0) return collector->LoseBroker(mosquitto_connack_string(code));
    collector->isconnected_ = true;
    collector->iswaiting_ = false;
    collector->Succeed(collector->brokertry_, "The broker is there again.");
    for (const char* topic :
         {topics::kRecording, topics::kReadings, topics::kEvents, topics::kState}) {
      const std::string all = collector->broker_.prefix + "/+/" + topic;
      mosquitto_subscribe(one, nullptr, all.c_str(), kQos);
    }
  });
  mosquitto_message_callback_set(
      client, [](mosquitto*, void* self, const mosquitto_message* message) {
        static_cast<CCollector*>(self)->Hear(message->topic,
                                             {static_cast<const char*>(message->payload),
                                              static_cast<std::size_t>(message->payloadlen)});
      });
  iswaiting_ = true;
  triedat_ = now;
  const int result =
      mosquitto_connect_async(client, broker_.host.c_str(), broker_.port, kKeepAlive);
  if (result != MOSQ_ERR_SUCCESS) LoseBroker(mosquitto_strerror(result));
  return iswaiting_;
}

void CCollector::LoseBroker(const std::string& why) {
  isconnected_ = iswaiting_ = false;
  Fail(brokertry_, broker_.Url() + ": " + why + ".");
}

void CCollector::Fail(Attempt& attempt, const std::string& trouble) {
  attempt.pause = attempt.pause == 0 ? kFirstPause : std::min(attempt.pause * 2, kLongestPause);
  attempt.at = NowMs() + attempt.pause;
  if (attempt.trouble.empty()) tell_(trouble);
  attempt.trouble = trouble;
}

void CCollector::Succeed(Attempt& attempt, const std::string& what) {
  if (!attempt.trouble.empty()) tell_(what);
  attempt = {};
}

void CCollector::Hear(const std::string& topic, const std::string& payload) {
  ++counts_.messages;
  const std::size_t end = topic.rfind('/');
  const std::string last = topic.substr(end + 1);
  const std::size_t begin = broker_.prefix.size() + 1;
  const std::string recording = begin < end ? topic.substr(begin, end - begin) : std::string();
  if (!IsUuid(recording)) {
    ++counts_.strange;
    return;
  }
  Known& known = known_[recording];
  known.heardat = NowMs();
  if (last == topics::kReadings) {
    if (auto readings = ReadingsIn(payload)) {
      auto& all = batch_.readings[recording];
      for (const SentReading& one : *readings) {
        known.highest.reading = std::max(known.highest.reading, one.reading.sequence);
      }
      batch_.rows += static_cast<std::int64_t>(readings->size());
      std::ranges::move(*readings, std::back_inserter(all));
      batch_.recordings.insert(recording);
      return;
    }
  } else if (last == topics::kEvents) {
    if (auto events = EventsIn(payload)) {
      auto& all = batch_.events[recording];
      for (const SentEvent& one : *events) {
        known.highest.event = std::max(known.highest.event, one.number);
      }
      batch_.rows += static_cast<std::int64_t>(events->size());
      std::ranges::move(*events, std::back_inserter(all));
      batch_.recordings.insert(recording);
      return;
    }
  } else if (last == topics::kState) {
    if (const auto said = StateIn(payload)) {
      if (said->extent) known.announced = *said->extent;
      batch_.states[recording] = payload;
      batch_.recordings.insert(recording);
      return;
    }
  } else if (RecordingIn(payload)) {
    batch_.heads[recording] = payload;
    batch_.recordings.insert(recording);
    return;
  }
  ++counts_.strange;
}

// False when it isn't stored; it is kept then.
bool CCollector::Store() {
  if (batch_.recordings.empty()) return true;
  EStored result = TryToStore();
  if (result == EStored::REFUSED) {
    // Somebody has sent what no database takes: that must not keep the others out.
    for (Batch all = std::exchange(batch_, {}); const std::string& recording : all.recordings) {
      batch_ = all.Of(recording);
      result = TryToStore();
      if (result == EStored::REFUSED) {
        ++counts_.strange;
        tell_("What came of the recording " + recording + " can't be stored: " + refusal_ + ".");
      }
      if (result == EStored::AWAY) {
        batch_ = std::move(all);
        return false;
      }
    }
    batch_ = {};
    return true;
  }
  return result == EStored::DONE;
}

CCollector::Batch CCollector::Batch::Of(const std::string& recording) const {
  Batch one;
  const auto take = [&recording](const auto& from, auto& to) {
    if (const auto found = from.find(recording); found != from.end()) to.insert(*found);
  };
  take(heads, one.heads);
  take(states, one.states);
  take(readings, one.readings);
  take(events, one.events);
  one.recordings = {recording};
  return one;
}

CCollector::EStored CCollector::TryToStore() {
  for (int tries = 1;; ++tries) {
    const Counts before = counts_;
    try {
      Run("BEGIN", {});
      StoreBatch();
      Run("COMMIT", {});
      batch_ = {};
      return EStored::DONE;
    } catch (const CDatabaseError& error) {
      counts_ = before;
      const Result back(Postgres().exec(database_.get(), "ROLLBACK"));
      if (error.IsTwins() && tries < kTries) continue;
      refusal_ = error.what();
      if (error.IsOfData()) return EStored::REFUSED;
      Fail(databasetry_, "The database: " + refusal_ + ".");
      database_.reset();
      return EStored::AWAY;
    }
  }
}

void CCollector::StoreBatch() {
  StoreHeads();
  StoreReadings();
  StoreEvents();
  UpdateComplete();
}

// All in the order of their keys, so that two collectors never wait for each other in a circle.

void CCollector::StoreHeads() {
  CArray recordings;
  CArray heads;
  CArray states;
  for (const std::string& recording : batch_.recordings) {
    recordings.Add(recording);
    const auto head = batch_.heads.find(recording);
    head == batch_.heads.end() ? heads.AddNull() : heads.Add(head->second);
    const auto state = batch_.states.find(recording);
    state == batch_.states.end() ? states.AddNull() : states.Add(state->second);
  }
  Run("INSERT INTO thermoscribe.recording AS old (recording, about, state) "
      "SELECT * FROM unnest($1::uuid[], $2::jsonb[], $3::jsonb[]) "
      "ON CONFLICT (recording) DO UPDATE SET about = coalesce(excluded.about, old.about), "
      "state = coalesce(excluded.state, old.state), heard = now()",
      {recordings.Text(), heads.Text(), states.Text()});
}

void CCollector::StoreReadings() {
  if (batch_.readings.empty()) return;
  CArray recordings;
  CArray sequences;
  CArray times;
  CArray channels;
  CArray names;
  CArray texts;
  CArray values;
  CArray units;
  CArray samples;
  for (auto& [recording, readings] : batch_.readings) {
    std::ranges::sort(readings, {}, [](const SentReading& one) { return one.reading.sequence; });
    for (const auto& [reading, name] : readings) {
      recordings.AddNumber(recording);
      sequences.AddNumber(std::to_string(reading.sequence));
      times.AddNumber(std::to_string(reading.time.utc));
      channels.AddNumber(std::to_string(reading.channel));
      names.Add(name);
      texts.Add(reading.text);
      values.AddNumber(NumberText(reading.value));
      units.Add(reading.unit);
      samples.AddNumber(std::to_string(reading.sample));
    }
  }
  const Result result = Run(
      "INSERT INTO thermoscribe.reading "
      "SELECT one.recording, sequence, timestamptz 'epoch' + utc * interval '1 millisecond', "
      "channel, name, text, value, unit, sample FROM unnest($1::uuid[], $2::bigint[], "
      "$3::bigint[], $4::smallint[], $5::text[], $6::text[], $7::float8[], $8::text[], "
      "$9::bigint[]) AS one (recording, sequence, utc, channel, name, text, value, unit, sample) "
      "ON CONFLICT DO NOTHING",
      {recordings.Text(), sequences.Text(), times.Text(), channels.Text(), names.Text(),
       texts.Text(), values.Text(), units.Text(), samples.Text()});
  counts_.readings += std::atoll(Postgres().cmdtuples(result.get()));
}

void CCollector::StoreEvents() {
  if (batch_.events.empty()) return;
  CArray recordings;
  CArray numbers;
  CArray behinds;
  CArray times;
  CArray kindsof;
  CArray channels;
  CArray values;
  CArray texts;
  for (auto& [recording, events] : batch_.events) {
    std::ranges::sort(events, {}, &SentEvent::number);
    for (const auto& [number, behind, event] : events) {
      recordings.AddNumber(recording);
      numbers.AddNumber(std::to_string(number));
      behinds.AddNumber(std::to_string(behind));
      times.AddNumber(std::to_string(event.time.utc));
      kindsof.Add(event.kind);
      event.channel ? channels.AddNumber(std::to_string(*event.channel)) : channels.AddNull();
      event.number ? values.AddNumber(NumberText(*event.number)) : values.AddNull();
      texts.Add(event.text);
    }
  }
  const Result result =
      Run("INSERT INTO thermoscribe.event "
          "SELECT one.recording, event, behind, timestamptz 'epoch' + utc * interval '1 "
          "millisecond', kind, channel, number, text FROM unnest($1::uuid[], $2::bigint[], "
          "$3::bigint[], $4::bigint[], $5::text[], $6::smallint[], $7::float8[], $8::text[]) "
          "AS one (recording, event, behind, utc, kind, channel, number, text) "
          "ON CONFLICT DO NOTHING",
          {recordings.Text(), numbers.Text(), behinds.Text(), times.Text(), kindsof.Text(),
           channels.Text(), values.Text(), texts.Text()});
  counts_.events += std::atoll(Postgres().cmdtuples(result.get()));
}

// How far everything is there, without a hole.
void CCollector::UpdateComplete() {
  CArray recordings;
  for (const std::string& recording : batch_.recordings) recordings.Add(recording);
  Run("SELECT 1 FROM thermoscribe.recording WHERE recording = ANY ($1::uuid[]) "
      "ORDER BY recording FOR UPDATE",
      {recordings.Text()});
  const Result result = Run(
      "UPDATE thermoscribe.recording AS r SET complete = CASE WHEN EXISTS (SELECT 1 FROM "
      "thermoscribe.reading WHERE recording = r.recording AND sequence = r.complete + 1) THEN "
      "(SELECT a.sequence FROM thermoscribe.reading AS a WHERE a.recording = r.recording AND "
      "a.sequence > r.complete AND NOT EXISTS (SELECT 1 FROM thermoscribe.reading AS b WHERE "
      "b.recording = r.recording AND b.sequence = a.sequence + 1) ORDER BY a.sequence LIMIT 1) "
      "ELSE complete END, completeevents = CASE WHEN EXISTS (SELECT 1 FROM thermoscribe.event "
      "WHERE recording = r.recording AND event = r.completeevents + 1) THEN (SELECT a.event FROM "
      "thermoscribe.event AS a WHERE a.recording = r.recording AND a.event > r.completeevents AND "
      "NOT EXISTS (SELECT 1 FROM thermoscribe.event AS b WHERE b.recording = r.recording AND "
      "b.event = a.event + 1) ORDER BY a.event LIMIT 1) ELSE completeevents END "
      "WHERE recording = ANY ($1::uuid[]) RETURNING recording, complete, completeevents",
      {recordings.Text()});
  for (int row = 0; row < Postgres().ntuples(result.get()); ++row) {
    known_[Postgres().getvalue(result.get(), row, 0)].complete = {
        std::atoll(Postgres().getvalue(result.get(), row, 1)),
        std::atoll(Postgres().getvalue(result.get(), row, 2))};
  }
}

void CCollector::AskAndTell() {
  const std::int64_t now = NowMs();
  for (auto& [recording, known] : known_) {
    const Extent wanted{std::max(known.announced.reading, known.highest.reading),
                        std::max(known.announced.event, known.highest.event)};
    const bool ismissing =
        known.complete.reading < wanted.reading || known.complete.event < wanted.event;
    if (!ismissing) {
      known.askedat = now;
    } else if (now - known.askedat > kAskPause) {
      known.askedat = now;
      ++counts_.asked;
      Publish(recording, topics::kAgain, AgainMessage(MissingOf(recording, known)), false);
    }
    if (!(known.told == known.complete) && now - known.toldat > kTellPause) {
      known.told = known.complete;
      known.toldat = now;
      Publish(recording, topics::kStored, StoredMessage(known.complete), true);
    }
  }
}

// The first hole of each.
Missing CCollector::MissingOf(const std::string& recording, const Known& known) {
  const auto hole = [&](std::int64_t complete, std::int64_t wanted, const char* sql) {
    if (complete >= wanted) return Span{};
    Span span{complete + 1, wanted};
    try {
      const Result next = Run(sql, {recording, std::to_string(complete)});
      if (Postgres().getisnull(next.get(), 0, 0) == 0) {
        span.last = std::atoll(Postgres().getvalue(next.get(), 0, 0)) - 1;
      }
    } catch (const CDatabaseError&) {
      // The next step finds out.
    }
    span.last = std::min(span.last, span.first + kMostAsked - 1);
    return span;
  };
  return {
      hole(known.complete.reading, std::max(known.announced.reading, known.highest.reading),
           "SELECT min(sequence) FROM thermoscribe.reading WHERE recording = $1 AND sequence > $2"),
      hole(known.complete.event, std::max(known.announced.event, known.highest.event),
           "SELECT min(event) FROM thermoscribe.event WHERE recording = $1 AND event > $2")};
}

void CCollector::Publish(const std::string& recording, const char* topic,
                         const std::string& payload, bool isretained) {
  const std::string whole = broker_.prefix + "/" + recording + "/" + topic;
  mosquitto_publish(client_->Get(), nullptr, whole.c_str(), static_cast<int>(payload.size()),
                    payload.data(), kQos, isretained);
}

CCollector::Result CCollector::Run(const char* sql, const std::vector<std::string>& values) {
  std::vector<const char*> texts;
  for (const std::string& value : values) texts.push_back(value.c_str());
  Result result(Postgres().execparams(database_.get(), sql, static_cast<int>(texts.size()), nullptr,
                                      texts.data(), nullptr, nullptr, 0));
  const ExecStatusType status = Postgres().resultstatus(result.get());
  if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) {
    const char* const state = Postgres().resulterrorfield(result.get(), PG_DIAG_SQLSTATE);
    const std::string code = state == nullptr ? "" : state;
    const std::string text = Postgres().resulterrormessage(result.get());
    throw CDatabaseError(Trimmed(text.empty() ? Postgres().errormessage(database_.get()) : text),
                         code);
  }
  return result;
}

}  // namespace vane::recorder
