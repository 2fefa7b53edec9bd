#pragma once
// A fixed-size table of plain values that starts all zeros without writing them: the memory comes
// from std::calloc, which for tables of megabytes hands out fresh pages that the system zeroes only
// when they are first touched. A new session's page bytes, page image and mouse-over map cost
// nothing until a load writes into them.

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

namespace torquil {

template <class T> class ZeroedBuffer {
    static_assert(std::is_trivially_copyable_v<T>, "ZeroedBuffer holds plain values only");

public:
    using value_type = T;
    using iterator = T*;
    using const_iterator = const T*;

    explicit ZeroedBuffer(std::size_t count) : data_(allocate(count)), size_(count) {}
    ZeroedBuffer(const ZeroedBuffer& other) : data_(allocate(other.size_)), size_(other.size_) {
        if (size_ != 0) std::memcpy(data_.get(), other.data_.get(), size_ * sizeof(T));
    }
    ZeroedBuffer& operator=(const ZeroedBuffer& other) {
        if (this != &other) *this = ZeroedBuffer(other);
        return *this;
    }
    ZeroedBuffer(ZeroedBuffer&& other) noexcept
        : data_(std::move(other.data_)), size_(std::exchange(other.size_, 0)) {}
    ZeroedBuffer& operator=(ZeroedBuffer&& other) noexcept {
        data_ = std::move(other.data_);
        size_ = std::exchange(other.size_, 0);
        return *this;
    }

    [[nodiscard]] std::size_t size() const { return size_; }
    [[nodiscard]] bool empty() const { return size_ == 0; }
    [[nodiscard]] T* data() { return data_.get(); }
    [[nodiscard]] const T* data() const { return data_.get(); }
    T& operator[](std::size_t i) { return data_[i]; }
    const T& operator[](std::size_t i) const { return data_[i]; }
    [[nodiscard]] T* begin() { return data(); }
    [[nodiscard]] T* end() { return data() + size_; }
    [[nodiscard]] const T* begin() const { return data(); }
    [[nodiscard]] const T* end() const { return data() + size_; }

    // Every element back to zero (a table kept from an earlier load).
    void clear() {
        if (size_ != 0) std::memset(data_.get(), 0, size_ * sizeof(T));
    }
    // A copy as a vector, for callers that keep or compare the contents.
    [[nodiscard]] std::vector<T> toVector() const { return std::vector<T>(begin(), end()); }

private:
    struct Free {
        void operator()(T* p) const { std::free(p); }
    };
    [[nodiscard]] static T* allocate(std::size_t count) {
        if (count == 0) return nullptr;
        void* p = std::calloc(count, sizeof(T));
        if (p == nullptr) throw std::bad_alloc();
        return static_cast<T*>(p);
    }

    std::unique_ptr<T[], Free> data_;
    std::size_t size_ = 0;
};

} // namespace torquil
