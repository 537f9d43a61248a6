#include "ovra/ovProgress.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

// Records both kinds of call in one log, so tests see their order.
struct Recorder : ovIProgress, ovIBreakChecker {
    explicit Recorder(bool answer = false) : answer(answer) {}
    void update_progress(double p) const override {
        reported.push_back(p);
        calls += "P";
    }
    bool break_requested() const override {
        calls += "B";
        return answer;
    }
    bool answer;
    mutable std::vector<double> reported;
    mutable std::string calls;
};

} // namespace

TEST(ovProgressBreak, ReportsFirstThenAsksOnEveryCall) {
    const struct {
        bool progress, checker, answer, go_on;
        const char* calls; // for two updates
    } cases[] = {
        {false, false, false, true, ""},   {true, false, false, true, "PP"},
        {false, true, true, false, "BB"},  {false, true, false, true, "BB"},
        {true, true, true, false, "PBPB"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "progress " << c.progress << " checker " << c.checker
                                        << " break " << c.answer);
        Recorder r(c.answer);
        const ovProgressBreak pb(
            c.progress ? ovIProgresscoPrf(&r, coPRF_EXTERN) : ovIProgresscoPrf(),
            c.checker ? ovIBreakCheckercoPrf(&r, coPRF_EXTERN) : ovIBreakCheckercoPrf());
        const ovProgressBreak copy(pb); // shares both
        EXPECT_EQ(pb.update_progress(0.25), c.go_on);
        EXPECT_EQ(copy.update_progress(0.5), c.go_on);
        EXPECT_EQ(r.calls, c.calls);
    }
}

TEST(ovChildProgress, MapsIntoItsSliceClampingOnlyAbove) {
    const struct {
        double start, end, p, expected;
    } cases[] = {
        {0.5, 0.9, 0.0, 0.5}, {0.5, 0.9, 0.5, 0.7},  {0.5, 0.9, 1.0, 0.9},
        {0.5, 0.9, 2.0, 1.0}, {0.5, 0.9, -1.0, 0.1}, {0.9, 0.1, 0.0, 0.9},
        {0.9, 0.1, 1.0, 0.1}, {0.9, 0.1, 2.0, -0.7}, {1.2, 2.0, 0.0, 1.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "[" << c.start << ", " << c.end << "] at " << c.p);
        const Recorder parent;
        ovChildProgress(&parent, c.start, c.end).update_progress(c.p);
        ASSERT_EQ(parent.reported.size(), 1u);
        EXPECT_DOUBLE_EQ(parent.reported[0], c.expected);
    }
    ovChildProgress(nullptr, 0.0, 1.0).update_progress(0.5); // reports nowhere
}

TEST(ovProgressBreak, ChildrenOwnTheirSliceAndShareTheChecker) {
    const auto r = std::make_shared<Recorder>(true);
    const ovIBreakCheckercoPrf checker(r);
    ovProgressBreak pb;
    pb.set_progress(ovIProgresscoPrf(r));
    pb.set_break_checker(checker);

    const ovProgressBreak child = pb.create_child(0.2, 0.6);
    EXPECT_FALSE(child.progress().external());
    EXPECT_EQ(child.break_checker(), checker);
    const ovProgressBreak grandchild = child.create_child(0.5, 1.0);
    EXPECT_FALSE(grandchild.update_progress(0.0));
    EXPECT_FALSE(grandchild.update_progress(1.0));
    ASSERT_EQ(r->reported.size(), 2u);
    EXPECT_DOUBLE_EQ(r->reported[0], 0.4);
    EXPECT_DOUBLE_EQ(r->reported[1], 0.6);

    const ovProgressBreak no_progress =
        ovProgressBreak(ovIProgresscoPrf(), checker).create_child(0.0, 1.0);
    EXPECT_TRUE(no_progress.progress().empty());
    EXPECT_EQ(no_progress.break_checker(), checker);
}
