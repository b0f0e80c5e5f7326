// The desktop program records: its windows, a lost line, other readouts, and the end.

#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>

#include "recorder/recording_reader.h"
#include "tests/qt/desktop_fixture.h"

namespace vane::desktop {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

class Recording : public Window {
 protected:
  // From the menu, into `name` in the test's folder; gives what a box has said against it.
  std::string Record(const QString& name) {
    std::string told;
    Through([this] { Trigger("Record to a file..."); },
            {[&](QWidget& dialog) { GiveFile(dialog, folder_.filePath(name)); },
             [&](QWidget& box) {
               if (const auto* const message = qobject_cast<QMessageBox*>(&box)) {
                 told = FromQt(message->text());
               }
               box.close();
             }});
    return told;
  }
  QString Label() { return window_->findChild<QLabel*>("recording")->text(); }
  // In the real pace of a readout.
  bool Comes(const std::function<bool()>& holds) { return QTest::qWaitFor(holds, 20'000); }

  std::vector<recorder::Reading> Readings(const QString& name) {
    std::vector<recorder::Reading> readings;
    recorder::CRecordingReader reader(FromQt(folder_.filePath(name)));
    reader.ForEachReading(
        {}, [&](const recorder::Reading& one, std::int64_t) { readings.push_back(one); });
    return readings;
  }
  std::vector<std::string> Events(const QString& name) {
    std::vector<std::string> kinds;
    recorder::CRecordingReader reader(FromQt(folder_.filePath(name)));
    reader.ForEachEvent(
        {}, [&](const recorder::Event& one, std::int64_t) { kinds.push_back(one.kind); });
    return kinds;
  }
};

TEST_F(Recording, WhatIsShownIsOnTheDiskAndALostLineIsAnEvent) {
  Plug("--noise 0.5");
  ASSERT_TRUE(window_->Connect(There()));
  ASSERT_EQ(Record("bath.t312"), "");
  EXPECT_THAT(FromQt(Label()), HasSubstr("Recording bath.t312: "));
  const std::int64_t before = Count(12);
  // At every moment the file has what the view counts.
  ASSERT_TRUE(Comes([&] { return Count(12) >= before + 2; }));
  const auto shown = [&] { return window_->Measuring().LatestOf(12).text; };
  EXPECT_EQ(shown(), Readings("bath.t312").back().text);
  EXPECT_EQ(Readings("bath.t312").back().channel, 12);

  Unplug();
  ASSERT_TRUE(Comes([&] { return window_->Measuring().State() == CMeasuring::EState::LOST; }));
  EXPECT_TRUE(Tells("The readout can't be reached"));
  Plug("--noise 0.5 --seed 2");
  const std::int64_t lost = Count(12);
  ASSERT_TRUE(Comes([&] {
    window_->Measuring().TryNow();
    return Count(12) > lost;
  }));
  Trigger("End the recording");
  EXPECT_EQ(Label(), "");
  EXPECT_TRUE(Tells("bath.t312 has"));
  const auto readings = Readings("bath.t312");
  for (std::size_t i = 0; i < readings.size(); ++i) {
    EXPECT_EQ(readings[i].sequence, static_cast<std::int64_t>(i) + 1);
  }
  EXPECT_EQ(std::ranges::count(readings, 12, &recorder::Reading::channel) + before, Count(12));
  EXPECT_THAT(Events("bath.t312"),
              testing::ElementsAre("started", "unscanned", "lost", "reconnected", "stopped"));
  // The view goes on without it.
  const std::int64_t ended = Count(12);
  ASSERT_TRUE(Comes([&] { return Count(12) > ended; }));
  EXPECT_EQ(Readings("bath.t312").size(), readings.size());

  // And with it again; closing the window ends it.
  ASSERT_EQ(Record("bath.t312"), "");
  ASSERT_TRUE(Comes([&] { return Readings("bath.t312").size() > readings.size(); }));
  window_->close();
  window_.reset();
  EXPECT_EQ(Events("bath.t312").back(), "stopped");
  EXPECT_THAT(Events("bath.t312"), Contains("continued"));
}

TEST_F(Recording, AnotherReadoutsFileAndOneInUseAreRefused) {
  Plug("--no-scanner --noise 0.5");
  ASSERT_TRUE(window_->Connect(There()));
  ASSERT_EQ(Record("bath.t312"), "");
  const std::string file = FromQt(folder_.filePath("bath.t312"));
  EXPECT_THROW(recorder::CStore{file}, recorder::CStoreError) << "two would write it";
  Trigger("End the recording");
  const auto events = Events("bath.t312");

  Plug("--no-scanner --firmware 5.10");
  ASSERT_TRUE(window_->Connect(There()));
  EXPECT_THAT(Record("bath.t312"), HasSubstr("and not \"T312B, 5.03\""));
  EXPECT_EQ(Label(), "");
  EXPECT_EQ(Events("bath.t312"), events);

  // Another one that comes while it goes on ends it, and says so; the view looks on by itself.
  ASSERT_EQ(Record("other.t312"), "");
  Unplug();
  ASSERT_TRUE(Comes([&] { return window_->Measuring().State() == CMeasuring::EState::LOST; }));
  Plug("--no-scanner");
  std::string told;
  Through(
      [&] {
        EXPECT_TRUE(Comes([&] {
          window_->Measuring().TryNow();
          return !window_->Measuring().IsRecording();
        }));
      },
      {[&](QWidget& box) {
        told = FromQt(qobject_cast<QMessageBox*>(&box)->text());
        box.close();
      }});
  EXPECT_THAT(told, HasSubstr("which the recording is of"));
  EXPECT_EQ(Events("other.t312").back(), "stopped");
}

}  // namespace
}  // namespace vane::desktop
