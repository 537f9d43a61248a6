#include "ovra/ovFileOpsTester.h"

#include "ovra/ovByteArray.h"
#include "ovra/ovFileOperations.h"

#include <cstdio>
#include <cstring>
#include <string>

// The checks are written so that each one's text is the contract it states; keep
// their spelling (clang-format would reflow some of them).

namespace {

const char kHello[] = "Hello\n";     // six bytes
const char kGoodbye[] = "Goodbye\n"; // eight bytes

ovString text(const char* utf8) {
    int status = 0;
    return ovString(ovSTRING_UTF8, utf8, status);
}

ovByteArray bytes(const char* s) {
    return ovByteArray(s, std::strlen(s));
}

// A directory as the application sees it.
class Directory {
public:
    Directory(const ovIFileOperations* ops, const ovPathName& path) : m_ops(ops), m_path(path) {}
    int directory_exists() const { return m_ops->check_directory_exists(m_path); }

private:
    const ovIFileOperations* m_ops;
    ovPathName m_path;
};

} // namespace

ovFileOpsTester::ovFileOpsTester(const ovIFileOperations* file_operations,
                                 const ovPathName& scratch_directory)
    : utUnitTest("ovFileOpsTester"), m_file_operations(file_operations),
      m_scratch(scratch_directory), m_serial(0) {}

ovFileOpsTester::~ovFileOpsTester() {}

int ovFileOpsTester::advance(ovIFileIterator& iterator) {
    return ++iterator;
}

ovFileName ovFileOpsTester::entry(const ovIFileIterator& iterator) {
    return iterator();
}

ovPathName ovFileOpsTester::fresh_path(const char* stem) {
    // Bounded, so that operations which see something everywhere fail checks rather
    // than hang the suite.
    ovPathName path;
    for (int attempt = 0; attempt < 100; ++attempt) {
        const std::string name = "ovft" + std::to_string(++m_serial) + "_" + stem;
        path = m_scratch.adjoin(ovFileName(text(name.c_str())));
        if (m_file_operations->type_of_path(path) == ovPATH_DOESNT_EXIST)
            break;
    }
    return path;
}

void ovFileOpsTester::run() {
    if (!UT_CHECK(m_file_operations != nullptr))
        return;
    test_existence();
    test_create_remove();
    test_iteration();
    test_modes();
    test_encoding_and_os_form();
    test_whole_files();
    test_move_and_rename();
}

// clang-format off

void ovFileOpsTester::test_existence() {
    {
        const ovPathName path = fresh_path("exists");
        UT_CHECK(!m_file_operations->check_file_exists(path));
        UT_CHECK(m_file_operations->write_file(path, bytes(kHello)));
        UT_CHECK(m_file_operations->check_file_exists(path));
        m_file_operations->remove_file(path);
    }
    {
        const ovPathName path = fresh_path("dir");
        const ovPathName& dir_path = path;
        UT_CHECK(m_file_operations->type_of_path(dir_path) == ovPATH_DOESNT_EXIST);
        UT_CHECK(m_file_operations->create_directory(dir_path));
        UT_CHECK(m_file_operations->type_of_path(dir_path) == ovPATH_DIRECTORY);
        UT_CHECK(m_file_operations->check_directory_exists(path));
        UT_CHECK(!m_file_operations->check_file_exists(dir_path));
        m_file_operations->delete_directory(dir_path);
    }
    {
        const ovPathName file_path = fresh_path("file");
        UT_CHECK(m_file_operations->write_file(file_path, bytes(kHello)));
        UT_CHECK(m_file_operations->type_of_path(file_path) == ovPATH_FILE);
        UT_CHECK(!m_file_operations->check_directory_exists(file_path));
        m_file_operations->remove_file(file_path);
    }
}

