#pragma once
// Words on a command line: every program of the project uses these rules for a word that stands
// where a file or folder name belongs.

#include <string>

namespace torquil {

// True for a word that looks like an option ("--force", "-x"): taken as a file name it would
// make a file of that name. "-" alone is not such a word.
[[nodiscard]] bool looksLikeOption(const std::string& word);

// Why `word`, given where a file or folder name belongs, is refused; an empty string when it is
// a name. Callers put the option's name before it. A name beginning with "-" stays possible as
// "./-name".
[[nodiscard]] std::string optionWordAsPathMessage(const std::string& word);

} // namespace torquil
