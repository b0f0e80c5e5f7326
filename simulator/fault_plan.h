// Faults of the line, planned ahead so that a failing run can be repeated.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vane::simulator {

enum class EFault {
  DROP,      ///< the command is obeyed, its answer is lost
  DELAY,     ///< the answer comes after a while, still in time
  GARBLE,    ///< two bytes of the answer are changed
  SPLIT,     ///< the answer comes in two pieces with a pause between them
  LATE,      ///< the answer comes when nobody waits for it any more
  REFUSE,    ///< the command is refused, as busy or with a number of the plan, and not obeyed
  HANGUP,    ///< the line is lost, the command is not obeyed; a new line comes after a while
  POWER,     ///< the readout is switched off, and on again after a while; the line is lost as well
  IDENTIFY,  ///< the answer is the identification, the command is not obeyed
  ANSWER,    ///< the answer is a text of the plan, the command is not obeyed
  OVERLONG,  ///< the answer is longer than any line, the command is not obeyed
};

/// When a fault strikes, and which.
struct FaultRule {
  enum class EWhen { AT, EVERY, WRITE, CHANCE };

  EWhen when = EWhen::AT;
  /// `AT`: that exchange, from 1; `EVERY`: each multiple of it; `WRITE`: that one of the
  /// commands that change something, from 1.
  std::uint64_t number = 1;
  double chance = 0;  ///< `CHANCE`: 0 to 1
  EFault fault = EFault::DROP;
  double seconds = 0;        ///< how long, for the kinds that take time
  std::int32_t refusal = 0;  ///< the number of a refusal
  std::string answer;        ///< of `ANSWER`; may be empty
};

/// Understands "at=3:drop", "every=10:late=2", "write=2:answer=1e400", "p=0.01:garble". Raises
/// `std::invalid_argument` with a text for the user.
FaultRule ParseFaultRule(std::string_view text);

/// As it is written in a plan.
std::string_view FaultName(EFault fault);

class CFaultPlan {
 public:
  CFaultPlan(std::vector<FaultRule> rules, std::uint64_t seed)
      : rules_(std::move(rules)), seed_(seed) {}

  /// The first rule that strikes at `exchange` (from 1); null for none. `write` counts the commands
  /// that change something, from 1; 0 when this one doesn't. The same seed and numbers always give
  /// the same.
  const FaultRule* Strike(std::uint64_t exchange, std::uint64_t write) const;

  /// `line` with two neighbouring bytes changed. A check value of 16 bits finds every such change,
  /// and no byte becomes a line end.
  std::string Garble(std::string line, std::uint64_t exchange) const;

 private:
  std::vector<FaultRule> rules_;
  std::uint64_t seed_;
};

}  // namespace vane::simulator
