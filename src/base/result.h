#pragma once
// The one shape of everything that can fail: a value, or an error that carries its message.
// `message` says what failed in the user's words ("Cannot save FOO.G24"), `cause` why ("disk
// full"). An operation whose callers branch on the kind of failure uses an error type derived
// from Failure that adds what they need; it is still one template and one convention.
//
//     Result<std::vector<std::uint8_t>> bytes = readWholeFile(path);
//     if (!bytes) return fail(bytes.message());
//     use(*bytes);
//
// The class is [[nodiscard]]: a result is looked at, or ignored in plain sight with
// `std::ignore = f();` and a word on why.

#include <cassert>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>

namespace torquil {

struct Failure {
    std::string message; // what failed, as the user is told
    std::string cause;   // why, in a few words; may be empty

    // The message, with the cause beside it when there is one: "Cannot save X (disk full)".
    [[nodiscard]] std::string text() const {
        return cause.empty() ? message : message + " (" + cause + ")";
    }
};

// A failure with its message and cause, for `return fail("...")` in any Result<T>.
[[nodiscard]] inline Failure fail(std::string message, std::string cause = {}) {
    return Failure{std::move(message), std::move(cause)};
}

template <class T, class E = Failure> class [[nodiscard]] Result {
    static_assert(std::is_base_of_v<Failure, E>, "a result's error carries a message");

public:
    // Success.
    Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}
    // Failure.
    Result(E error) : state_(std::in_place_index<1>, std::move(error)) {}
    // A plain failure given to a result with a richer error type: the rest is default.
    Result(Failure failure) requires(!std::is_same_v<E, Failure>)
        : state_(std::in_place_index<1>, E{}) {
        static_cast<Failure&>(std::get<1>(state_)) = std::move(failure);
    }

    [[nodiscard]] bool ok() const { return state_.index() == 0; }
    explicit operator bool() const { return ok(); }

    [[nodiscard]] T& value() & {
        assert(ok());
        return std::get<0>(state_);
    }
    [[nodiscard]] const T& value() const& {
        assert(ok());
        return std::get<0>(state_);
    }
    [[nodiscard]] T&& value() && {
        assert(ok());
        return std::get<0>(std::move(state_));
    }
    [[nodiscard]] T valueOr(T fallback) const& { return ok() ? value() : std::move(fallback); }
    T& operator*() & { return value(); }
    const T& operator*() const& { return value(); }
    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }

    [[nodiscard]] const E& error() const& {
        assert(!ok());
        return std::get<1>(state_);
    }
    [[nodiscard]] E& error() & {
        assert(!ok());
        return std::get<1>(state_);
    }
    // The failure's message; empty on success.
    [[nodiscard]] const std::string& message() const {
        static const std::string none;
        return ok() ? none : error().message;
    }

private:
    std::variant<T, E> state_;
};

// An operation that gives nothing back but may fail.
template <class E> class [[nodiscard]] Result<void, E> {
    static_assert(std::is_base_of_v<Failure, E>, "a result's error carries a message");

public:
    Result() = default;
    Result(E error) : error_(std::move(error)), failed_(true) {}
    Result(Failure failure) requires(!std::is_same_v<E, Failure>) : failed_(true) {
        static_cast<Failure&>(error_) = std::move(failure);
    }

    [[nodiscard]] bool ok() const { return !failed_; }
    explicit operator bool() const { return ok(); }

    [[nodiscard]] const E& error() const& {
        assert(failed_);
        return error_;
    }
    [[nodiscard]] E& error() & {
        assert(failed_);
        return error_;
    }
    [[nodiscard]] const std::string& message() const { return error_.message; }

private:
    E error_{};
    bool failed_ = false;
};

// Success of a Result<void, E>: `return done();`.
[[nodiscard]] inline Result<void> done() {
    return {};
}

} // namespace torquil
