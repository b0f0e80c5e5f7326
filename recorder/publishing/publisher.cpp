#include "recorder/publishing/publisher.h"

#include <mosquitto.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

#include "recorder/schema.h"

namespace vane::recorder {
namespace {

constexpr int kQos = 1;
constexpr int kKeepAlive = 30;  // s
constexpr int kLoop = 100;      // ms
constexpr std::size_t kMostOutstanding = 20;
constexpr std::int64_t kMostRows = 500;  // of a message
constexpr std::size_t kMostAgain = 64;
constexpr std::int64_t kFirstPause = 500;  // ms
constexpr std::int64_t kLongestPause = 60'000;
constexpr std::int64_t kConnectPatience = 20'000;
constexpr std::int64_t kPatience = 60'000;  // for an acknowledgement
constexpr std::int64_t kSavePause = 1000;
constexpr std::int64_t kLookPause = 1000;
constexpr std::int64_t kStatePause = 10'000;

std::int64_t NowMs() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

}  // namespace

CPublisher::CPublisher(std::filesystem::path file, Broker broker)
    : path_(std::move(file)), broker_(std::move(broker)) {
  // What is wrong with it for good shows now.
  CBrokerClient(broker_, {}, this);
}

CPublisher::~CPublisher() {
  if (thread_.joinable()) Stop(std::chrono::milliseconds(0), false);
}

void CPublisher::Start() {
  thread_ = std::thread([this] {
    Run();
    isover_ = true;
  });
}

void CPublisher::BeginToStop(std::chrono::milliseconds patience, bool isended) {
  isended_ = isended;
  deadline_ = NowMs() + patience.count();
  isstopping_ = true;
}

bool CPublisher::Stop(std::chrono::milliseconds patience, bool isended) {
  BeginToStop(patience, isended);
  if (thread_.joinable()) thread_.join();
  return isdone_;
}

Extent CPublisher::Acknowledged() const {
  const std::lock_guard lock(mutex_);
  return told_;
}

std::string CPublisher::Trouble() const {
  const std::lock_guard lock(mutex_);
  return trouble_;
}

std::string CPublisher::Topic(const std::string& last) const {
  return broker_.prefix + "/" + uuid_ + "/" + last;
}

void CPublisher::Run() {
  while (!isstopping_ || NowMs() < deadline_) {
    try {
      if (!database_ && !LoadFile()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(kLoop));
        continue;
      }
      if (!isconnected_ && !iswaiting_) Connect();
      if (!client_ || (!isconnected_ && !iswaiting_)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(kLoop));
        continue;
      }
      const int result = mosquitto_loop(client_->Get(), kLoop, 1);
      if (result != MOSQ_ERR_SUCCESS) {
        Lose(mosquitto_strerror(result));
        continue;
      }
      if (!isconnected_ && NowMs() - movedat_ > kConnectPatience) Lose("no answer");
      if (isconnected_) SendMore();
      SaveMark(false);
      if (isstopping_ && isconnected_ && IsDone()) break;
    } catch (const std::exception& error) {
      // A disk that is full, a file that somebody holds: the next try may be luckier.
      {
        const std::lock_guard lock(mutex_);
        trouble_ = error.what();
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(kLoop));
    }
  }
  if (!client_) return;
  try {
    if (database_) {
      isdone_ = IsDone();
      SaveMark(true);
    }
  } catch (const std::exception&) {
    // Then some are sent once more.
  }
  if (isconnected_) {
    mosquitto_disconnect(client_->Get());
    mosquitto_loop(client_->Get(), 0, 1);
  }
}

// False while there is nothing in the file yet.
bool CPublisher::LoadFile() {
  CDatabase database(path_, CDatabase::EAccess::WRITE);
  if (IsEmpty(database)) return false;
  database_.emplace(std::move(database));
  CRecordingReader reader(path_);
  uuid_ = reader.About().uuid;
  about_ = RecordingMessage(reader.About());
  for (const auto& channel : reader.About().head.channels) names_[channel.channel] = channel.name;
  CStatement mark(*database_, "SELECT reading, event FROM reader WHERE name = ?");
  mark.Bind(1, broker_.Url());
  if (mark.Next()) mark_ = {mark.Whole(0), mark.Whole(1)};
  sent_ = saved_ = mark_;
  const std::lock_guard lock(mutex_);
  told_ = mark_;
  return true;
}

