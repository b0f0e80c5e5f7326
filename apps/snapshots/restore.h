// Restoring a snapshot: what a readout has otherwise than a file is written into it.
//
// What a program does, on an instrument whose channels are known, with an audience of its own:
//
//   Snapshot now;
//   if (TakeSnapshot(instrument, audience, now) != EEnd::DONE) return;
//   WriteSnapshotFile("bath.json", now);                       // keep it
//   const Snapshot file = ReadSnapshotFile("bath.json");       // or take another's file
//   CRestore restore(instrument, audience, file, now);
//   for (const Difference& one : restore.All()) Show(one);     // with WhyImpossible(one)
//   if (!restore.Problem().empty() || restore.Wanted().empty() || !IsSure()) return;
//   if (restore.OpenGates() != EEnd::DONE) return;             // asks for the passcode
//   const WriteAccount account = restore.Write();              // shows how far it is
//   if (account.end != EEnd::DONE) return Show(account.Text(audience.IsInterrupted()));
//   if (TakeSnapshot(instrument, audience, now) != EEnd::DONE) return;
//   for (const LostValue& one : restore.LostIn(now)) Show(one.Text());
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "apps/snapshots/audience.h"
#include "apps/snapshots/gates.h"
#include "apps/snapshots/snapshot.h"
#include "apps/snapshots/stages.h"

namespace vane::thermoscribe {

/// A value of the file that the readout does not have behind the restoring.
struct LostValue {
  Difference difference;  ///< the file's value at the left, the readout's at the right
  std::string reason;

  /// A sentence for the user.
  std::string Text() const;
};

/// At its end the groups of the passcode are open or shut as they were at its beginning.
/// The channels' objects have to be read anew where they live on.
class CRestore {
 public:
  /// `before` has just been taken from the instrument.
  CRestore(CVaneT312B& instrument, CAudience& audience, Snapshot file, Snapshot before);

  /// All that differs, the file's values at the left.
  const std::vector<Difference>& All() const { return all_; }
  /// What of it can be written.
  const std::vector<Difference>& Wanted() const { return wanted_; }
  /// Why the readout can't have a value of the file; empty where it can.
  std::string WhyImpossible(const Difference& difference) const;

  /// What is odd about the probes' records that are written with another conversion than the
  /// readout has, as sentences for the user: a warning, and no reason not to write them.
  std::vector<std::string> OddThings() const;

  /// Whether the file has a scanner's settings, and no scanner is attached.
  bool MissesScanner() const;

  /// Why nothing may be written: a value that only a readout can have got stands elsewhere too.
  /// Empty: all that is wanted may be.
  std::string Problem() const;

  /// The groups of the passcode that have to be open for it.
  std::vector<EGate> Gates() const;
  EEnd OpenGates() { return thermoscribe::OpenGates(instrument_, audience_, Gates()); }

  /// The whole write. Not longer than this object.
  std::vector<Stage> Stages();
  WriteAccount Write() { return WriteStages(Stages(), audience_); }

  /// What has not arrived in an instrument that was read again.
  std::vector<LostValue> LostIn(const Snapshot& after) const;

 private:
  bool Differs(SnapshotPlace::EPart part, std::int16_t number) const;
  std::vector<PropertyValue> WantedSettings() const;
  bool WriteProbe(std::int16_t number);
  bool WriteChannels();

  CVaneT312B& instrument_;
  CAudience& audience_;
  const CGatesKept gates_;
  const Snapshot file_;
  const Snapshot before_;
  const std::vector<Difference> all_;
  std::vector<Difference> wanted_;
};

}  // namespace vane::thermoscribe
