/* A C program that uses the generated version header and calls through the
   export macro as C sees it. Exits 0 when all answers are right. */
#include "ovra/ovExport.h"
#include "ovra/ovNarrow.h"
#include "ovra/ovVersion.h"

#include <stdio.h>

static int failures = 0;

static void check(int ok, const char* what) {
    if (!ok) {
        printf("FAILED: %s\n", what);
        ++failures;
    }
}

int main(void) {
    check(sizeof(ovChar16) == 2, "ovChar16 is one 16-bit unit");
    check(OVRA_VERSION_NUMBER ==
              ((OVRA_VERSION_MAJOR << 16) | (OVRA_VERSION_MINOR << 8) | OVRA_VERSION_PATCH),
          "version number");
    check(OVRA_VERSION_STRING[0] >= '0' && OVRA_VERSION_STRING[0] <= '9', "version string");
    check(ov_stricmp("Hello", "hELLO") == 0, "ov_stricmp folds case");
    check(ov_stricmp("a", "b") < 0, "ov_stricmp orders");
    check(ov_stricmp(NULL, "") < 0, "ov_stricmp sorts null first");
    check(ov_lead_byte('A') == 0, "ov_lead_byte of ASCII");
    if (failures == 0)
        printf("C callers: all checks passed\n");
    return failures == 0 ? 0 : 1;
}
