#include "vane/instrument/t312b.h"
#include "vane/support/long_run.h"
#include "vane/support/text_table.h"

namespace vane {

bool CVaneT312B::QueryChannelInfo() {
  return Exchange("QueryChannelInfo", [&] {
    return RunLong(components_, kReadRun, std::nullopt, [&](CLongRun& run) {
      if (!ProveInstrument(run, true)) return false;
      run.Start(SubstituteParams(ResourceText(105), Model()), PercentShare(3));
      run.Advance();
      return run.Steps({
          {ResourceText(127), [&] { return QueryNumChannels(); }},
          {ResourceText(150), [&] { return QueryNumModules(); }},
      });
    });
  });
}

}  // namespace vane
