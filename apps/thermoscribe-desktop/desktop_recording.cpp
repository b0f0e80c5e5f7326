#include "apps/thermoscribe-desktop/desktop_recording.h"

#include <cmath>
#include <utility>

#include "apps/recording/recording_head.h"

namespace vane::desktop {

namespace kinds = recorder::kinds;

CDesktopRecording::CDesktopRecording(CDesktopHost& host, std::string path)
    : host_(host), path_(std::move(path)), store_(path_) {}

void CDesktopRecording::Start(std::vector<std::int16_t> channels,
                              const thermoscribe::Snapshot& snapshot) {
  const recorder::Moment now = clock_.Now();
  const recorder::SessionHead session = thermoscribe::SessionOf(
      "thermoscribe-desktop " THERMOSCRIBE_VERSION, host_.Current().Text(), clock_);
  recorder::RecordingHead head = store_.Head();
  recorder::Event first{.time = now, .kind = kinds::kStarted, .text = "The recording begins."};
  if (store_.IsNew()) {
    thermoscribe::CLineSource(host_.Instrument(), host_.LastFailure(), channels).Identify(head);
    thermoscribe::AddSettings(head, snapshot, channels);
    store_.Begin(head, session, now);
  } else {
    channels.clear();
    for (const auto& channel : head.channels) channels.push_back(channel.channel);
    const std::string why =
        thermoscribe::CLineSource(host_.Instrument(), host_.LastFailure(), channels).Differs(head);
    if (!why.empty()) throw recorder::COtherReadout(why);
    first.kind = kinds::kContinued;
    first.number = recorder::SecondsAway(store_.Latest(), clock_);
    first.text = recorder::ContinuedText(*first.number);
    store_.Continue(session, now);
  }
  source_.emplace(host_.Instrument(), host_.LastFailure(), channels);
  engine_.emplace(*source_, &store_, head, clock_,
                  recorder::RecordingPlan{.channels = std::move(channels)}, *this);
  engine_->Tell(first);
}

bool CDesktopRecording::Finish(const std::string& text) {
  return engine_->Finish({.time = clock_.Now(), .kind = kinds::kStopped, .text = text});
}

void CDesktopRecording::OnReadings(const std::vector<recorder::Reading>& readings) {
  if (ontaken_) ontaken_(readings);
}

void CDesktopRecording::OnEvent(const recorder::Event& event) {
  if (event.kind == kinds::kLost) trouble_ = event.text;
  if (onhappened_) onhappened_(event.text);
}

}  // namespace vane::desktop
