#include "bridge/records.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace lumora {
namespace {

using namespace std::string_literals;

// --- join details ---

TEST(JoinRecord, withoutDataCentreDecodesWithItAbsent) {
    const auto record = decode<joinSessionMessage>(R"({"sessionKey":123456789,"email":"casey@example.com"})");

    EXPECT_EQ(record, (joinSessionMessage{123456789, "casey@example.com", std::nullopt}));
}

TEST(JoinRecord, nullDataCentreDecodesLikeAMissingOne) {
    EXPECT_EQ(decode<joinSessionMessage>(R"({"sessionKey":123456789,"email":"c","dc":null})"),
              decode<joinSessionMessage>(R"({"sessionKey":123456789,"email":"c"})"));
}

TEST(JoinRecord, emptyDataCentreIsNotAbsent) {
    const auto record = decode<joinSessionMessage>(R"({"sessionKey":1,"email":"","dc":""})");

    ASSERT_TRUE(record);
    EXPECT_EQ(record->dc, "");
}

TEST(JoinRecord, integralNumbersCountHoweverTheyAreWritten) {
    for (const char* number : {"1000000000", "1e9", "1000000000.0", "1E+9", "10e8"}) {
        const auto record = decode<joinSessionMessage>(R"({"sessionKey":)"s + number + R"(,"email":""})");
        ASSERT_TRUE(record) << number;
        EXPECT_EQ(record->sessionKey, 1000000000) << number;
    }
}

TEST(JoinRecord, takesTheWholeRangeOf64Bits) {
    EXPECT_EQ(decode<joinSessionMessage>(R"({"sessionKey":9223372036854775807,"email":""})")->sessionKey,
              std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(decode<joinSessionMessage>(R"({"sessionKey":-9223372036854775808,"email":""})")->sessionKey,
              std::numeric_limits<std::int64_t>::min());
}

TEST(JoinRecord, keyThatIsNoIntegerFails) {
    for (const char* value : {R"("123456789")", "true", "false", "null", "1.5", "9223372036854775808",
                              "-9223372036854775809", "1e300", "1e999", "[1]", "{}"})
        EXPECT_FALSE(decode<joinSessionMessage>(R"({"sessionKey":)"s + value + R"(,"email":""})")) << value;
}

TEST(JoinRecord, withoutEmailFails) {
    EXPECT_FALSE(decode<joinSessionMessage>(R"({"sessionKey":123456789})"));
}

TEST(JoinRecord, withoutKeyFails) { EXPECT_FALSE(decode<joinSessionMessage>(R"({"email":"c","dc":"com"})")); }

TEST(JoinRecord, emailThatIsNoStringFails) {
    for (const char* value : {"null", "1", "true", "[]", "{}"})
        EXPECT_FALSE(decode<joinSessionMessage>(R"({"sessionKey":1,"email":)"s + value + "}")) << value;
}

TEST(JoinRecord, dataCentreThatIsNeitherStringNorNullFails) {
    for (const char* value : {"1", "false", "[]", "{}"})
        EXPECT_FALSE(decode<joinSessionMessage>(R"({"sessionKey":1,"email":"","dc":)"s + value + "}"))
            << value;
}

TEST(JoinRecord, keysAreMatchedWithTheirCase) {
    EXPECT_FALSE(decode<joinSessionMessage>(R"({"SessionKey":1,"email":""})"));
    EXPECT_FALSE(decode<joinSessionMessage>(R"({"sessionKey":1,"Email":""})"));
    EXPECT_EQ(decode<joinSessionMessage>(R"({"sessionKey":1,"email":"","DC":"com"})")->dc, std::nullopt);
}

// --- customer details ---

TEST(CustomerRecord, takesItsFourTexts) {
    const auto record =
        decode<customerDetails>(R"({"name":"Casey","company":"Acme","email":"c@x","language":"de"})");

    EXPECT_EQ(record, (customerDetails{"Casey", "Acme", "c@x", "de"}));
}

TEST(CustomerRecord, failsAsAWholeWithoutAnyOne) {
    EXPECT_FALSE(decode<customerDetails>(R"({"company":"","email":"","language":""})"));
    EXPECT_FALSE(decode<customerDetails>(R"({"name":"","email":"","language":""})"));
    EXPECT_FALSE(decode<customerDetails>(R"({"name":"","company":"","language":""})"));
    EXPECT_FALSE(decode<customerDetails>(R"({"name":"","company":"","email":""})"));
}

TEST(CustomerRecord, failsWhenAnyOneIsNoString) {
    EXPECT_FALSE(decode<customerDetails>(R"({"name":1,"company":"","email":"","language":""})"));
    EXPECT_FALSE(decode<customerDetails>(R"({"name":"","company":true,"email":"","language":""})"));
    EXPECT_FALSE(decode<customerDetails>(R"({"name":"","company":"","email":null,"language":""})"));
    EXPECT_FALSE(decode<customerDetails>(R"({"name":"","company":"","email":"","language":["en"]})"));
}

TEST(CustomerRecord, textsMayBeEmptyAndHoldAnything) {
    const auto record =
        decode<customerDetails>(R"({"name":"\u0000\"é","company":"","email":"","language":""})");

    ASSERT_TRUE(record);
    EXPECT_EQ(record->name, "\0\"é"s);
}

// --- proxy details ---

TEST(ProxyRecord, takesItsFiveValues) {
    const auto record = decode<proxyDetails>(
        R"({"host":"proxy","port":8080,"authRequired":true,"userName":"u","password":"p"})");

    EXPECT_EQ(record, (proxyDetails{"proxy", 8080, true, "u", "p"}));
}

TEST(ProxyRecord, ignoresAKeyThatItDoesNotKnow) {
    EXPECT_TRUE(decode<proxyDetails>(
        R"({"host":"","port":1,"authRequired":false,"userName":"","password":"","scheme":{"a":[1]}})"));
}

TEST(ProxyRecord, doesNotCheckThePortsRange) {
    for (const char* port : {"70000", "-1"})
        EXPECT_TRUE(decode<proxyDetails>(
            R"({"host":"","authRequired":false,"userName":"","password":"","port":)"s + port + "}"))
            << port;
}

TEST(ProxyRecord, failsWithoutAnyOne) {
    EXPECT_FALSE(decode<proxyDetails>(R"({"port":1,"authRequired":true,"userName":"","password":""})"));
    EXPECT_FALSE(decode<proxyDetails>(R"({"host":"","authRequired":true,"userName":"","password":""})"));
    EXPECT_FALSE(decode<proxyDetails>(R"({"host":"","port":1,"userName":"","password":""})"));
    EXPECT_FALSE(decode<proxyDetails>(R"({"host":"","port":1,"authRequired":true,"password":""})"));
    EXPECT_FALSE(decode<proxyDetails>(R"({"host":"","port":1,"authRequired":true,"userName":""})"));
}

TEST(ProxyRecord, failsWhenAnyOneHasAnotherType) {
    const auto with = [](const char* host, const char* port, const char* auth, const char* user,
                         const char* password) {
        return decode<proxyDetails>(R"({"host":)"s + host + R"(,"port":)" + port + R"(,"authRequired":)" +
                                    auth + R"(,"userName":)" + user + R"(,"password":)" + password + "}");
    };
    ASSERT_TRUE(with(R"("h")", "1", "true", R"("u")", R"("p")"));

    EXPECT_FALSE(with("null", "1", "true", R"("u")", R"("p")"));
    EXPECT_FALSE(with(R"("h")", R"("1")", "true", R"("u")", R"("p")"));
    EXPECT_FALSE(with(R"("h")", "true", "true", R"("u")", R"("p")"));
    EXPECT_FALSE(with(R"("h")", "1.5", "true", R"("u")", R"("p")"));
    EXPECT_FALSE(with(R"("h")", "1", R"("true")", R"("u")", R"("p")"));
    EXPECT_FALSE(with(R"("h")", "1", "1", R"("u")", R"("p")"));
    EXPECT_FALSE(with(R"("h")", "1", "null", R"("u")", R"("p")"));
    EXPECT_FALSE(with(R"("h")", "1", "true", "7", R"("p")"));
    EXPECT_FALSE(with(R"("h")", "1", "true", R"("u")", "7"));
}

// --- every record ---

TEST(Records, needAnObjectAtTheTop) {
    for (const char* text :
         {"", "   ", "null", "1", "\"text\"", "[]", R"([{"sessionKey":1,"email":""}])", "{", "nonsense"}) {
        EXPECT_FALSE(decode<joinSessionMessage>(text)) << text;
        EXPECT_FALSE(decode<customerDetails>(text)) << text;
        EXPECT_FALSE(decode<proxyDetails>(text)) << text;
    }
}

TEST(Records, refuseTextBehindTheObject) {
    EXPECT_FALSE(decode<joinSessionMessage>(R"({"sessionKey":1,"email":""} x)"));
}

TEST(Records, refuseNestingThatCouldExhaustTheStack) {
    EXPECT_FALSE(decode<joinSessionMessage>(std::string(100000, '[')));
    EXPECT_FALSE(decode<joinSessionMessage>(R"({"sessionKey":1,"email":"","x":)" + std::string(100000, '[')));
}

TEST(Records, areWrittenOutUnderTheSameKeysInTheSameOrder) {
    EXPECT_EQ(encode(joinSessionMessage{123456789, "c@x", "eu"}),
              R"({"sessionKey":123456789,"email":"c@x","dc":"eu"})");
    EXPECT_EQ(encode(customerDetails{"n", "c", "e", "l"}),
              R"({"name":"n","company":"c","email":"e","language":"l"})");
    EXPECT_EQ(encode(proxyDetails{"h", -1, false, "u", "p"}),
              R"({"host":"h","port":-1,"authRequired":false,"userName":"u","password":"p"})");
}

TEST(Records, leaveAnAbsentDataCentreOut) {
    EXPECT_EQ(encode(joinSessionMessage{1, "", std::nullopt}), R"({"sessionKey":1,"email":""})");
}

TEST(Records, haveNoTextWhenAFieldIsNotUtf8) { EXPECT_FALSE(encode(customerDetails{"\xff", "", "", ""})); }

} // namespace
} // namespace lumora
