// Pages for a browser and for paper: one file each, without scripts, that fetches nothing.
#pragma once

#include <string>

namespace vane::thermoscribe {

/// `text` as it stands between tags, or in quotes.
std::string Escaped(const std::string& text);

/// Up to the body, whose style it holds: facts in a list of definitions, tables, a footer.
std::string PageHead(const std::string& title);

inline constexpr const char* kPageEnd = "</body>\n</html>\n";

}  // namespace vane::thermoscribe
