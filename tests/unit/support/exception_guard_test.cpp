#include "fakes/core_test.h"
#include "support/exception_guard.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace lumora {
namespace {

using ::testing::ElementsAre;

class ExceptionGuard : public CoreTest {};

TEST_F(ExceptionGuard, saysThatABodyRanToItsEnd) {
    bool ran = false;

    EXPECT_TRUE(guarded("+[Utils x]", [&ran] { ran = true; }));

    EXPECT_TRUE(ran);
    EXPECT_THAT(streams.logged(), ElementsAre());
}

TEST_F(ExceptionGuard, logsTheExceptionUnderTheOperationsName) {
    bool reachedTheEnd = false;

    EXPECT_FALSE(guarded("+[Utils x]", [&reachedTheEnd] {
        if (!reachedTheEnd)
            throw std::runtime_error("went wrong");
        reachedTheEnd = true;
    }));

    EXPECT_FALSE(reachedTheEnd);
    EXPECT_THAT(
        streams.logged(),
        ElementsAre("+[Utils x] : ************************ EXCEPTION ************************ \n Description "
                    ":  went wrong // Call Stack Symbol : [\"frame one\",\"frame two\"]"));
}

} // namespace
} // namespace lumora
