// The options of the commands that publish recordings and collect them.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "apps/thermoscribe/command.h"
#include "recorder/publishing/publisher.h"

namespace vane::thermoscribe {

/// "mqtt://HOST/PREFIX" under `name`, an option or an argument.
Option BrokerOption(std::string name, std::optional<recorder::Broker>& target);
/// The file with what proves us to the broker.
Option BrokerFileOption(std::string& target);

/// `broker` with what `credentials` holds; empty for none. Raises `CUsageError`.
recorder::Broker WithCredentials(recorder::Broker broker, const std::string& credentials);

/// Raises `CUsageError` for what can never be.
std::unique_ptr<recorder::CPublisher> MakePublisher(const std::filesystem::path& file,
                                                    const recorder::Broker& broker,
                                                    const std::string& credentials);

}  // namespace vane::thermoscribe
