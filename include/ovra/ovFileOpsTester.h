/// @file
/// ovFileOpsTester: the conformance suite for implementations of ovIFileOperations.
///
/// Give it the operations to judge and a scratch directory that exists in their eyes;
/// `execute()` (see ut/utUnitTest.h) runs every check and `report()` lists the ones
/// that failed, each with the text of the check that did not hold, for example
/// "!m_file_operations->check_file_exists(path)". The suite works only inside the
/// scratch directory, under names it makes unique per run, and removes what it made
/// (through the operations being judged, so a broken implementation may leave some).
///
/// What it checks: existence and type answers before and after creating files and
/// directories; remove_file, create_directory and delete_directory; listing an empty
/// directory and one with two files (in any order); the three modes (read a six-byte
/// file, write over one in place, create one); check_encoding; that os_style_path
/// gives a valid path whose full path equals the original's; write_file, read_file and
/// file_size; move_file to a free name and rename_directory.
///
/// Error contract: checks never throw; an exception escaping the operations becomes one
/// failure (utUnitTest::execute). A null operations pointer fails one check and runs
/// nothing else.
#pragma once

#include "ovra/ovExport.h"
#include "ovra/ovPathName.h"

#include "ut/utUnitTest.h"

class ovIFileOperations;
class ovIFileIterator;

/// The conformance suite of file operations: drives any implementation of
/// ovIFileOperations through the utUnitTest harness.
class OV_API ovFileOpsTester : public utUnitTest {
public:
    /// Borrows `file_operations`; `scratch_directory` must exist for them.
    ovFileOpsTester(const ovIFileOperations* file_operations, const ovPathName& scratch_directory);
    ~ovFileOpsTester() override;

    /// Runs every check against the operations given at construction.
    void run() override;

protected:
    /// The advance and current entry of an iterator, as a finder sees them, for suites
    /// derived from this one.
    static int advance(ovIFileIterator& iterator);
    static ovFileName entry(const ovIFileIterator& iterator);

    /// A name under the scratch directory that this run has not used yet.
    ovPathName fresh_path(const char* stem);

    const ovIFileOperations* m_file_operations;
    ovPathName m_scratch;

private:
    void test_existence();
    void test_create_remove();
    void test_iteration();
    void test_modes();
    void test_encoding_and_os_form();
    void test_whole_files();
    void test_move_and_rename();

    unsigned m_serial;
};
