// A host with a menu of its own: it fills lists of choices into its own list control, here lines of
// text, and takes the code of the chosen entry, never its text. Without a choice it prints them.
//   own_lists DEVICE [UNIT'S NUMBER IN THE LIST]
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "adapters/headless/headless_factory.h"
#include "adapters/headless/headless_platform.h"
#include "vane/components/ui.h"
#include "vane/instrument/t312b.h"

namespace {

class CLines final : public vane::ui::CListControl {
 public:
  void Clear() override {
    lines_.clear();
    selected_ = -1;
  }
  void AddItem(const std::string& text) override { lines_.push_back({text}); }
  std::int32_t NewIndex() const override { return ListCount() - 1; }
  std::int32_t ListCount() const override { return static_cast<std::int32_t>(lines_.size()); }
  std::int32_t ItemData(std::int32_t index) const override { return At(index).code; }
  void SetItemData(std::int32_t index, std::int32_t value) override {
    lines_.at(static_cast<std::size_t>(index)).code = value;
  }
  std::int32_t ListIndex() const override { return selected_; }
  void SetListIndex(std::int32_t index) override { selected_ = index; }

  void Print(const char* title) const {
    std::cout << title << '\n';
    for (std::int32_t i = 0; i < ListCount(); ++i) {
      std::cout << "  " << i + 1 << "  " << At(i).text << '\n';
    }
  }

 private:
  struct Line {
    std::string text;
    std::int32_t code = 0;
  };

  const Line& At(std::int32_t index) const { return lines_.at(static_cast<std::size_t>(index)); }

  std::vector<Line> lines_;
  std::int32_t selected_ = -1;
};

void Run(vane::CVaneT312B& readout, const char* choice) {
  readout.SetRegistry(std::make_shared<vane::CEmptyRegistry>());
  readout.InitializeCommunications();
  if (!readout.QueryInfo()) throw std::runtime_error("The readout can't be used.");
  CLines list;
  if (choice == nullptr) {
    readout.FillChannelList(list);
    list.Print("Channels");
    readout.FillUnitsList(list);
    list.Print("Units");
    return;
  }
  readout.FillUnitsList(list);
  const std::int32_t number = std::atoi(choice);
  if (number < 1 || number > list.ListCount()) {
    throw std::runtime_error(std::string("The list has no unit ") + choice + ".");
  }
  readout.SetUnits(vane::ET312BUnits{list.ItemData(number - 1)});
  if (!readout.UpdateUnits()) throw std::runtime_error("The units can't be set.");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2 && argc != 3) {
    std::cerr << "Usage: own_lists DEVICE [NUMBER]\n";
    return 2;
  }
  const auto line = std::make_shared<vane::LineSettings>();
  line->devices[vane::EVanePortNumber::PORT_1] = argv[1];
  vane::CHeadlessPlatform platform;
  vane::CHeadlessFactory factory(line);
  const vane::Components components{platform, factory};
  const vane::CInstalledComponents installed(components);
  int status = 0;
  try {
    vane::CVaneT312B readout(components);
    Run(readout, argc == 3 ? argv[2] : nullptr);
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    status = 1;
  }
  for (const vane::HeadlessMessage& message : platform.TakeMessages()) {
    std::cerr << message.text << '\n';
  }
  return status;
}
