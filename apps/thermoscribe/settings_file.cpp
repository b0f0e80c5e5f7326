#include "apps/thermoscribe/settings_file.h"

#include "apps/thermoscribe/host.h"

namespace vane::thermoscribe {

EExitCode ConnectAndTake(CHost& host, Snapshot& snapshot) {
  EExitCode code = EExitCode::DONE;
  const auto readsettings = [&] {
    code = host.ReadSettings();
    return code == EExitCode::DONE;
  };
  const EEnd end = TakeSnapshot(host.Instrument(), host, readsettings, snapshot);
  return code != EExitCode::DONE ? code : host.CodeOf(end);
}

void ShowDifferences(CHost& host, const std::vector<Difference>& differences, const char* lefttitle,
                     const char* righttitle) {
  std::vector<Row> rows;
  for (const auto& [place, left, right] : differences) rows.push_back({place.Text(), left, right});
  host.Output().Table("difference",
                      {{"place", "Place"}, {"left", lefttitle}, {"right", righttitle}}, rows,
                      "Nothing differs.");
}

}  // namespace vane::thermoscribe
