#include "ut/utUnitTest.h"

#include <exception>
#include <string>
#include <vector>

namespace {
struct Failure {
    std::string file;
    int line;
    std::string expression;
};

const char* or_unknown(const char* s) { return s ? s : "?"; }
} // namespace

struct utUnitTest::State {
    std::string name;
    int passed = 0;
    std::vector<Failure> failures;
};

utUnitTest::utUnitTest(const char* name) : m_state(new State) { m_state->name = name ? name : ""; }

utUnitTest::~utUnitTest() { delete m_state; }

bool utUnitTest::execute() {
    const size_t before = m_state->failures.size();
    try {
        run();
    } catch (const std::exception& e) {
        check(false, (std::string("exception from run(): ") + e.what()).c_str(),
              m_state->name.c_str(), 0);
    } catch (...) {
        check(false, "unknown exception from run()", m_state->name.c_str(), 0);
    }
    return m_state->failures.size() == before;
}

bool utUnitTest::check(bool ok, const char* expression, const char* file, int line) {
    if (ok)
        ++m_state->passed;
    else
        m_state->failures.push_back({or_unknown(file), line, or_unknown(expression)});
    return ok;
}

const char* utUnitTest::name() const noexcept { return m_state->name.c_str(); }
int utUnitTest::passed() const noexcept { return m_state->passed; }
int utUnitTest::failed() const noexcept { return static_cast<int>(m_state->failures.size()); }
size_t utUnitTest::failure_count() const noexcept { return m_state->failures.size(); }

utUnitTestFailure utUnitTest::failure(size_t i) const noexcept {
    if (i >= m_state->failures.size())
        return {"?", 0, "?"};
    const Failure& f = m_state->failures[i];
    return {f.file.c_str(), f.line, f.expression.c_str()};
}

void utUnitTest::report(std::FILE* out) const {
    if (!out)
        return;
    for (const Failure& f : m_state->failures)
        std::fprintf(out, "%s(%d): check failed: %s\n", f.file.c_str(), f.line,
                     f.expression.c_str());
    std::fprintf(out, "%s: %d passed, %d failed\n", m_state->name.c_str(), passed(), failed());
    std::fflush(out);
}

void utUnitTest::reset() noexcept {
    m_state->passed = 0;
    m_state->failures.clear();
}
