#pragma once
// The cause of a failed read or write in a few words, and what the user can do about it. The
// advice goes on the line after a message's own text, so that a terse message ("... reinstall
// ... from the KRB CD.") is not taken for the whole story.

#include <string>
#include <string_view>
#include <system_error>

namespace torquil {

// The cause in a few words: "permission denied", "disk full", "file in use", "read-only file
// system", else the system's own text.
[[nodiscard]] std::string describeCause(const std::error_code& cause);

enum class Access { Reading, Writing };

// What to do about a cause describeCause named: one sentence, or empty when the cause has no advice
// beyond its own words.
[[nodiscard]] std::string causeAdvice(std::string_view cause, Access access);

} // namespace torquil