void ovFileOpsTester::test_create_remove() {
    const ovPathName file_path = fresh_path("remove");
    UT_CHECK(m_file_operations->check_encoding(file_path));
    UT_CHECK(m_file_operations->write_file(file_path, bytes(kHello)));
    UT_CHECK(m_file_operations->remove_file(file_path));
    UT_CHECK(m_file_operations->type_of_path(file_path) == ovPATH_DOESNT_EXIST);

    const ovPathName dir_path = fresh_path("mkdir");
    UT_CHECK(m_file_operations->check_encoding(dir_path));
    UT_CHECK(m_file_operations->create_directory(dir_path));
    UT_CHECK(m_file_operations->delete_directory(dir_path));
    UT_CHECK(m_file_operations->type_of_path(dir_path) == ovPATH_DOESNT_EXIST);
}

void ovFileOpsTester::test_iteration() {
    // The listing as a finder sees it.
    class Finder {
    public:
        explicit Finder(const ovIFileIteratorcoPrf& it) : m_it(it) {}
        int invalid() const { return m_it.empty() || m_it->invalid(); }
        int undefined() const { return m_it.empty() || m_it->undefined(); }
        int operator++() { return m_it.empty() ? 0 : advance(*m_it); }
        ovFileName operator()() const { return m_it.empty() ? ovFileName() : entry(*m_it); }

    private:
        ovIFileIteratorcoPrf m_it;
    };

    const ovPathName dir_path = fresh_path("list");
    UT_CHECK(m_file_operations->check_encoding(dir_path));
    if (!UT_CHECK(m_file_operations->create_directory(dir_path)))
        return;
    {
        Finder finder(m_file_operations->iterator(dir_path));
        UT_CHECK(!finder.invalid());
        UT_CHECK(finder.undefined());
        UT_CHECK(!++finder);
    }

    const ovFileName name1(text("file1"));
    const ovFileName name2(text("file2"));
    const ovPathName file_path1 = dir_path.adjoin(name1);
    const ovPathName file_path2 = dir_path.adjoin(name2);
    UT_CHECK(m_file_operations->write_file(file_path1, bytes(kHello)));
    UT_CHECK(m_file_operations->write_file(file_path2, bytes(kHello)));
    {
        Finder finder(m_file_operations->iterator(dir_path));
        UT_CHECK(!finder.invalid());
        UT_CHECK(++finder);
        const ovFileName first = finder();
        UT_CHECK(++finder);
        const ovFileName second = finder();
        UT_CHECK(!++finder);
        UT_CHECK((first == name1 && second == name2) || (first == name2 && second == name1));
    }
    m_file_operations->remove_file(file_path1);
    m_file_operations->remove_file(file_path2);
    m_file_operations->delete_directory(dir_path);
}

void ovFileOpsTester::test_modes() {
    const ovPathName file_path = fresh_path("modes");
    UT_CHECK(m_file_operations->check_encoding(file_path));

    FILE* f = m_file_operations->write_mode().file_open(file_path);
    if (UT_CHECK(f != nullptr)) {
        UT_CHECK(std::fwrite(kHello, 6, 1, f) == 1);
        std::fclose(f);
    }
    UT_CHECK(m_file_operations->check_file_exists(file_path));

    f = m_file_operations->read_mode().file_open(file_path);
    if (UT_CHECK(f != nullptr)) {
        char element[6] = {};
        UT_CHECK(std::fread(element, 6, 1, f) == 1);
        UT_CHECK(std::memcmp(element, kHello, 6) == 0);
        std::fclose(f);
    }

    f = m_file_operations->rw_mode().file_open(file_path);
    if (UT_CHECK(f != nullptr)) {
        check(std::fwrite(kGoodbye, 8, 1, f) == 1 && std::fflush(f) == 0,
              "Successfully wrote over file", __FILE__, __LINE__);
        std::fclose(f);
        ovByteArray array2;
        UT_CHECK(m_file_operations->read_file(file_path,array2));
        UT_CHECK(array2 == bytes(kGoodbye));
    }
    m_file_operations->remove_file(file_path);

    // In place: an existing file is required, so nothing may be created.
    const ovPathName missing = fresh_path("rw_missing");
    f = m_file_operations->rw_mode().file_open(missing);
    UT_CHECK(f == nullptr);
    if (f)
        std::fclose(f);
    UT_CHECK(m_file_operations->type_of_path(missing) == ovPATH_DOESNT_EXIST);
}

