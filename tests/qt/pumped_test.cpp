// The windows' line: the exchange runs beside the event loop, on the real line to a simulated
// readout.
#include <gmock/gmock.h>
#include <qpa/qwindowsysteminterface.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTest>
#include <QTimer>
#include <iostream>

#include "adapters/headless/headless_factory.h"
#include "adapters/headless/headless_platform.h"
#include "adapters/qt/pumped_communications.h"
#include "adapters/serial/line_errors.h"
#include "simulator/line_server.h"
#include "vane/components/registry.h"
#include "vane/instrument/t312b.h"

namespace vane {
namespace {

using testing::HasSubstr;

class CPumpedFactory final : public CHeadlessFactory {
 public:
  using CHeadlessFactory::CHeadlessFactory;
  std::unique_ptr<CVaneCommunications> MakeCommunications() override {
    return std::make_unique<CPumpedCommunications>(CHeadlessFactory::MakeCommunications());
  }
};

// A readout with windows in front.
class PumpedLine : public testing::Test {
 protected:
  void Connect(const std::string& options) {
    line_.emplace(simulator::ParseOptions(options));
    line_->Start();
    settings_->devices[EVanePortNumber::PORT_1] = line_->Path();
  }

  std::unique_ptr<CVaneCommunications> MakeLine() {
    auto made = factory_.MakeCommunications();
    made->SetInstrumentKind(9);
    made->COMPort().SetPortNumber(EVanePortNumber::PORT_1);
    made->COMPort().SetReadTries(1);
    return made;
  }

  std::optional<simulator::CSimulatedLine> line_;
  std::shared_ptr<LineSettings> settings_ = std::make_shared<LineSettings>();
  CPumpedFactory factory_{settings_};
  CHeadlessPlatform platform_;
  Components components_{platform_, factory_};
};

LibraryError ErrorOf(const std::function<void()>& body) {
  try {
    body();
  } catch (const LibraryError& error) {
    return error;
  }
  return {0, "", "no error"};
}

TEST_F(PumpedLine, LateAnswersDelayNoTimer) {
  Connect("--no-scanner --fault every=1:delay=0.3");
  const auto line = MakeLine();
  QElapsedTimer clock;
  qint64 longest = 0;
  int beats = 0;
  QTimer timer;
  timer.setTimerType(Qt::PreciseTimer);
  QObject::connect(&timer, &QTimer::timeout, [&] {
    longest = std::max(longest, clock.restart());
    ++beats;
  });
  clock.start();
  timer.start(10);
  for (int i = 0; i < 4; ++i)
    EXPECT_THAT(line->ReadSetting(ECommand::READ_IDENTIFICATION), HasSubstr("T312B"));
  std::cout << "longest gap of a timer of 10 ms: " << longest << " ms in " << beats << " beats\n";
  EXPECT_GT(beats, 60);
  EXPECT_LT(longest, 100);
}

TEST_F(PumpedLine, WhatTheUserDoesWaitsAndIsNotLost) {
  Connect("--no-scanner --fault every=1:delay=0.2");
  const auto line = MakeLine();
  QLineEdit field;
  field.show();
  field.setFocus();
  QCoreApplication::processEvents();
  std::string during;
  // As the system of windows reports it.
  QTimer::singleShot(50, [&] {
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease})
      QWindowSystemInterface::handleKeyEvent(field.windowHandle(), type, Qt::Key_A, {}, "a");
  });
  QTimer::singleShot(120, [&] { during = field.text().toStdString() + "."; });
  line->ReadSetting(ECommand::READ_IDENTIFICATION);
  EXPECT_EQ(".", during);
  EXPECT_EQ("", field.text().toStdString());
  QCoreApplication::processEvents();
  EXPECT_EQ("a", field.text().toStdString());
}

TEST_F(PumpedLine, SecondExchangeIsRefusedAndTheFirstEndsWell) {
  Connect("--no-scanner --fault every=1:delay=0.2");
  const auto line = MakeLine();
  LibraryError nested(0, "", "");
  LibraryError fields(0, "", "");
  QTimer::singleShot(20, [&] {
    nested = ErrorOf([&] { line->ReadSetting(ECommand::READ_INTERVAL); });
    fields = ErrorOf([&] { line->params() = {}; });
    QCoreApplication::quit();  // ends the program's loop, and no exchange
  });
  EXPECT_THAT(line->ReadSetting(ECommand::READ_IDENTIFICATION), HasSubstr("T312B"));
  EXPECT_EQ(ERR_LINE_BUSY, nested.Number());
  EXPECT_EQ(ERR_LINE_BUSY, fields.Number());
  EXPECT_EQ(1U, line_->Exchanges());
  EXPECT_THAT(line->ReadSetting(ECommand::READ_IDENTIFICATION), HasSubstr("T312B"));
}

TEST_F(PumpedLine, ErrorsComeThroughAsTheyAre) {
  Connect("--no-scanner --fault at=1:drop --fault at=2:refuse=57 --fault at=3:garble");
  settings_->timeout = std::chrono::milliseconds(100);
  const auto line = MakeLine();
  const auto read = [&] { line->ReadSetting(ECommand::READ_IDENTIFICATION); };
  EXPECT_EQ(ERR_LINE_NO_ANSWER, ErrorOf(read).Number());
  EXPECT_EQ(57, ErrorOf(read).Number());
  EXPECT_TRUE(settings_->lastfailure.refused);
  EXPECT_EQ(ERR_LINE_GARBLED, ErrorOf(read).Number());
  EXPECT_NO_THROW(read());
}

TEST_F(PumpedLine, WholeRunOfTheLibraryGoesOverIt) {
  Connect("--scanner");
  const CInstalledComponents installed(components_);
  CVaneT312B instrument(components_);
  instrument.SetRegistry(std::make_shared<CEmptyRegistry>());
  instrument.InitializeCommunications({}, EVanePortNumber::PORT_1, EVaneBaudRate::BR_9600);
  ASSERT_TRUE(instrument.InitializeCommunicationSettings());
  ASSERT_TRUE(instrument.QueryChannelInfo());
  ASSERT_TRUE(instrument.QueryInfo(nullptr));
  EXPECT_THAT(instrument.Identification(), HasSubstr("T312B"));
}

}  // namespace
}  // namespace vane
