// Snapshots in the desktop program: everything that the readout keeps, saved in a file, compared
// with one, and restored from one. The files are those of `thermoscribe settings`.
#pragma once

#include <QString>
#include <functional>

#include "apps/snapshots/snapshot.h"
#include "apps/thermoscribe-desktop/desktop_host.h"

class QWidget;

namespace vane::desktop {

class CDesktopAudience;

class CSnapshotActions {
 public:
  /// `told` gets a short notice of what became of it. Both outlive it.
  CSnapshotActions(CDesktopHost& host, QWidget& parent, std::function<void(const QString&)> told);

  // Each asks for its files. All but the comparison of two files need a readout.

  void Save();
  void Compare();
  void CompareFiles();
  void Restore();

  /// Within `CDesktopHost::Run`: reads it all, under `title`. False when it was stopped or not read
  /// well, which the user knows.
  bool Take(const char* title, thermoscribe::Snapshot& snapshot);

 private:
  bool Take(CDesktopAudience& audience, const char* title, thermoscribe::Snapshot& snapshot);
  /// False when there is none, which the user knows.
  bool Read(const QString& path, thermoscribe::Snapshot& snapshot);
  void RestoreFrom(const QString& path);

  CDesktopHost& host_;
  QWidget& parent_;
  const std::function<void(const QString&)> told_;
};

}  // namespace vane::desktop
