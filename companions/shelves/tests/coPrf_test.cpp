#include "co/coPrf.h"

#include <gtest/gtest.h>

namespace {

struct Counted {
    explicit Counted(int* live) : m_live(live) { ++*m_live; }
    virtual ~Counted() { --*m_live; }
    int* m_live;
};
struct Derived : Counted {
    using Counted::Counted;
};

TEST(coPrf, OwningHandleDeletesWithLastCopy) {
    int live = 0;
    {
        coPrf<Counted> a(new Counted(&live));
        EXPECT_FALSE(a.external());
        coPrf<Counted> b = a;
        EXPECT_EQ(a, b);
        EXPECT_EQ(2, a.use_count());
        a.reset();
        EXPECT_TRUE(a.empty());
        EXPECT_EQ(1, live);
    }
    EXPECT_EQ(0, live);
}

TEST(coPrf, ExternalHandleNeverDeletes) {
    int live = 0;
    Counted owned(&live);
    {
        coPrf<Counted> a(&owned, coPRF_EXTERN);
        coPrf<Counted> b = a;
        EXPECT_TRUE(b.external());
        EXPECT_EQ(&owned, b.get());
    }
    EXPECT_EQ(1, live);
    EXPECT_FALSE(coPrf<Counted>(nullptr, coPRF_EXTERN).external());
}

TEST(coPrf, SharesWithStandardPointersAndConvertsFromDerived) {
    int live = 0;
    std::shared_ptr<Counted> sp = std::make_shared<Derived>(&live);
    coPrf<Counted> h(sp);
    std::shared_ptr<Counted> back = h;
    EXPECT_EQ(sp, back);
    coPrf<Derived> d(new Derived(&live));
    coPrf<Counted> base = d;
    EXPECT_EQ(d.get(), base.get());
    EXPECT_TRUE(coPrf<Counted>().empty());
    EXPECT_FALSE(static_cast<bool>(coPrf<Counted>()));
}

TEST(coPrg, OwnsReleasesResetsBecomesAndSwaps) {
    int live = 0;
    {
        coPrg<Counted> a(new Counted(&live));
        a = new Counted(&live); // the first is deleted
        EXPECT_EQ(1, live);
        coPrg<Counted> b;
        b.become(a);
        EXPECT_TRUE(a.empty());
        a.swap(b);
        EXPECT_FALSE(a.empty());
        Counted* raw = a.release();
        EXPECT_TRUE(a.empty());
        EXPECT_EQ(1, live);
        delete raw;
        b.reset(new Counted(&live));
        b.become(b); // self: keeps its object
        EXPECT_EQ(1, live);
    }
    EXPECT_EQ(0, live);
}

} // namespace
