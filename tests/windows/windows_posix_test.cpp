// No registry, WMI, Wow64 or activation contexts on POSIX: every operation gives its
// failure answer and leaves the caller's variables alone.
#include "ovra/ovRegistry.h"
#include "ovra/ovWindowsServices.h"

#include "registry_refusals.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace {

TEST(ovRegistryPosix, EveryOperationFails) {
    const utString path("Software\\ovra"), name("v");
    EXPECT_EQ(0, ovRegistry::has_wow64());
    for (ovHKeyType root : {ovHKEY_CLASSES_ROOT, ovHKEY_CURRENT_USER, ovHKEY_LOCAL_MACHINE,
                            ovHKEY_USERS, static_cast<ovHKeyType>(9)}) {
        SCOPED_TRACE(static_cast<int>(root));
        EXPECT_EQ(nullptr, ov_reg_master_key(root));
        ovRegistry6432 both(root);
        both.set_look_in_wow64_area(1);
        ovtest::expect_refused(both, path, name, true);
        ovtest::expect_views_refused(both, path);
    }
}

TEST(ovRegistryPosix, HelpersReportAMissingView) {
    ovHKey key = reinterpret_cast<ovHKey>(&key);
    EXPECT_EQ(1010, ov_reg_RegOpenKeyEx(nullptr, "Software", 0, 0x20019, &key, 1));
    EXPECT_EQ(nullptr, key);
    key = reinterpret_cast<ovHKey>(&key);
    EXPECT_EQ(1010, ov_reg_RegOpenKeyEx64(nullptr, "Software", 0, 0x20019, &key));
    EXPECT_EQ(nullptr, key);
    EXPECT_EQ(1010, ov_reg_RegOpenKeyEx32(nullptr, "Software", 0, 0x20019, nullptr));
    EXPECT_EQ(1010, ov_reg_RegDeleteKeyEx(nullptr, "Software", 0x200));
}

TEST(ovWMIPosix, FailsAtTheLocator) {
    utString error;
    EXPECT_EQ("", ovWMI::value("Win32_OperatingSystem", "Caption", error));
    EXPECT_EQ("Instantiation of IWbemLocator failed", error);
}

TEST(ovActivationContextPosix, HoldsNothingAndActivatesNothing) {
    ovActivationContext context("/no/such/module");
    context.activate();
    context.activate();
    context.deactivate();
    context.become("", 2);
    context.deactivate();
    SUCCEED() << "no context to create, activate or release";
}

TEST(ovProcessControlPosix, IdAndPathAreTheKernels) {
    ovProcessControl control;
    EXPECT_EQ(static_cast<int>(::getpid()), control.getpid());
    char path[4096] = {};
    ASSERT_GT(readlink("/proc/self/exe", path, sizeof path - 1), 0);
    EXPECT_EQ(path, control.process_path());
}

} // namespace
