/// The main function of all test programs.
#include <gmock/gmock.h>

#include <cstdio>

/// A name that no test bears any more, or that was changed by media which came later, is no success.
int main(int argumentCount, char** arguments) {
    testing::InitGoogleMock(&argumentCount, arguments);
    int const result = RUN_ALL_TESTS();
    bool const isOnlyListing = testing::GTEST_FLAG(list_tests);
    if (!isOnlyListing && testing::UnitTest::GetInstance()->test_to_run_count() == 0) {
        std::fputs("no test has this name; build again, so that the tests are listed anew\n", stderr);
        return 1;
    }
    return result;
}
