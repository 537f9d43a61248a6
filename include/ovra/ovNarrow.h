/// @file
/// Narrow-character helpers `ov_stricmp` and `ov_lead_byte` now live with the
/// file utilities they serve; this header remains for existing includes.
#pragma once

#include "ovra/ovFileUtils.h"
