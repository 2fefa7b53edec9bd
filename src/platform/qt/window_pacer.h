#pragma once
// How often a long loop may ask the window system for anything. The core reports progress and
// lets pending events run after every row it reads (and tests the Stop request there), thousands
// of times a load; painting the progress bar and running the event loop that often costs far
// more than the load itself. A pacer grants a turn at most once per interval and refuses the
// calls in between, which then return at once.

#include <chrono>
#include <functional>
#include <optional>

namespace torquil {

class WindowPacer {
public:
    using TimePoint = std::chrono::steady_clock::time_point;
    using Clock = std::function<TimePoint()>;
    // Fast enough that the progress bar moves smoothly and a click on Stop is felt at once.
    static constexpr std::chrono::milliseconds kInterval{50};

    // True when the window system may be asked now (the first call always is); the next turn
    // comes kInterval later.
    [[nodiscard]] bool takeTurn();
    // Turns granted so far.
    [[nodiscard]] int turns() const { return turns_; }
    // Tests replace the steady clock to count turns without depending on the machine's speed.
    void setClock(Clock clock) { clock_ = std::move(clock); }

private:
    Clock clock_ = [] { return std::chrono::steady_clock::now(); };
    std::optional<TimePoint> last_;
    int turns_ = 0;
};

} // namespace torquil
