#include "support/json.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <string>

namespace lumora {
namespace {

using namespace std::string_literals;

std::string nested(int depth) {
    return std::string(static_cast<std::size_t>(depth), '[') +
           std::string(static_cast<std::size_t>(depth), ']');
}

Json parsed(const std::string& text) { return parseJson(text).value(); }

// --- parsing ---

TEST(JsonParsing, takesAsManyMembersAsAMessageCanHold) {
    constexpr int kMembers = 100000;
    std::string text = "{\"last\":true";
    for (int index = 0; index < kMembers; ++index)
        text += ",\"" + std::to_string(index) + "\":" + std::to_string(index);
    const auto object = parsed(text + "}");
    EXPECT_EQ(object.size(), kMembers + 1U);
    EXPECT_EQ(*member(object, "99999"), 99999);
}

TEST(JsonParsing, takesAsManyObjectsAsAMessageCanHold) {
    constexpr int kObjects = 200000; // a walk over the list for each of them would take minutes
    std::string text = "[";
    for (int index = 0; index < kObjects; ++index)
        text += "{},";
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(parsed(text + "{}]").size(), kObjects + 1U);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST(JsonParsing, refusesMalformedText) {
    for (const char* text :
         {"", " ", "{", "{\"a\":}", "[1,]", "{'a':1}", "nul", "<html>", "[1]]", "{} x", "01"})
        EXPECT_FALSE(parseJson(text)) << text;
}

TEST(JsonParsing, refusesTextBehindANul) {
    EXPECT_FALSE(parseJson("{}\0{}"s));
    EXPECT_FALSE(parseJson("{}\0"s));
}

TEST(JsonParsing, refusesInvalidUtf8) { EXPECT_FALSE(parseJson("\"\xFF\"")); }

TEST(JsonParsing, refusesNumbersThatNoDoubleHolds) { EXPECT_FALSE(parseJson("[1e999]")); }

TEST(JsonParsing, takes512LevelsAndRefusesOneMore) {
    EXPECT_TRUE(parseJson(nested(512)));
    EXPECT_FALSE(parseJson(nested(513)));
}

TEST(JsonParsing, countsObjectsAndListsTogether) {
    std::string text = "1";
    for (int level = 0; level < 256; ++level)
        text = "[{\"a\":" + text + "}]";
    EXPECT_TRUE(parseJson(text));
    EXPECT_FALSE(parseJson("[" + text + "]"));
}

TEST(JsonParsing, deepNestingDoesNotExhaustTheStack) {
    EXPECT_FALSE(parseJson(std::string(100000, '[')));
    EXPECT_FALSE(parseJson(nested(100000)));
}

TEST(JsonParsing, bracketsInTextDoNotCount) {
    const std::string many(1000, '[');
    EXPECT_TRUE(parseJson("[\"" + many + "\"]"));
    EXPECT_TRUE(parseJson("[\"\\\"" + many + "\"]"));
    EXPECT_TRUE(parseJson(R"({"a\\":")" + many + R"("})"));
    EXPECT_FALSE(parseJson(R"(["a\\",)" + nested(512) + "]"));
    EXPECT_FALSE(parseJson(R"(["]\"]]]]",)" + nested(512) + "]"));
}

TEST(JsonParsing, siblingsOfADeepMemberDoNotCount) {
    EXPECT_TRUE(parseJson("[" + nested(511) + "," + nested(511) + "]"));
}

// --- members ---

TEST(JsonMember, isFoundInObjectsOnly) {
    const auto object = parsed(R"({"a":null})");
    ASSERT_NE(member(object, "a"), nullptr);
    EXPECT_TRUE(member(object, "a")->is_null());
    EXPECT_EQ(member(object, "b"), nullptr);
    EXPECT_EQ(member(parsed("[1]"), "a"), nullptr);
    EXPECT_EQ(member(parsed("\"a\""), "a"), nullptr);
    EXPECT_EQ(member(Json(nullptr), "a"), nullptr);
}

// --- integers ---

TEST(ExactInteger, takesIntegralNumbersHoweverWritten) {
    EXPECT_EQ(exactInteger(parsed("7")), 7);
    EXPECT_EQ(exactInteger(parsed("-7")), -7);
    EXPECT_EQ(exactInteger(parsed("1.0")), 1);
    EXPECT_EQ(exactInteger(parsed("1e9")), 1000000000);
    EXPECT_EQ(exactInteger(parsed("-0.0")), 0);
}

TEST(ExactInteger, refusesFractions) {
    EXPECT_EQ(exactInteger(parsed("1.5")), std::nullopt);
    EXPECT_EQ(exactInteger(parsed("1e-1")), std::nullopt);
}

TEST(ExactInteger, keepsToSigned64Bits) {
    EXPECT_EQ(exactInteger(parsed("9223372036854775807")), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(exactInteger(parsed("9223372036854775808")), std::nullopt);
    EXPECT_EQ(exactInteger(parsed("-9223372036854775808")), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(exactInteger(parsed("-9223372036854775809")), std::nullopt);
    EXPECT_EQ(exactInteger(parsed("-9223372036854777856")), std::nullopt);
    EXPECT_EQ(exactInteger(parsed("1e19")), std::nullopt);
    EXPECT_EQ(exactInteger(parsed("1e300")), std::nullopt);
}

TEST(ExactInteger, refusesWhatIsNoNumber) {
    for (const char* text : {"true", "\"1\"", "null", "[1]", "{}"})
        EXPECT_EQ(exactInteger(parsed(text)), std::nullopt) << text;
}

// --- booleans ---

TEST(BooleanConversion, takesBooleansAndNumbers) {
    EXPECT_TRUE(booleanConversion(parsed("true")));
    EXPECT_FALSE(booleanConversion(parsed("false")));
    EXPECT_TRUE(booleanConversion(parsed("1")));
    EXPECT_TRUE(booleanConversion(parsed("-1")));
    EXPECT_TRUE(booleanConversion(parsed("0.5")));
    EXPECT_FALSE(booleanConversion(parsed("0")));
    EXPECT_FALSE(booleanConversion(parsed("-0.0")));
}

TEST(BooleanConversion, textIsTrueByItsBeginning) {
    for (const char* text : {"true", "True", "t", "T", "yes", "YES", "y", "Y", "1", "9 lives", "  yes", "\t1",
                             "007", "0001", "+1", "-5", "\r\n1", "+0t"})
        EXPECT_TRUE(booleanConversion(Json(text))) << text;
}

TEST(BooleanConversion, otherTextIsFalse) {
    for (const char* text :
         {"", " ", "0", "000", "false", "False", "no", "N", "on", "+", "-", "+-1", "0.9", "x1", "00x1"})
        EXPECT_FALSE(booleanConversion(Json(text))) << text;
}

TEST(BooleanConversion, nullListsAndObjectsAreFalse) {
    for (const char* text : {"null", "[true]", "{\"a\":true}"})
        EXPECT_FALSE(booleanConversion(parsed(text))) << text;
}

// --- stored values ---

TEST(StoredValueAsJson, keepsTheTypeItWasStoredWith) {
    const platform::PropertyListDictionary stored{{"flag", true},
                                                  {"list", platform::PropertyListArray{"a", std::int64_t{2}}},
                                                  {"number", std::int64_t{1}},
                                                  {"real", 1.5},
                                                  {"text", "1"}};
    EXPECT_EQ(serializeJson(*toJson(platform::PropertyListValue(stored))),
              R"({"flag":true,"list":["a",2],"number":1,"real":1.5,"text":"1"})");
}

TEST(StoredValueAsJson, absentIsNull) { EXPECT_EQ(toJson(std::nullopt), OrderedJson(nullptr)); }

TEST(StoredValueAsJson, hasNoFormForDataDatesAndNonFiniteNumbers) {
    const platform::PropertyListValue data(platform::PropertyListData{{1, 2}});
    EXPECT_EQ(toJson(data), std::nullopt);
    EXPECT_EQ(toJson(platform::PropertyListValue(platform::PropertyListDate{1})), std::nullopt);
    EXPECT_EQ(toJson(platform::PropertyListValue(std::numeric_limits<double>::infinity())), std::nullopt);
    EXPECT_EQ(toJson(platform::PropertyListValue(std::numeric_limits<double>::quiet_NaN())), std::nullopt);
    EXPECT_EQ(toJson(platform::PropertyListValue(platform::PropertyListArray{data})), std::nullopt);
    EXPECT_EQ(toJson(platform::PropertyListValue(platform::PropertyListDictionary{{"d", data}})),
              std::nullopt);
}

// --- writing ---

TEST(JsonText, isCompactAndEscaped) {
    EXPECT_EQ(serializeJson(Json{{"a", "q\"\n\\/"}, {"b", {1, nullptr}}}),
              R"({"a":"q\"\n\\/","b":[1,null]})");
}

TEST(JsonText, doesNotExistForInvalidUtf8) { EXPECT_EQ(serializeJson(Json("\xFF")), std::nullopt); }

} // namespace
} // namespace lumora
