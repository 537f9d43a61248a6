#include "ovra/ovProgress.h"

ovIProgress::~ovIProgress() = default;
ovIBreakChecker::~ovIBreakChecker() = default;

ovChildProgress::ovChildProgress(const ovIProgress* parent, double start, double end) noexcept
    : m_parent(parent), m_start(start), m_end(end) {}

ovChildProgress::~ovChildProgress() = default;

void ovChildProgress::update_progress(double p) const {
    if (m_parent)
        m_parent->update_progress(convert_proportion(p));
}

double ovChildProgress::convert_proportion(double p) const noexcept {
    // Clamped from above only: callers rely on reaching exactly 1.0, while
    // values below 0 pass through untouched.
    const double mapped = m_start + (m_end - m_start) * p;
    return mapped > 1.0 ? 1.0 : mapped;
}

ovProgressBreak::ovProgressBreak() = default;

ovProgressBreak::ovProgressBreak(const ovIProgresscoPrf& progress,
                                 const ovIBreakCheckercoPrf& break_checker)
    : m_progress(progress), m_break_checker(break_checker) {}

ovProgressBreak::ovProgressBreak(const ovProgressBreak& o) = default;
ovProgressBreak& ovProgressBreak::operator=(const ovProgressBreak& o) = default;
ovProgressBreak::~ovProgressBreak() = default;

void ovProgressBreak::set_progress(const ovIProgresscoPrf& progress) {
    m_progress = progress;
}

void ovProgressBreak::set_break_checker(const ovIBreakCheckercoPrf& break_checker) {
    m_break_checker = break_checker;
}

bool ovProgressBreak::update_progress(double p) const {
    if (m_progress)
        m_progress->update_progress(p);
    return !m_break_checker || !m_break_checker->break_requested();
}

ovProgressBreak ovProgressBreak::create_child(double start, double end) const {
    ovProgressBreak child;
    if (m_progress)
        child.m_progress = ovIProgresscoPrf(new ovChildProgress(m_progress.get(), start, end));
    child.m_break_checker = m_break_checker;
    return child;
}