void CPublisher::Connect() {
  const std::int64_t now = NowMs();
  if (now < tryat_) return;
  // A new one knows nothing of the messages of before: these go out again.
  outstanding_.clear();
  sent_ = mark_;
  client_ = std::make_unique<CBrokerClient>(broker_, "", this);
  mosquitto* const client = client_->Get();
  mosquitto_max_inflight_messages_set(client, static_cast<unsigned>(kMostOutstanding));
  const std::string will = StateMessage(uuid_, "gone", {});
  mosquitto_will_set(client, Topic(topics::kState).c_str(), static_cast<int>(will.size()),
                     will.data(), kQos, true);
  mosquitto_connect_callback_set(client, [](mosquitto*, void* self, int code) {
    auto* const publisher = static_cast<CPublisher*>(self);
    if (code != 0) return publisher->Lose(mosquitto_connack_string(code));
    publisher->isconnected_ = true;
  });
  mosquitto_publish_callback_set(client, [](mosquitto*, void* self, int message) {
    static_cast<CPublisher*>(self)->Acknowledge(message);
  });
  mosquitto_message_callback_set(
      client, [](mosquitto*, void* self, const mosquitto_message* message) {
        static_cast<CPublisher*>(self)->Hear(message->topic,
                                             {static_cast<const char*>(message->payload),
                                              static_cast<std::size_t>(message->payloadlen)});
      });
  iswaiting_ = true;
  movedat_ = now;
  if (const int result =
          mosquitto_connect_async(client, broker_.host.c_str(), broker_.port, kKeepAlive);
      result != MOSQ_ERR_SUCCESS) {
    Lose(mosquitto_strerror(result));
  }
}

void CPublisher::Lose(const std::string& why) {
  isconnected_ = iswaiting_ = false;
  isfinalsaid_ = false;
  stored_.reset();
  pause_ = pause_ == 0 ? kFirstPause : std::min(pause_ * 2, kLongestPause);
  tryat_ = NowMs() + pause_;
  const std::lock_guard lock(mutex_);
  trouble_ = broker_.Url() + ": " + why + ".";
}

void CPublisher::SendMore() {
  const std::int64_t now = NowMs();
  if (iswaiting_) {
    iswaiting_ = false;
    pause_ = 0;
    {
      const std::lock_guard lock(mutex_);
      trouble_.clear();
    }
    Send(topics::kRecording, about_, true, {});
    SayState("recording");
    for (const char* topic : {topics::kAgain, topics::kStored}) {
      mosquitto_subscribe(client_->Get(), nullptr, Topic(topic).c_str(), kQos);
    }
  }
  if (!outstanding_.empty() && now - movedat_ > kPatience) {
    return Lose("nothing was acknowledged for a minute");
  }
  if (outstanding_.empty()) movedat_ = now;
  while (!again_.empty() && outstanding_.size() < kMostOutstanding) {
    Missing& missing = again_.front();
    // A message of it at a time.
    if (!missing.readings.IsEmpty()) {
      SendReadings(missing.readings, true);
      missing.readings.first += kMostRows;
    } else if (!missing.events.IsEmpty()) {
      SendEvents(missing.events, true);
      missing.events.first += kMostRows;
    } else {
      again_.erase(again_.begin());
    }
  }
  if (!iswoken_.exchange(false) && now - lookedat_ < kLookPause) return;
  lookedat_ = now;
  while (outstanding_.size() < kMostOutstanding) {
    if (!SendReadings({sent_.reading + 1, sent_.reading + kMostRows}, false) &&
        !SendEvents({sent_.event + 1, sent_.event + kMostRows}, false)) {
      break;
    }
    lookedat_ = 0;  // there may be more
  }
  if (now - saidat_ > kStatePause && !(ExtentOfFile() == saidextent_)) SayState("recording");
}

bool CPublisher::SendReadings(const Span& span, bool isagain) {
  if (span.IsEmpty()) return false;
  CStatement rows(*database_,
                  "SELECT sequence, utc, sample, channel, text, value, unit.name FROM reading "
                  "JOIN unit USING (unit) WHERE sequence BETWEEN ? AND ? ORDER BY sequence LIMIT " +
                      std::to_string(kMostRows));
  rows.Bind(1, span.first).Bind(2, span.last);
  std::vector<SentReading> readings;
  while (rows.Next()) {
    SentReading sent;
    sent.reading.sequence = rows.Whole(0);
    sent.reading.time.utc = rows.Whole(1);
    sent.reading.sample = rows.Whole(2);
    sent.reading.channel = static_cast<std::int16_t>(rows.Whole(3));
    sent.reading.text = rows.Text(4);
    sent.reading.value = rows.Real(5);
    sent.reading.unit = rows.Text(6);
    sent.name = names_[sent.reading.channel];
    readings.push_back(std::move(sent));
  }
  if (readings.empty()) return false;
  const std::int64_t last = readings.back().reading.sequence;
  if (!Send(topics::kReadings, ReadingsMessage(uuid_, readings), false,
            isagain ? Extent{} : Extent{last, 0})) {
    return false;
  }
  if (!isagain) sent_.reading = last;
  return true;
}

