// Dynamic libraries: the tests' own plug-in through the platform's loader, the loader and
// library objects over a counting wrapper, bad input, and the older interface's names.
#include "ovra/ovDynamicLibrary.h"
#include "ovra/ovFrustrumChooser.h"

#include "plugin_path.h"
#include "system_ops_doubles.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

// The platform's loader, counting what is freed.
class CountingLoader final : public ovILibraryLoaderOperations {
public:
    ovStatus load_library_ov(const ovPathName& path, void*& handle) const override {
        return m_real->load_library_ov(path, handle);
    }
    ovStatus get_proc_address(void* const& handle, const utString& name,
                              void (*&function)()) const override {
        return m_real->get_proc_address(handle, name, function);
    }
    ovStatus free_library(void* handle) const override {
        ++frees;
        return m_real->free_library(handle);
    }
    utString shared_library_extension() const override {
        return m_real->shared_library_extension();
    }
    ovPathName executable_path() const override { return m_real->executable_path(); }

    mutable int frees = 0;

private:
    utObserverPtr<const ovILibraryLoaderOperations> m_real =
        ovFrustrumChooser(nullptr).library_loader_operations();
};

typedef int (*AnswerFunc)();
typedef int (*AddFunc)(int, int);

template <typename Enum> std::string streamed(Enum value) {
    std::ostringstream os;
    os << value;
    return os.str();
}

} // namespace

TEST(DynamicLibrary, LoadsThePluginCallsItAndFreesItUnlessDetached) {
    CountingLoader counting;
    ovDynamicLibraryLoader loader{utObserverPtr<const ovILibraryLoaderOperations>(&counting)};
    ovStatus status(0);
    std::unique_ptr<ovDynamicLibrary> library =
        loader.load_library(ovtest::plugin_stem().c_str(), status);
    ASSERT_TRUE(status.ok());
    ASSERT_NE(library, nullptr);

    const auto answer =
        reinterpret_cast<AnswerFunc>(library->proc_address("ovra_test_plugin_answer", status));
    ASSERT_TRUE(status.ok());
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer(), 42);

    // A missing symbol fails and leaves the library usable.
    ovStatus missing(1);
    EXPECT_EQ(library->proc_address("ovra_test_plugin_absent", missing), nullptr);
    EXPECT_FALSE(missing.ok());
    const auto add =
        reinterpret_cast<AddFunc>(library->proc_address("ovra_test_plugin_add", status));
    ASSERT_NE(add, nullptr);
    EXPECT_EQ(add(2, 3), 5);

    library.reset();
    EXPECT_EQ(counting.frees, 1);

    library = loader.load_library(ovtest::plugin_stem().c_str(), status);
    ASSERT_NE(library, nullptr);
    const auto detached =
        reinterpret_cast<AnswerFunc>(library->proc_address("ovra_test_plugin_answer", status));
    library->detach();
    library.reset();
    EXPECT_EQ(counting.frees, 1);
    // Still loaded: its code can be called.
    ASSERT_NE(detached, nullptr);
    EXPECT_EQ(detached(), 42);
}

TEST(DynamicLibrary, ExtensionIsAlwaysAppended) {
    const std::string stem = ovtest::plugin_stem();
    const std::string ext =
        ovFrustrumChooser(nullptr).library_loader_operations()->shared_library_extension().c_str();
    // Without operations of its own, the loader asks the chooser.
    ovDynamicLibraryLoader loader{utObserverPtr<const ovILibraryLoaderOperations>()};

    ovStatus status(0);
    EXPECT_NE(loader.load_library(stem.c_str(), status), nullptr);
    EXPECT_TRUE(status.ok());
    EXPECT_EQ(loader.load_library((stem + ext).c_str(), status), nullptr)
        << "asks for the name with a doubled extension";
    EXPECT_FALSE(status.ok());

    int conversion = 0;
    const ovPathName full(ovString(ovSTRING_UTF8, (stem + ext).c_str(), conversion));
    EXPECT_NE(loader.load_library_ov(full, status), nullptr);
    EXPECT_TRUE(status.ok());
}

