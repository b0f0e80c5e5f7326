// A text field on the screen, whose keys, clipboard and caret all go through the door of the user.
#pragma once

#include <memory>

#include "adapters/qt/qt_peers.h"

namespace vane {

std::unique_ptr<CControlPeer> MakeFieldPeer(ui::CTextField& control, ui::CUser& user,
                                            QWidget* parent);

}  // namespace vane