void ovFileOpsTester::test_encoding_and_os_form() {
    const ovPathName file_path = fresh_path("os form");
    UT_CHECK(m_file_operations->check_encoding(file_path));
    const ovPathName os_form(m_file_operations->os_style_path(file_path));
    UT_CHECK(!os_form.invalid());
    const ovPathName full_file_path_before = m_file_operations->full_path(file_path);
    const ovPathName full_file_path_after = m_file_operations->full_path(os_form);
    UT_CHECK(full_file_path_before.string() == full_file_path_after.string());
}

void ovFileOpsTester::test_whole_files() {
    const ovPathName file_path = fresh_path("whole");
    UT_CHECK(m_file_operations->check_encoding(file_path));
    const ovByteArray array = bytes(kHello);
    UT_CHECK(m_file_operations->write_file(file_path,array));
    UT_CHECK(m_file_operations->file_size(file_path) == 6);

    FILE* f = m_file_operations->read_mode().file_open(file_path);
    if (UT_CHECK(f != nullptr)) {
        char back[8] = {};
        UT_CHECK(std::fread(back, 1, sizeof back, f) == 6 && std::memcmp(back, kHello, 6) == 0);
        std::fclose(f);
    }

    ovByteArray array2;
    UT_CHECK(m_file_operations->read_file(file_path,array2));
    UT_CHECK(array2 == array);

    // An empty array leaves an empty file, which reads back empty.
    UT_CHECK(m_file_operations->write_file(file_path,ovByteArray()));
    UT_CHECK(m_file_operations->file_size(file_path) == 0);
    UT_CHECK(m_file_operations->read_file(file_path,array2));
    UT_CHECK(array2.length() == 0);
    m_file_operations->remove_file(file_path);

    // A missing file reads as nothing and leaves the array alone.
    ovByteArray kept = bytes(kHello);
    UT_CHECK(!m_file_operations->read_file(file_path,kept));
    UT_CHECK(kept == array);
    UT_CHECK(m_file_operations->file_size(file_path) == 0);
}

void ovFileOpsTester::test_move_and_rename() {
    const ovPathName file_path1 = fresh_path("move_from");
    const ovPathName file_path2 = fresh_path("move_to");
    UT_CHECK(m_file_operations->check_encoding(file_path1));
    UT_CHECK(m_file_operations->check_encoding(file_path2));
    const ovByteArray array = bytes(kHello);
    UT_CHECK(m_file_operations->write_file(file_path1,array));
    UT_CHECK(m_file_operations->move_file(file_path1,file_path2));
    UT_CHECK(!m_file_operations->check_file_exists(file_path1));
    ovByteArray array2;
    UT_CHECK(m_file_operations->read_file(file_path2,array2));
    UT_CHECK(array2 == array);

    // Never onto something that exists.
    UT_CHECK(m_file_operations->write_file(file_path1,bytes(kGoodbye)));
    UT_CHECK(!m_file_operations->move_file(file_path1,file_path2));
    UT_CHECK(m_file_operations->read_file(file_path2,array2) && array2 == array);
    m_file_operations->remove_file(file_path1);
    m_file_operations->remove_file(file_path2);

    const ovPathName dir_path1 = fresh_path("dir_from");
    const ovPathName dir_path2 = fresh_path("dir_to");
    UT_CHECK(m_file_operations->check_encoding(dir_path1));
    UT_CHECK(m_file_operations->check_encoding(dir_path2));
    const ovFileName name2 = dir_path2.basename();
    UT_CHECK(m_file_operations->create_directory(dir_path1));
    UT_CHECK(m_file_operations->rename_directory(dir_path1,name2));
    const Directory dir1(m_file_operations, dir_path1);
    const Directory dir2(m_file_operations, dir_path2);
    UT_CHECK(!dir1.directory_exists());
    UT_CHECK(dir2.directory_exists());
    m_file_operations->delete_directory(dir_path2);
}

// clang-format on