TEST(DynamicLibrary, BadInputFailsWithoutLoading) {
    const auto ops = ovFrustrumChooser(nullptr).library_loader_operations();
    int dummy = 0;
    void* handle = &dummy;
    const struct {
        const char* what;
        ovPathName path;
    } paths[] = {{"empty", ovPathName()},
                 {"invalid", ovPathName(ovString())},
                 {"missing", ovPathName(ovString::literal("no/such/module.bin"))},
                 {"very long", ovPathName(ovString::literal(std::string(40000, 'm').c_str()))}};
    for (const auto& c : paths) {
        SCOPED_TRACE(c.what);
        handle = &dummy;
        EXPECT_FALSE(ops->load_library_ov(c.path, handle).ok());
        EXPECT_EQ(handle, nullptr);
    }

    handle = &dummy;
    EXPECT_FALSE(ops->load_library(utString(), handle).ok()) << "null name";
    EXPECT_EQ(handle, nullptr);
    EXPECT_FALSE(ops->load_library("\xff\xfe", handle).ok()) << "not UTF-8";

    void (*function)() = reinterpret_cast<void (*)()>(&ovtest::TableLoader::fake_answer);
    EXPECT_FALSE(ops->get_proc_address(nullptr, "main", function).ok()) << "null handle";
    EXPECT_EQ(function, nullptr);
    EXPECT_FALSE(ops->free_library(nullptr).ok());
}

TEST(DynamicLibrary, ExecutablePathNamesThisProgram) {
    const ovPathName exe =
        ovFrustrumChooser(nullptr).library_loader_operations()->executable_path();
    ASSERT_FALSE(exe.invalid());
    EXPECT_EQ(exe.relative_path(), 0);
    const std::string name = exe.basename().string().convert(ovSTRING_UTF8);
    EXPECT_EQ(name.rfind("operations_tests", 0), 0u) << name;
}

TEST(DynObj, AlwaysNotImplemented) {
    for (ovDynOpenMode mode : {ovDYN_LAZY, ovDYN_NOW}) {
        SCOPED_TRACE(mode);
        ovDynError error = ovDYN_OK;
        ovDynObj object("anything", mode, &error);
        EXPECT_EQ(error, ovDYN_NOT_IMPLEMENTED);
        EXPECT_EQ(object.symbol_address("main"), nullptr);
        EXPECT_EQ(object.error_text(), nullptr);
    }
    ovDynObj no_error_slot(nullptr, ovDYN_NOW, nullptr);
    EXPECT_EQ(no_error_slot.symbol_address(nullptr), nullptr);
}

TEST(DynObj, StreamsEnumeratorNames) {
    const struct {
        std::string streamed;
        const char* text;
    } cases[] = {{streamed(ovDynError(0)), "ovDYN_OK"},
                 {streamed(ovDynError(1)), "ovDYN_NOT_IMPLEMENTED"},
                 {streamed(ovDynError(2)), "ovDYN_FILE_NOT_FOUND"},
                 {streamed(ovDynError(3)), "ovDYN_PROBLEM_IN_OPEN"},
                 {streamed(ovDynError(4)), "ovDYN_NO_SUCH_SYMBOL"},
                 {streamed(ovDynError(5)), "ovDYN_ERROR_FROM_FUNCTION"},
                 {streamed(ovDynError(7)), "ERROR: ovDynError type unknown"},
                 {streamed(ovDynError(-1)), "ERROR: ovDynError type unknown"},
                 {streamed(ovDynOpenMode(0)), "ovDYN_LAZY"},
                 {streamed(ovDynOpenMode(1)), "ovDYN_NOW"},
                 {streamed(ovDynOpenMode(2)), "ERROR: ovDynOpenMode type unknown"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(c.streamed, c.text);
    }
}
