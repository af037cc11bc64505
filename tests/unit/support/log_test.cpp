#include "fakes/core_test.h"
#include "support/log.h"

#include <gmock/gmock.h>

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

} // namespace
} // namespace lumora
