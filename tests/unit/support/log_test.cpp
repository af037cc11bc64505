#include "fakes/core_test.h"
#include "support/exception_guard.h"
#include "support/log.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace lumora {
namespace {

using ::testing::ElementsAre;

class Log : public CoreTest {};

TEST_F(Log, prefixesDateTimeProcessAndIdentifiers) {
    log("{} : Status code : {}", "+[Utils getCustomDomain]", 200);

    EXPECT_EQ(streams.raw(), "2026-11-21 09:41:07.123 Ovra Tessel Lumora[4242:7] "
                             "+[Utils getCustomDomain] : Status code : 200\n");
}

TEST_F(Log, addsNoSecondLineFeed) {
    writeLogMessage("ends in one \n");

    EXPECT_EQ(streams.raw(), "2026-11-21 09:41:07.123 Ovra Tessel Lumora[4242:7] ends in one \n");
}

TEST_F(Log, keepsLineFeedsInside) {
    writeLogMessage("a \n b");

    EXPECT_EQ(streams.raw(), "2026-11-21 09:41:07.123 Ovra Tessel Lumora[4242:7] a \n b\n");
}

TEST_F(Log, doesNotReadBracesInValues) {
    log("{} : {}", "op", "{0} {}");

    EXPECT_THAT(streams.logged(), ElementsAre("op : {0} {}"));
}

TEST_F(Log, printedLinesGoToStandardOutputAsTheyAre) {
    print("{} : {}", "handleWebViewError(_:)", "text");
    writePrintedLine("ends in one\n");

    EXPECT_EQ(streams.raw(), "handleWebViewError(_:) : text\nends in one\n\n");
    EXPECT_THAT(streams.logged(), ElementsAre());
}

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
