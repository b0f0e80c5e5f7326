// Where recordings are published: an MQTT broker, the prefix of its topics, and what proves us to
// it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

struct mosquitto;

namespace vane::recorder {

/// What is wrong with an address or a file of credentials, with a text for the user.
class CBrokerError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Broker {
  std::string host;
  int port = 1883;
  bool tls = false;
  std::string prefix;  ///< of topics, without a "/" at its ends

  // Of the file of credentials; empty: none.
  std::string user = {};
  std::string password = {};
  std::string cafile = {};    ///< certificates that are trusted; empty: those of the system
  std::string certfile = {};  ///< our own
  std::string keyfile = {};

  /// Without secrets: "mqtt://host:1883/prefix".
  std::string Url() const;
};

/// The broker at "mqtt://HOST[:PORT]/PREFIX" or "mqtts://...". A user or password in it is refused:
/// everybody sees the arguments of a program.
Broker BrokerOfUrl(const std::string& url);

/// Adds the user, the password, and the names of the files for TLS from a file of TOML with these
/// keys. One that others may read is refused when it holds a password.
void ReadCredentials(Broker& broker, const std::filesystem::path& path);

/// A connection to a broker, not made yet.
class CBrokerClient {
 public:
  struct Finish {
    void operator()(mosquitto* client) const;
  };

  /// `id` is empty for one of its own and a session that is over with the connection; else the
  /// broker keeps what comes for that name while it is away.
  CBrokerClient(const Broker& broker, const std::string& id, void* owner);

  mosquitto* Get() const { return client_.get(); }

 private:
  std::unique_ptr<mosquitto, Finish> client_;
};

}  // namespace vane::recorder
