// Makes a failed expectation in a fuzz target end the fuzzer, which then keeps the input.
#include <gtest/gtest.h>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    GTEST_FLAG_SET(throw_on_failure, true);
    testing::InitGoogleTest();
    return 0;
}