bool CPublisher::SendEvents(const Span& span, bool isagain) {
  if (span.IsEmpty()) return false;
  CStatement rows(*database_,
                  "SELECT event, behind, utc, kind, channel, number, text FROM event "
                  "WHERE event BETWEEN ? AND ? ORDER BY event LIMIT " +
                      std::to_string(kMostRows));
  rows.Bind(1, span.first).Bind(2, span.last);
  std::vector<SentEvent> events;
  while (rows.Next()) {
    SentEvent sent;
    sent.number = rows.Whole(0);
    sent.behind = rows.Whole(1);
    sent.event.time.utc = rows.Whole(2);
    sent.event.kind = rows.Text(3);
    if (!rows.IsNull(4)) sent.event.channel = static_cast<std::int16_t>(rows.Whole(4));
    if (!rows.IsNull(5)) sent.event.number = rows.Real(5);
    sent.event.text = rows.Text(6);
    events.push_back(std::move(sent));
  }
  if (events.empty()) return false;
  const std::int64_t last = events.back().number;
  if (!Send(topics::kEvents, EventsMessage(uuid_, events), false,
            isagain ? Extent{} : Extent{0, last})) {
    return false;
  }
  if (!isagain) sent_.event = last;
  return true;
}

bool CPublisher::Send(const char* topic, const std::string& payload, bool isretained,
                      const Extent& upto) {
  int message = 0;
  const int result =
      mosquitto_publish(client_->Get(), &message, Topic(topic).c_str(),
                        static_cast<int>(payload.size()), payload.data(), kQos, isretained);
  if (result != MOSQ_ERR_SUCCESS) {
    Lose(mosquitto_strerror(result));
    return false;
  }
  outstanding_.push_back({message, upto});
  return true;
}

void CPublisher::SayState(const char* state) {
  saidextent_ = ExtentOfFile();
  saidat_ = NowMs();
  Send(topics::kState, StateMessage(uuid_, state, saidextent_), true, {});
}

// The broker may acknowledge in another order; the mark goes on over what is whole.
void CPublisher::Acknowledge(int message) {
  const auto found = std::ranges::find(outstanding_, message, &Outstanding::message);
  if (found == outstanding_.end()) return;
  found->isacknowledged = true;
  movedat_ = NowMs();
  while (!outstanding_.empty() && outstanding_.front().isacknowledged) {
    const Extent& upto = outstanding_.front().upto;
    mark_.reading = std::max(mark_.reading, upto.reading);
    mark_.event = std::max(mark_.event, upto.event);
    outstanding_.pop_front();
  }
  lookedat_ = 0;
  const std::lock_guard lock(mutex_);
  told_ = mark_;
}

void CPublisher::Hear(const std::string& topic, const std::string& payload) {
  if (topic == Topic(topics::kStored)) {
    if (const auto stored = StoredIn(payload)) stored_ = stored;
  } else if (topic == Topic(topics::kAgain) && again_.size() < kMostAgain) {
    if (const auto missing = AgainIn(payload)) again_.push_back(*missing);
  }
}

void CPublisher::SaveMark(bool atonce) {
  const std::int64_t now = NowMs();
  if (saved_ == mark_ || (!atonce && now - savedat_ < kSavePause)) return;
  savedat_ = now;
  CTransaction transaction(*database_);
  CStatement(*database_, "INSERT OR REPLACE INTO reader (name, reading, event) VALUES (?, ?, ?)")
      .Bind(1, broker_.Url())
      .Bind(2, mark_.reading)
      .Bind(3, mark_.event)
      .Run();
  transaction.Commit();
  saved_ = mark_;
}

Extent CPublisher::ExtentOfFile() {
  return {database_->Number("SELECT max(sequence) FROM reading"),
          database_->Number("SELECT max(event) FROM event")};
}

// Where nobody has said that he stores, the broker's word is enough.
bool CPublisher::IsDone() {
  const Extent extent = ExtentOfFile();
  if (!outstanding_.empty() || mark_.reading < extent.reading || mark_.event < extent.event) {
    return false;
  }
  if (!isfinalsaid_ || !(saidextent_ == extent)) {
    isfinalsaid_ = true;
    SayState(isended_ ? "ended" : "stopped");
    return false;
  }
  return again_.empty() &&
         (!stored_ || (stored_->reading >= extent.reading && stored_->event >= extent.event));
}

}  // namespace vane::recorder
