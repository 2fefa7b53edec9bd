#pragma once
// What the user can do about a failed read or write, from the cause describeCause named
// (base/atomic_file.h). Goes on the line after a message's own text, so that a terse message
// ("... reinstall ... from the KRB CD.") is not taken for the whole story.

#include <string>
#include <string_view>

namespace torquil {

enum class Access { Reading, Writing };

// One sentence, or empty when the cause has no advice beyond its own words.
[[nodiscard]] std::string causeAdvice(std::string_view cause, Access access);

} // namespace torquil
