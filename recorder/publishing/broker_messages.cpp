#include "recorder/publishing/broker_messages.h"

#include <functional>
#include <nlohmann/json.hpp>
#include <utility>

namespace vane::recorder {
namespace {

using Json = nlohmann::json;
using OrderedJson = nlohmann::ordered_json;

// An instrument may send any byte; one that is no UTF-8 becomes U+FFFD.
std::string Text(const OrderedJson& json) {
  return json.dump(-1, ' ', false, OrderedJson::error_handler_t::replace);
}

template <class T>
OrderedJson OrNull(const std::optional<T>& value) {
  return value ? OrderedJson(*value) : OrderedJson();
}

template <class Result>
std::optional<Result> Parsed(const std::string& message,
                             const std::function<Result(const Json&)>& take) {
  try {
    return take(Json::parse(message));
  } catch (const Json::exception&) {
    return std::nullopt;
  }
}

std::int64_t UtcIn(const Json& json) { return json.at("utc").get<std::int64_t>(); }

Extent ExtentIn(const Json& json) {
  return {json.at("reading").get<std::int64_t>(), json.at("event").get<std::int64_t>()};
}

Span SpanIn(const Json& json) {
  return {json.at(0).get<std::int64_t>(), json.at(1).get<std::int64_t>()};
}

}  // namespace

std::string RecordingMessage(const AboutRecording& about) {
  OrderedJson channels = OrderedJson::array();
  for (const auto& channel : about.head.channels) {
    OrderedJson serial;
    if (channel.probe && about.head.probes.contains(*channel.probe)) {
      serial = about.head.probes.at(*channel.probe);
    }
    channels.push_back({{"channel", channel.channel},
                        {"name", channel.name},
                        {"probe", OrNull(channel.probe)},
                        {"serial", serial}});
  }
  const SessionHead session = about.sessions.empty() ? SessionHead() : about.sessions.back().head;
  return Text({{"recording", about.uuid},
               {"started", TimeText(about.started)},
               {"utc", about.started},
               {"identification", about.head.identification},
               {"program", session.program},
               {"host", session.host},
               {"port", session.port},
               {"channels", channels}});
}

std::string ReadingsMessage(const std::string& recording,
                            const std::vector<SentReading>& readings) {
  OrderedJson rows = OrderedJson::array();
  for (const auto& [reading, name] : readings) {
    rows.push_back({{"sequence", reading.sequence},
                    {"time", TimeText(reading.time.utc)},
                    {"utc", reading.time.utc},
                    {"channel", reading.channel},
                    {"name", name},
                    {"text", reading.text},
                    {"value", reading.value},
                    {"unit", reading.unit},
                    {"sample", reading.sample}});
  }
  return Text({{"recording", recording}, {"readings", rows}});
}

std::string EventsMessage(const std::string& recording, const std::vector<SentEvent>& events) {
  OrderedJson rows = OrderedJson::array();
  for (const auto& [number, behind, event] : events) {
    rows.push_back({{"event", number},
                    {"behind", behind},
                    {"time", TimeText(event.time.utc)},
                    {"utc", event.time.utc},
                    {"kind", event.kind},
                    {"channel", OrNull(event.channel)},
                    {"number", OrNull(event.number)},
                    {"text", event.text}});
  }
  return Text({{"recording", recording}, {"events", rows}});
}

std::string StateMessage(const std::string& recording, const std::string& state,
                         const std::optional<Extent>& extent) {
  OrderedJson json = {{"recording", recording}, {"state", state}};
  if (extent) {
    json["reading"] = extent->reading;
    json["event"] = extent->event;
  }
  return Text(json);
}

std::string StoredMessage(const Extent& extent) {
  return Text({{"reading", extent.reading}, {"event", extent.event}});
}

std::string AgainMessage(const Missing& missing) {
  return Text({{"readings", {missing.readings.first, missing.readings.last}},
               {"events", {missing.events.first, missing.events.last}}});
}

std::optional<std::vector<SentReading>> ReadingsIn(const std::string& message) {
  return Parsed<std::vector<SentReading>>(message, [](const Json& json) {
    std::vector<SentReading> readings;
    for (const Json& row : json.at("readings")) {
      SentReading sent;
      sent.reading.sequence = row.at("sequence").get<std::int64_t>();
      sent.reading.time.utc = UtcIn(row);
      sent.reading.channel = row.at("channel").get<std::int16_t>();
      sent.reading.text = row.at("text").get<std::string>();
      sent.reading.value = row.at("value").get<double>();
      sent.reading.unit = row.at("unit").get<std::string>();
      sent.reading.sample = row.at("sample").get<std::int64_t>();
      sent.name = row.at("name").get<std::string>();
      readings.push_back(std::move(sent));
    }
    return readings;
  });
}

std::optional<std::vector<SentEvent>> EventsIn(const std::string& message) {
  return Parsed<std::vector<SentEvent>>(message, [](const Json& json) {
    std::vector<SentEvent> events;
    for (const Json& row : json.at("events")) {
      SentEvent sent;
      sent.number = row.at("event").get<std::int64_t>();
      sent.behind = row.at("behind").get<std::int64_t>();
      sent.event.time.utc = UtcIn(row);
      sent.event.kind = row.at("kind").get<std::string>();
      if (!row.at("channel").is_null()) sent.event.channel = row["channel"].get<std::int16_t>();
      if (!row.at("number").is_null()) sent.event.number = row["number"].get<double>();
      sent.event.text = row.at("text").get<std::string>();
      events.push_back(std::move(sent));
    }
    return events;
  });
}

std::optional<StateSaid> StateIn(const std::string& message) {
  return Parsed<StateSaid>(message, [](const Json& json) {
    StateSaid said{json.at("state").get<std::string>(), {}};
    if (json.contains("reading")) said.extent = ExtentIn(json);
    return said;
  });
}

std::optional<Extent> StoredIn(const std::string& message) {
  return Parsed<Extent>(message, ExtentIn);
}

std::optional<Missing> AgainIn(const std::string& message) {
  return Parsed<Missing>(message, [](const Json& json) {
    return Missing{SpanIn(json.at("readings")), SpanIn(json.at("events"))};
  });
}

std::optional<RecordingSaid> RecordingIn(const std::string& message) {
  return Parsed<RecordingSaid>(message, [](const Json& json) {
    return RecordingSaid{json.at("identification").get<std::string>(), UtcIn(json)};
  });
}

bool IsUuid(const std::string& text) {
  if (text.size() != 36) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isdash = i == 8 || i == 13 || i == 18 || i == 23;
    const bool isdigit = (text[i] >= '0' && text[i] <= '9') || (text[i] >= 'a' && text[i] <= 'f');
    if (isdash ? text[i] != '-' : !isdigit) return false;
  }
  return true;
}

}  // namespace vane::recorder
