#pragma once
// Run-time errors: a routine keeps going after an error and looks at the pending error number at
// its end; in debug mode the error stops the operation instead and reaches the top level as an
// exception.

#include <stdexcept>
#include <string>
#include <utility>

namespace torquil {

// Error numbers, as the messages show them ("Run-time error '9':").
namespace err {
inline constexpr int None = 0;
inline constexpr int InvalidCall = 5;
inline constexpr int Overflow = 6;
inline constexpr int SubscriptOutOfRange = 9;
inline constexpr int BadFileNameOrNumber = 52;
inline constexpr int FileNotFound = 53;
inline constexpr int DiskFull = 61;
inline constexpr int BadRecordNumber = 63;
inline constexpr int PathFileAccess = 75;
} // namespace err

// Text of an error number, as shown to the user ("Subscript out of range").
[[nodiscard]] std::string errorDescription(int number);

// Thrown in debug mode; carries the error number and where it was raised.
class RuntimeError : public std::runtime_error {
public:
    RuntimeError(int number, const std::string& where);
    [[nodiscard]] int number() const { return number_; }

private:
    int number_;
};

// The sticky "Err" of one session. Outside debug mode the first raised error stays pending until
// cleared; in debug mode raise() throws.
class ErrorState {
public:
    explicit ErrorState(bool debugMode = false) : debugMode_(debugMode) {}

    void raise(int number, const std::string& where = {});
    [[nodiscard]] int pending() const { return pending_; }
    [[nodiscard]] bool hasPending() const { return pending_ != err::None; }
    void clear() { pending_ = err::None; }
    [[nodiscard]] const std::string& where() const { return where_; }
    // Replaces the pending error as it stands (number and place), for PendingErrorScope.
    void restore(int number, std::string where) {
        pending_ = number;
        where_ = std::move(where);
    }

    [[nodiscard]] bool debugMode() const { return debugMode_; }

private:
    bool debugMode_;
    int pending_ = err::None;
    std::string where_;
};

// A routine that starts from no pending error without dropping its caller's: the caller's pending
// error is set aside for the scope and comes back at its end, where it stays the first error
// (and so the one reported). Without one pending, an error raised in the scope stays pending.
class PendingErrorScope {
public:
    explicit PendingErrorScope(ErrorState& errors)
        : errors_(errors), number_(errors.pending()), where_(errors.where()) {
        errors_.clear();
    }
    ~PendingErrorScope() {
        if (number_ != err::None) errors_.restore(number_, std::move(where_));
    }
    PendingErrorScope(const PendingErrorScope&) = delete;
    PendingErrorScope& operator=(const PendingErrorScope&) = delete;

private:
    ErrorState& errors_;
    int number_;
    std::string where_;
};

} // namespace torquil
