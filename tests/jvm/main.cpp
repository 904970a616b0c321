// Starts the virtual machine once for all tests. What it complains about fails the test in which it comes up.

#include <gtest/gtest.h>

#include "tests/machine/Jvm.h"

namespace {

class NoWarnings : public testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo &) override {
        for (const std::string &warning : jvm::takeWarnings()) {
            ADD_FAILURE() << warning;
        }
    }
};

} // namespace

int main(int count, char **arguments) {
    testing::InitGoogleTest(&count, arguments);
    testing::UnitTest::GetInstance()->listeners().Append(new NoWarnings); // the list owns it
    jvm::start({"-Xcheck:jni", "-Xmx512m"});
    return RUN_ALL_TESTS();
}
