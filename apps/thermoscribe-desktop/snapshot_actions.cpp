#include "apps/thermoscribe-desktop/snapshot_actions.h"

#include <QFileDialog>
#include <QFileInfo>
#include <stdexcept>
#include <utility>

#include "adapters/qt/qt_text.h"
#include "apps/snapshots/restore.h"
#include "apps/snapshots/snapshot_file.h"
#include "apps/snapshots/value_text.h"
#include "apps/thermoscribe-desktop/desktop_audience.h"
#include "apps/thermoscribe-desktop/difference_window.h"
#include "vane/support/messages.h"

namespace vane::desktop {
namespace {

using thermoscribe::CRestore;
using thermoscribe::Difference;
using thermoscribe::EEnd;
using thermoscribe::LostValue;
using thermoscribe::PropertyValue;
using thermoscribe::Snapshot;

constexpr int kSettingsRuns = 1;  // beside one per probe
constexpr char kFilter[] = "Snapshots (*.json);;All files (*)";

QString NameOf(const QString& path) { return QFileInfo(path).fileName(); }

// A pipe would be waited for, and the windows with it.
void RefusePipes(const QString& path) {
  const QFileInfo file(path);
  if (file.exists() && !file.isFile()) throw std::runtime_error(FromQt(path) + " is no file.");
}

QString CountText(std::size_t count) {
  if (count == 0) return "Nothing differs.";
  return count == 1 ? QString("1 value differs.") : QString("%1 values differ.").arg(count);
}

QString TakenText(const Snapshot& snapshot) {
  return snapshot.taken.empty() ? QString() : " of " + ToQt(snapshot.taken).replace('T', ' ');
}

// What the file says of its readout, where this one says otherwise; empty: it may be the same.
QString OtherReadout(const Snapshot& file, const Snapshot& now) {
  QStringList lines;
  for (const PropertyValue& one : file.readout) {
    if (one.row->group != thermoscribe::EPropertyGroup::READOUT) continue;
    for (const PropertyValue& other : now.readout) {
      if (other.row != one.row || other.value == one.value) continue;
      lines << ToQt(std::string(one.row->words) + ": \"" + thermoscribe::TextOf(one.value) +
                    "\" in the file, \"" + thermoscribe::TextOf(other.value) + "\" here");
    }
  }
  return lines.isEmpty() ? QString()
                         : "\nThe file is of another readout. " + lines.join("; ") + ".";
}

}  // namespace

CSnapshotActions::CSnapshotActions(CDesktopHost& host, QWidget& parent,
                                   std::function<void(const QString&)> told)
    : host_(host), parent_(parent), told_(std::move(told)) {}

bool CSnapshotActions::Take(CDesktopAudience& audience, const char* title, Snapshot& snapshot) {
  audience.BeginProgress(title, kSettingsRuns + CVaneT312B::NumProbes());
  const EEnd end = thermoscribe::TakeSnapshot(host_.Instrument(), audience, snapshot);
  audience.EndProgress();
  return end == EEnd::DONE;
}

bool CSnapshotActions::Take(const char* title, Snapshot& snapshot) {
  CDesktopAudience audience(host_, parent_);
  return Take(audience, title, snapshot);
}

bool CSnapshotActions::Read(const QString& path, Snapshot& snapshot) {
  try {
    RefusePipes(path);
    snapshot = thermoscribe::ReadSnapshotFile(FromQt(path));
    return true;
  } catch (const std::runtime_error& error) {
    ShowMessage(error.what());
    return false;
  }
}

void CSnapshotActions::Save() {
  const QString path =
      QFileDialog::getSaveFileName(&parent_, "Save a snapshot", "snapshot.json", kFilter);
  if (path.isEmpty()) return;
  host_.Run("saving a snapshot", [&] {
    CDesktopAudience audience(host_, parent_);
    Snapshot snapshot;
    if (!Take(audience, "Saving a snapshot", snapshot)) return told_("Nothing was saved.");
    try {
      RefusePipes(path);
      thermoscribe::WriteSnapshotFile(FromQt(path), snapshot);
    } catch (const std::runtime_error& error) {
      return ShowMessage(error.what());
    }
    told_("The settings were saved in " + path + ".");
  });
}

void CSnapshotActions::Compare() {
  const QString path =
      QFileDialog::getOpenFileName(&parent_, "Compare with a snapshot", {}, kFilter);
  if (path.isEmpty()) return;
  host_.Run("comparing with a snapshot", [&] {
    CDesktopAudience audience(host_, parent_);
    Snapshot file;
    Snapshot now;
    if (!Read(path, file) || !Take(audience, "Comparing with a snapshot", now)) return;
    const std::vector<Difference> differences = thermoscribe::Differences(file, now);
    ShowDifferences(&parent_, {.title = "Compare with a snapshot",
                               .intro = NameOf(path) + TakenText(file) + " and the readout: " +
                                        CountText(differences.size()) + OtherReadout(file, now),
                               .left = NameOf(path),
                               .right = "Readout",
                               .rows = differences});
  });
}

void CSnapshotActions::CompareFiles() {
  const QString path =
      QFileDialog::getOpenFileName(&parent_, "Compare: the first snapshot", {}, kFilter);
  if (path.isEmpty()) return;
  const QString other = QFileDialog::getOpenFileName(&parent_, "Compare: the second snapshot",
                                                     QFileInfo(path).path(), kFilter);
  if (other.isEmpty()) return;
  Snapshot left;
  Snapshot right;
  if (!Read(path, left) || !Read(other, right)) return;
  const std::vector<Difference> differences = thermoscribe::Differences(left, right);
  ShowDifferences(&parent_, {.title = "Compare two snapshots",
                             .intro = NameOf(path) + TakenText(left) + " and " + NameOf(other) +
                                      TakenText(right) + ": " + CountText(differences.size()),
                             .left = NameOf(path),
                             .right = NameOf(other),
                             .rows = differences});
}

void CSnapshotActions::Restore() {
  const QString path = QFileDialog::getOpenFileName(&parent_, "Restore a snapshot", {}, kFilter);
  if (path.isEmpty()) return;
  host_.Run("restoring a snapshot", [&] { RestoreFrom(path); });
}

void CSnapshotActions::RestoreFrom(const QString& path) {
  CDesktopAudience audience(host_, parent_);
  Snapshot file;
  Snapshot now;
  if (!Read(path, file) || !Take(audience, "Reading the readout", now)) return;
  QString intro = NameOf(path) + TakenText(file) + " and the readout: ";
  const QString other = OtherReadout(file, now);
  CRestore restore(host_.Instrument(), audience, std::move(file), std::move(now));
  intro += CountText(restore.All().size()) + other;
  if (const std::string problem = restore.Problem(); !problem.empty()) {
    return ShowMessage(problem + "\r" + thermoscribe::NothingWrittenText(false));
  }
  if (restore.MissesScanner()) {
    intro +=
        "\nThe file has a scanner's settings, and no scanner is attached: the rest is restored.";
  }
  for (const std::string& text : restore.OddThings()) intro += "\nOdd, " + ToQt(text);
  const std::size_t count = restore.Wanted().size();
  const bool goeson = ShowDifferences(
      &parent_,
      {.title = "Restore a snapshot",
       .intro = intro,
       .left = NameOf(path),
       .right = "Readout",
       .rows = restore.All(),
       .note =
           [&](const Difference& one) {
             const std::string why = restore.WhyImpossible(one);
             return why.empty() ? "is written" : "stays: " + why;
           },
       .accept = count == 0 ? QString()
                            : QString(count == 1 ? "&Write this value" : "&Write these %1 values")
                                  .replace("%1", QString::number(count))});
  if (!goeson) return;
  if (restore.OpenGates() != EEnd::DONE) {
    return told_(ToQt(thermoscribe::NothingWrittenText(audience.IsInterrupted())));
  }
  audience.BeginProgress("Restoring a snapshot", static_cast<int>(restore.Stages().size()));
  const thermoscribe::WriteAccount account = restore.Write();
  audience.EndProgress();
  if (account.end != EEnd::DONE) {
    return audience.Say(account.Text(audience.IsInterrupted()) + " Restore again to complete it.");
  }
  Snapshot after;
  if (!Take(audience, "Reading the readout again", after)) {
    return audience.Say("Everything was written, but what arrived could not be read.");
  }
  const std::vector<LostValue> lost = restore.LostIn(after);
  const QString done = QString("Restored %1 values.").arg(count);
  told_(done);
  if (lost.empty()) return;
  std::vector<Difference> rows;
  for (const LostValue& one : lost) rows.push_back(one.difference);
  ShowDifferences(&parent_, {.title = "Restore a snapshot",
                             .intro = done + " These did not arrive:",
                             .left = NameOf(path),
                             .right = "Readout",
                             .rows = rows,
                             .note = [&](const Difference& one) {
                               for (const LostValue& value : lost) {
                                 if (value.difference.place == one.place) return value.reason;
                               }
                               return std::string();
                             }});
}

}  // namespace vane::desktop
