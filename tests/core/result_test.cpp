#include "base/result.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <system_error>
#include <vector>

using namespace torquil;

namespace {

enum class WhyRefused { None, Busy, Changed };

struct RefusalFailure : Failure {
    WhyRefused why = WhyRefused::None;
    std::error_code code;
};

Result<int> parsePositive(const std::string& text) {
    if (text.empty()) return fail("No number given");
    int n = 0;
    for (char c : text) {
        if (c < '0' || c > '9') return fail("Not a number: " + text, "bad digit");
        n = n * 10 + (c - '0');
    }
    return n;
}

Result<void, RefusalFailure> refuseWhen(WhyRefused why) {
    if (why == WhyRefused::None) return {};
    RefusalFailure f;
    f.message = "Refused";
    f.why = why;
    f.code = std::make_error_code(std::errc::device_or_resource_busy);
    return f;
}

} // namespace

TEST(ResultTest, ValueOrFailureWithMessageAndCause) {
    const Result<int> good = parsePositive("42");
    ASSERT_TRUE(good.ok());
    EXPECT_TRUE(static_cast<bool>(good));
    EXPECT_EQ(good.value(), 42);
    EXPECT_EQ(*good, 42);
    EXPECT_EQ(good.message(), "");

    const Result<int> bad = parsePositive("4x");
    ASSERT_FALSE(bad.ok());
    EXPECT_FALSE(static_cast<bool>(bad));
    EXPECT_EQ(bad.message(), "Not a number: 4x");
    EXPECT_EQ(bad.error().cause, "bad digit");
    EXPECT_EQ(bad.error().text(), "Not a number: 4x (bad digit)");
    EXPECT_EQ(bad.valueOr(-1), -1);

    const Result<int> none = parsePositive("");
    ASSERT_FALSE(none);
    EXPECT_EQ(none.error().text(), "No number given"); // no cause, no brackets
}

TEST(ResultTest, VoidResultCarriesARicherErrorThatCallersBranchOn) {
    const auto ok = refuseWhen(WhyRefused::None);
    EXPECT_TRUE(ok.ok());
    EXPECT_EQ(ok.message(), "");

    const auto busy = refuseWhen(WhyRefused::Busy);
    ASSERT_FALSE(busy.ok());
    EXPECT_EQ(busy.error().why, WhyRefused::Busy);
    EXPECT_EQ(busy.error().code, std::errc::device_or_resource_busy);
    EXPECT_EQ(busy.message(), "Refused");

    // A plain failure handed to a result with the richer error keeps its words; the rest is
    // left at its defaults.
    const Result<void, RefusalFailure> plain = fail("Cannot lock", "read-only folder");
    ASSERT_FALSE(plain);
    EXPECT_EQ(plain.error().why, WhyRefused::None);
    EXPECT_EQ(plain.error().text(), "Cannot lock (read-only folder)");
    EXPECT_FALSE(plain.error().code);
}

TEST(ResultTest, HoldsMoveOnlyValuesAndHandsThemOver) {
    Result<std::unique_ptr<int>> r = std::make_unique<int>(7);
    ASSERT_TRUE(r);
    EXPECT_EQ(*r.value(), 7);
    std::unique_ptr<int> taken = std::move(r).value();
    ASSERT_NE(taken, nullptr);
    EXPECT_EQ(*taken, 7);

    Result<std::vector<int>> list = std::vector<int>{1, 2, 3};
    list->push_back(4);
    EXPECT_EQ(list.value().size(), 4u);

    // A string value and a failure are told apart by type, not by content.
    const Result<std::string> text = std::string("Cannot open");
    EXPECT_TRUE(text.ok());
    EXPECT_EQ(text.message(), "");
    const Result<std::string> failed = fail("Cannot open");
    EXPECT_FALSE(failed.ok());
}
