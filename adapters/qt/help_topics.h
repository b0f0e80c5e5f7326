// The topics of the user's pages, by the numbers that windows and errors carry.
#pragma once

#include <cstdint>
#include <string_view>

namespace vane {

inline constexpr std::int32_t kSettingsTopic = 10850;
inline constexpr std::int32_t kChannelTopic = 10851;
inline constexpr std::int32_t kDownloadTopic = 10852;  ///< the library's own number
inline constexpr std::int32_t kConversionTopic = 10853;
inline constexpr std::int32_t kFilesTopic = 10854;
inline constexpr std::int32_t kPasscodeTopic = 10855;

/// The page of a topic, by its file's name; the contents for a number that has none.
std::string_view HelpPageOf(std::int32_t context);

/// The topic of a window of the library by its name; 0 where it has none.
std::int32_t HelpTopicOfWindow(std::string_view name);

}  // namespace vane
