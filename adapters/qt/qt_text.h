// Texts of the library, which are UTF-8, as the toolkit has them, and back.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace vane {

QString ToQt(std::string_view text);
std::string FromQt(const QString& text);

}  // namespace vane
