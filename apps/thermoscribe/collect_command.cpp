// thermoscribe collect: takes published recordings into a database.

#include <unistd.h>

#include <climits>
#include <csignal>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "apps/thermoscribe/broker_options.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/program_commands.h"
#include "apps/thermoscribe/service_notice.h"
#include "recorder/publishing/collector.h"

namespace vane::thermoscribe {
namespace {

struct CollectOptions {
  std::optional<recorder::Broker> broker;
  std::string brokerfile;
  std::string database;
  std::string name;
};

// Of this machine: another collector has another name, or the broker would take the two for one.
std::string UsualName() {
  char host[HOST_NAME_MAX + 1] = {};
  gethostname(host, sizeof host - 1);
  return std::string("thermoscribe-collect-") + host;
}

EExitCode RunCollect(CHost& host, const CollectOptions& options) {
  std::signal(SIGHUP, SIG_IGN);
  std::optional<recorder::CCollector> collector;
  try {
    collector.emplace(WithCredentials(*options.broker, options.brokerfile), options.database,
                      options.name.empty() ? UsualName() : options.name,
                      [&host](const std::string& text) { host.Note(text); });
  } catch (const recorder::CBrokerError& error) {
    throw CUsageError(error.what());
  }
  TellServiceManager("READY=1\n");
  while (!host.IsInterrupted()) {
    collector->Step();
    TellServiceManager("WATCHDOG=1\nSTATUS=" + std::to_string(collector->Totals().readings) +
                       " readings stored\n");
  }
  collector->Finish();
  const auto& counts = collector->Totals();
  host.Output().Record("collected",
                       {{"readings", counts.readings},
                        {"events", counts.events},
                        {"messages", counts.messages},
                        {"strange", counts.strange},
                        {"asked", counts.asked}},
                       std::to_string(counts.readings) + " readings and " +
                           std::to_string(counts.events) + " events were new, in " +
                           std::to_string(counts.messages) + " messages.");
  return EExitCode::DONE;
}

}  // namespace

Command CollectCommand() {
  const auto options = std::make_shared<CollectOptions>();
  Option broker = BrokerOption("broker", options->broker);
  broker.isrequired = true;
  Option into = TextOption("--into", "DATABASE", options->database,
                           "a PostgreSQL database: postgresql://USER@HOST/NAME");
  into.isrequired = true;
  return {
      .name = "collect",
      .brief = "Take published recordings into a database",
      .footer =
          R"(Takes what recorders publish under the prefix of BROKER into a PostgreSQL database, whose
tables it makes: thermoscribe.recording, .reading and .event. What comes twice is there
once; what is missing shows by its number and is asked for again. A second collector beside
it, under another --name, does no harm. A broker or a database that is away is waited for.

The password of the database comes from ~/.pgpass or $PGPASSFILE. SIGINT and SIGTERM end it
in order.

Examples:
  thermoscribe collect mqtt://broker.lab/thermometers --into postgresql://lab@db.lab/readings)",
      .options = {std::move(broker), std::move(into), BrokerFileOption(options->brokerfile),
                  TextOption("--name", "NAME", options->name,
                             "of its session with the broker, which keeps what comes\n"
                             "while it is away; without it, by the machine")},
      .body = [options](CHost& host) { return RunCollect(host, *options); }};
}

}  // namespace vane::thermoscribe
