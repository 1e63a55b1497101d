#include "targets/fuzzentries.h"

#include <gtest/gtest.h>

// Inputs that once crashed a reader under the fuzzer; the sanitizer build tells if one does
// again.
TEST(XmlFuzzRegressionTest, InputsTheFuzzerFoundAreReadSafely)
{
    EXPECT_GT(runFuzzRegressions("xmlparser"), 0);
    EXPECT_GT(runFuzzRegressions("xmlpreprocessor"), 0);
}
