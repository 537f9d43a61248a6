/// @file
/// Progress reporting and break checking for long operations.
///
/// The application implements `ovIProgress` (receives the proportion of work
/// done) and `ovIBreakChecker` (says whether the user wants the work stopped).
/// `ovProgressBreak` carries one of each, either possibly absent, down into a
/// long operation as a copyable value; `create_child` hands a slice of the
/// range to a sub-operation through `ovChildProgress`, so the sub-operation
/// reports 0 to 1 while the application sees start to end.
///
/// Error contract: nothing here fails or throws of its own accord (making a
/// child may throw std::bad_alloc). Proportions are not validated: a child
/// clamps only results above 1.0, so negative values and reversed ranges pass
/// through. A child with a null parent reports nothing. A child refers to its
/// parent by plain pointer and does not keep it alive: a child (or a child
/// ovProgressBreak) must not outlive its parent's progress object.
///
/// Nothing is locked. Copies of an ovProgressBreak share the same progress and
/// checker objects; using them from several threads needs implementations
/// that are safe for it.
#pragma once

#include "ovra/ovExport.h"

#include "co/coPrf.h"

/// Receives the proportion of work done.
class OV_API ovIProgress {
public:
    /// proportion: 0.0 (nothing done) to 1.0 (all done).
    virtual void update_progress(double proportion) const = 0;
    virtual ~ovIProgress();

protected:
    ovIProgress() noexcept = default;
    ovIProgress(const ovIProgress&) noexcept = default;
    ovIProgress& operator=(const ovIProgress&) noexcept = default;
};

/// Says whether the running operation should stop.
class OV_API ovIBreakChecker {
public:
    /// True when a break has been requested.
    virtual bool break_requested() const = 0;
    virtual ~ovIBreakChecker();

protected:
    ovIBreakChecker() noexcept = default;
    ovIBreakChecker(const ovIBreakChecker&) noexcept = default;
    ovIBreakChecker& operator=(const ovIBreakChecker&) noexcept = default;
};

/// Shared handles (owning, or external with coPRF_EXTERN) and a single-owner pointer.
typedef coPrf<ovIProgress> ovIProgresscoPrf;
/// A shared handle to a break checker.
typedef coPrf<ovIBreakChecker> ovIBreakCheckercoPrf;
/// A single-owner pointer to a progress.
typedef coPrg<ovIProgress> ovIProgresscoPrg;

/// A slice [start, end] of a parent's range: the child's 0.0 reaches the
/// parent as start, its 1.0 as end. end below start is allowed.
class OV_API ovChildProgress : public ovIProgress {
public:
    /// Stores the three values without checks; the parent is not owned.
    ovChildProgress(const ovIProgress* parent, double start, double end) noexcept;
    /// Reports start + (end - start) * p to the parent, clamped to at most 1.0.
    void update_progress(double p) const override;
    ~ovChildProgress() override;

private:
    double convert_proportion(double p) const noexcept;

    const ovIProgress* m_parent;
    double m_start;
    double m_end;
};

/// A progress and a break checker held together as one value.
class OV_API ovProgressBreak {
public:
    /// No progress, no checker.
    ovProgressBreak();
    /// Shares both handles (either may be empty).
    ovProgressBreak(const ovIProgresscoPrf& progress, const ovIBreakCheckercoPrf& break_checker);
    /// Share the source's handles.
    ovProgressBreak(const ovProgressBreak& o);
    /// Shares the source's handles in place of this value's own.
    ovProgressBreak& operator=(const ovProgressBreak& o);
    /// Drops this value's shares.
    ~ovProgressBreak();

    /// Replaces the progress handle (empty for none).
    void set_progress(const ovIProgresscoPrf& progress);
    /// The progress handle; empty when there is none.
    const ovIProgresscoPrf& progress() const noexcept { return m_progress; }
    /// Replaces the break-checker handle (empty for none).
    void set_break_checker(const ovIBreakCheckercoPrf& break_checker);
    /// The break-checker handle; empty when there is none.
    const ovIBreakCheckercoPrf& break_checker() const noexcept { return m_break_checker; }

    /// Reports p to the progress (if any), then asks the checker (if any) on
    /// every call: false when a break is requested, true to go on.
    bool update_progress(double p) const;
    /// A value for a sub-operation: an owned ovChildProgress over [start, end]
    /// of this progress (none when this has none), sharing this checker.
    ovProgressBreak create_child(double start, double end) const;

private:
    ovIProgresscoPrf m_progress;
    ovIBreakCheckercoPrf m_break_checker;
};
