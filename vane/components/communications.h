// The communications component: the one road to the readout.
//
// Required by the library, implemented by an adapter (a serial line, a scripted double). The
// instrument object makes one through `CComponentFactory`, owns it, and is the only holder. A
// setting is addressed by the id of its command; the text behind an id is the component's own
// business.
//
// Lives on the thread of the instrument object. Every operation blocks until the exchange is over.
#pragma once

#include <cstdint>
#include <string>

#include "vane/components/commands.h"

namespace vane {

/// A serial port of the machine by its place, from 1. Values without a name are ordinary: the
/// component decides which device stands behind a number.
enum class EVanePortNumber : std::int32_t { PORT_NONE = 0, PORT_1 = 1, PORT_2 = 2 };

/// Line speeds in bit/s, in the order of the speed. `BR_INFRARED` is what `IRBaudRate` of the
/// instrument reports; a readout on a serial line has no infrared port and a component may refuse
/// it.
enum class EVaneBaudRate : std::int32_t {
  BR_INFRARED = -1,
  BR_NONE = 0,
  BR_300 = 1,
  BR_600 = 2,
  BR_1200 = 3,
  BR_2400 = 4,
  BR_4800 = 5,
  BR_9600 = 6,
  BR_19200 = 7,
  BR_38400 = 8,
  BR_57600 = 9,
  BR_115200 = 10,
};

/// The settings of the port. None of them touches the line: the port is opened by the first
/// exchange, and a change of port or speed takes effect at the next opening.
class CVaneCOMPort {
 public:
  virtual ~CVaneCOMPort() = default;

  virtual EVanePortNumber PortNumber() const = 0;
  virtual void SetPortNumber(EVanePortNumber value) = 0;

  virtual EVaneBaudRate BaudRate() const = 0;
  virtual void SetBaudRate(EVaneBaudRate value) = 0;

  /// True: the port is closed again after every exchange, so that other programs can use it.
  virtual bool AutoClose() const = 0;
  virtual void SetAutoClose(bool value) = 0;

  /// True: a reply with a byte above 127 counts as garbled. The reply to a conversion type query
  /// may hold the readout's ohm sign and is read with this off.
  virtual bool CheckNonAscii() const = 0;
  virtual void SetCheckNonAscii(bool value) = 0;

  /// How many times a command is sent before silence or a garbled reply is reported; 1 is the
  /// least. Each try waits for the component's own time-out.
  virtual std::int32_t ReadTries() const = 0;
  virtual void SetReadTries(std::int32_t value) = 0;
};

class CVaneCommunications {
 public:
  virtual ~CVaneCommunications() = default;

  /// The block of fields of the next command; the component reads it and never changes it.
  virtual CommandParams& params() = 0;

  virtual CVaneCOMPort& COMPort() = 0;

  /// Folder in which a component may keep data of its own.
  virtual void SetDataPath(const std::string& path) = 0;

  /// Which family of instruments is on the line; 9 is the T312B.
  virtual void SetInstrumentKind(std::int32_t kind) = 0;

  /// Sends the command of `id` with the fields of `params` and gives the reply's text, without any
  /// framing. With `id` `RAW`, `text` is the command itself. With `flag` false, silence gives the
  /// empty text; every other failure, and silence with `flag` true, raises `LibraryError`: an error
  /// of the component's own or the number and text of the instrument's refusal.
  virtual std::string ReadSetting(ECommand id, bool flag = true, const std::string& text = {}) = 0;

  /// Sends the command of `id` with the fields of `params`. Returns when the instrument has said
  /// that it took the command; fails like `ReadSetting` with `flag` true.
  virtual void WriteSetting(ECommand id) = 0;
};

}  // namespace vane
