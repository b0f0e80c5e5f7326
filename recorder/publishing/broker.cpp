#include "recorder/publishing/broker.h"

#include <mosquitto.h>
#include <sys/stat.h>
#include <toml++/toml.h>

#include <charconv>
#include <string_view>

namespace vane::recorder {
namespace {

constexpr int kPlainPort = 1883;
constexpr int kTlsPort = 8883;
constexpr mode_t kOthers = 077;

void Demand(int result, const std::string& what) {
  if (result != MOSQ_ERR_SUCCESS) {
    throw CBrokerError(what + ": " + mosquitto_strerror(result) + ".");
  }
}

const char* OrNull(const std::string& text) { return text.empty() ? nullptr : text.c_str(); }

// The library counts its users; it is there for as long as the program.
void UseLibrary() {
  static const int once = mosquitto_lib_init();
  Demand(once, "MQTT");
}

}  // namespace

std::string Broker::Url() const {
  return std::string(tls ? "mqtts" : "mqtt") + "://" + host + ":" + std::to_string(port) + "/" +
         prefix;
}

Broker BrokerOfUrl(const std::string& url) {
  const auto fail = [&url](const char* why) { throw CBrokerError("\"" + url + "\" " + why); };
  Broker broker;
  std::string_view rest = url;
  if (rest.starts_with("mqtts://")) {
    broker.tls = true;
    rest.remove_prefix(8);
  } else if (rest.starts_with("mqtt://")) {
    rest.remove_prefix(7);
  } else {
    fail("is no address of a broker, such as mqtt://HOST/PREFIX.");
  }
  const std::size_t slash = rest.find('/');
  std::string_view place = rest.substr(0, slash);
  broker.prefix = slash == rest.npos ? std::string_view() : rest.substr(slash + 1);
  while (broker.prefix.ends_with('/')) broker.prefix.pop_back();
  // What it says about itself must not be shown again.
  if (place.find('@') != place.npos) {
    throw CBrokerError(
        "A user or a password doesn't belong into the address of a broker, which everybody can "
        "see; --broker-file takes them.");
  }
  broker.port = broker.tls ? kTlsPort : kPlainPort;
  const std::size_t colon = place.find(':', place.starts_with('[') ? place.find(']') : 0);
  if (colon != place.npos) {
    const std::string_view number = place.substr(colon + 1);
    const auto [end, error] =
        std::from_chars(number.data(), number.data() + number.size(), broker.port);
    if (error != std::errc() || end != number.data() + number.size() || broker.port < 1 ||
        broker.port > 65535) {
      fail("has no port from 1 to 65535.");
    }
    place = place.substr(0, colon);
  }
  broker.host = place;
  if (broker.host.starts_with('[')) broker.host = broker.host.substr(1, broker.host.size() - 2);
  if (broker.host.empty()) fail("names no host.");
  if (broker.prefix.empty() || broker.prefix.find_first_of("+#") != broker.prefix.npos) {
    fail("has no prefix of topics, such as /lab/thermometers, without \"+\" and \"#\".");
  }
  return broker;
}

void ReadCredentials(Broker& broker, const std::filesystem::path& path) {
  toml::table table;
  try {
    table = toml::parse_file(path.string());
  } catch (const toml::parse_error& error) {
    throw CBrokerError(path.string() + ": " + std::string(error.description()) + ".");
  }
  const auto take = [&](std::string_view key, std::string& target) {
    const auto node = table[key];
    if (!node) return;
    if (!node.is_string())
      throw CBrokerError(path.string() + ": " + std::string(key) + " is no text.");
    target = *node.value<std::string>();
    table.erase(key);
  };
  take("user", broker.user);
  take("password", broker.password);
  take("cafile", broker.cafile);
  take("certfile", broker.certfile);
  take("keyfile", broker.keyfile);
  if (!table.empty()) {
    throw CBrokerError(path.string() + ": \"" + std::string(table.begin()->first.str()) +
                       "\" is unknown; there are user, password, cafile, certfile and keyfile.");
  }
  struct stat state {};
  if (!broker.password.empty() && stat(path.c_str(), &state) == 0 &&
      (state.st_mode & kOthers) != 0) {
    throw CBrokerError(path.string() + ": others may read the password; chmod 600 keeps it.");
  }
}

void CBrokerClient::Finish::operator()(mosquitto* client) const { mosquitto_destroy(client); }

CBrokerClient::CBrokerClient(const Broker& broker, const std::string& id, void* owner) {
  UseLibrary();
  client_.reset(mosquitto_new(OrNull(id), id.empty(), owner));
  if (!client_) throw CBrokerError("MQTT: there is no memory.");
  if (!broker.user.empty()) {
    Demand(mosquitto_username_pw_set(Get(), broker.user.c_str(), OrNull(broker.password)),
           "The user of the broker");
  }
  if (!broker.tls) return;
  const char* const systems = broker.cafile.empty() ? "/etc/ssl/certs" : nullptr;
  Demand(mosquitto_tls_set(Get(), OrNull(broker.cafile), systems, OrNull(broker.certfile),
                           OrNull(broker.keyfile), nullptr),
         "TLS for the broker");
}

}  // namespace vane::recorder
