#include "base/argument_words.h"

namespace torquil {

bool looksLikeOption(const std::string& word) {
    return word.size() > 1 && word.front() == '-';
}

std::string optionWordAsPathMessage(const std::string& word) {
    if (!looksLikeOption(word)) return {};
    return "\"" + word + "\" looks like an option, not a file or folder name (write ./" + word +
           " for a file of that name)";
}

} // namespace torquil
