// utUnitTest: a small harness for suites that an application runs against its own
// implementation of an interface, outside any test framework.
//
// A suite derives from utUnitTest, implements run(), and states each check with
// UT_CHECK(expression). Every check is counted; a failed one is kept with its file, line
// and the expression's text, which is the failure's message. Checks never throw and never
// stop the suite. execute() runs the suite and turns an exception escaping run() into one
// more failure, so a broken implementation is reported rather than crashing the caller.
#ifndef UT_UNIT_TEST_H
#define UT_UNIT_TEST_H

#include "ut/utExport.h"

#include <cstddef>
#include <cstdio>

// One failed check. The texts are copies owned by the suite; never null.
struct utUnitTestFailure {
    const char* file;
    int line;
    const char* expression;
};

class UT_API utUnitTest {
public:
    // name is copied; null is taken as "".
    explicit utUnitTest(const char* name);
    virtual ~utUnitTest();
    utUnitTest(const utUnitTest&) = delete;
    utUnitTest& operator=(const utUnitTest&) = delete;

    // The suite's checks. Called by execute(); may be called directly.
    virtual void run() = 0;

    // Runs run() and returns true when this run added no failure. An exception leaving
    // run() is recorded as one failure whose expression names it; earlier counts stay.
    bool execute();

    // Records one check and returns ok. Null texts are kept as "?".
    bool check(bool ok, const char* expression, const char* file, int line);

    const char* name() const noexcept;     // the suite's name
    int passed() const noexcept;           // checks that held
    int failed() const noexcept;           // checks that failed
    size_t failure_count() const noexcept; // same as failed(), as a size
    // The i-th failure in the order they happened; i beyond the end gives an entry of
    // "?" texts and line 0.
    utUnitTestFailure failure(size_t i) const noexcept;

    // Writes one line per failure, "<file>(<line>): check failed: <expression>", then
    // "<name>: <passed> passed, <failed> failed". A null stream writes nothing.
    void report(std::FILE* out) const;

    // Forgets every count and failure, so the suite can be run again.
    void reset() noexcept;

private:
    struct State;
    State* m_state;
};

// Inside a member of a utUnitTest: counts the check and keeps its text if it fails.
// Evaluates to the truth of the expression.
#define UT_CHECK(expression)                                                                       \
    this->check(static_cast<bool>(expression), #expression, __FILE__, __LINE__)

#endif // UT_UNIT_TEST_H
