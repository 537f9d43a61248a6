#include "ut/utObserverPtr.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

struct Base {
    int v = 1;
};
struct Derived : Base {};

static_assert(std::is_convertible<utObserverPtr<Derived>, utObserverPtr<Base>>::value, "");
static_assert(!std::is_convertible<utObserverPtr<Base>, utObserverPtr<Derived>>::value, "");
static_assert(!std::is_convertible<utObserverPtr<int>, bool>::value, "explicit bool only");

constexpr int kValue = 7;
static_assert(*utObserverPtr<const int>(&kValue) == 7, "usable in constant expressions");
static_assert(utObserverPtr<int>() == nullptr, "");

TEST(utObserverPtr, ObservesWithoutOwning) {
    Derived d;
    utObserverPtr<Derived> pd(&d);
    utObserverPtr<Base> pb = pd;
    EXPECT_TRUE(pb);
    EXPECT_EQ(pb.get(), static_cast<Base*>(&d));
    EXPECT_EQ(pb->v, 1);
    (*pb).v = 2;
    EXPECT_EQ(d.v, 2);
    EXPECT_TRUE(pb == pd);
    EXPECT_TRUE(pb != nullptr);
    EXPECT_TRUE(nullptr != pb);

    Base other;
    pb.reset(&other);
    EXPECT_TRUE(pb != pd);
    pb.reset();
    EXPECT_FALSE(pb);
    EXPECT_TRUE(pb == nullptr);
    EXPECT_TRUE(nullptr == pb);
    EXPECT_TRUE(pb == utObserverPtr<Base>(nullptr));
}

} // namespace
