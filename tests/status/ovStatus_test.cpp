#include "ovra/ovStatus.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

namespace {
template <class T, class = void> struct ComparesWithInt : std::false_type {};
template <class T>
struct ComparesWithInt<T, decltype(void(std::declval<T>() == 7))> : std::true_type {};
} // namespace

// The conversions callers rely on compile; the two traps do not.
static_assert(std::is_convertible<ovStatus, bool>::value, "bool done = op();");
static_assert(std::is_convertible<int, ovStatus>::value, "return 0;");
static_assert(!std::is_convertible<ovStatus, int>::value, "int x = status; gives 1");
static_assert(!ComparesWithInt<ovStatus>::value, "status == 7 compares a bool");

TEST(ovStatus, OkAndConditionGiveTheCodeAndMarkTested) {
    const struct {
        int32_t code;
        bool success;
    } cases[] = {{1, true}, {0, false}, {7, true}, {-3, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.code);
        const ovStatus by_ok(c.code), by_bool(c.code);
        EXPECT_EQ(by_ok.tested(), 0);
        EXPECT_EQ(by_ok.ok(), c.code);
        const bool as_bool = by_bool; // the implicit conversion callers rely on
        EXPECT_EQ(as_bool, c.success);
        EXPECT_EQ(by_ok.tested() + by_bool.tested(), 2);
    }
}

TEST(ovStatus, CopyingPassesTheDutyToTest) {
    const ovStatus fresh(0), seen(1);
    seen.ok();
    const ovStatus copy(fresh);
    EXPECT_EQ(fresh.tested(), 1) << "the source counts as dealt with";
    EXPECT_EQ(copy.tested(), 0) << "the copy takes the flag as it was";

    ovStatus target(5);
    EXPECT_EQ(&(target = copy), &target);
    EXPECT_EQ(target.tested(), 0);
    EXPECT_EQ(copy.tested(), 1);
    target = seen;
    EXPECT_EQ(target.tested(), 1);
    EXPECT_EQ(target.ok(), 1);
}
