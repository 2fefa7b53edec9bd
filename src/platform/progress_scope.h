#pragma once
// Opens the progress form for a scope and closes it on every way out (a run-time error in debug
// mode leaves by exception), unless it was closed earlier by hand.

#include "platform/platform.h"

#include <string>

namespace torquil {

class ProgressScope {
public:
    ProgressScope(ProgressSink& sink, const std::string& title, const std::string& text,
                  int maximum)
        : sink_(sink) {
        sink_.open(title, text, maximum);
    }
    ~ProgressScope() { close(); }
    ProgressScope(const ProgressScope&) = delete;
    ProgressScope& operator=(const ProgressScope&) = delete;

    void setValue(int value) { sink_.setValue(value); }
    void close() {
        if (open_) sink_.close();
        open_ = false;
    }

private:
    ProgressSink& sink_;
    bool open_ = true;
};

} // namespace torquil
