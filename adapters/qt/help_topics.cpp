#include "adapters/qt/help_topics.h"

namespace vane {
namespace {

struct TopicRow {
  std::int32_t context;
  std::string_view window;
  std::string_view page;
};

constexpr TopicRow kTopics[] = {
    {kSettingsTopic, "frmT312BSettings", "settings.html"},
    {kChannelTopic, "frmT312BPRTTHRMChannel", "channel.html"},
    {kDownloadTopic, "frmT312BDownloadOptions", "download.html"},
    {kConversionTopic, "frmConversionSettings", "conversions.html"},
    {kFilesTopic, "frmShowFiles", "download.html"},
    {kPasscodeTopic, "", "passcode.html"},
};

}  // namespace

std::string_view HelpPageOf(std::int32_t context) {
  for (const TopicRow& row : kTopics) {
    if (row.context == context) return row.page;
  }
  return "index.html";
}

std::int32_t HelpTopicOfWindow(std::string_view name) {
  for (const TopicRow& row : kTopics) {
    if (row.window == name && !name.empty()) return row.context;
  }
  return 0;
}

}  // namespace vane
