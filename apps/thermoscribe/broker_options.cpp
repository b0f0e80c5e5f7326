#include "apps/thermoscribe/broker_options.h"

#include <utility>

namespace vane::thermoscribe {

Option BrokerOption(std::string name, std::optional<recorder::Broker>& target) {
  Option option{
      std::move(name), "BROKER", "an MQTT broker: mqtt://HOST[:PORT]/PREFIX, or mqtts://", {}};
  option.take = [&target](const std::string& text) {
    try {
      target = recorder::BrokerOfUrl(text);
    } catch (const recorder::CBrokerError& error) {
      throw CUsageError(error.what());
    }
  };
  return option;
}

Option BrokerFileOption(std::string& target) {
  return PathOption("--broker-file", "FILE", target,
                    "what proves us to the broker: TOML with user, password,\n"
                    "cafile, certfile, keyfile, as far as they are needed");
}

recorder::Broker WithCredentials(recorder::Broker broker, const std::string& credentials) {
  try {
    if (!credentials.empty()) recorder::ReadCredentials(broker, credentials);
  } catch (const recorder::CBrokerError& error) {
    throw CUsageError(error.what());
  }
  return broker;
}

std::unique_ptr<recorder::CPublisher> MakePublisher(const std::filesystem::path& file,
                                                    const recorder::Broker& broker,
                                                    const std::string& credentials) {
  try {
    return std::make_unique<recorder::CPublisher>(file, WithCredentials(broker, credentials));
  } catch (const recorder::CBrokerError& error) {
    throw CUsageError(error.what());
  }
}

}  // namespace vane::thermoscribe
