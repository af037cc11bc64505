#include "support/rendering.h"

#include <gtest/gtest.h>

namespace lumora {
namespace {

using platform::Error;
using platform::PropertyListValue;

const Error kError{"NSURLErrorDomain", -1003, "A server with the specified hostname could not be found.", {}};

TEST(Rendering, absentTextIsTheNullPlaceholder) {
    EXPECT_EQ(render(std::optional<std::string>{}), "(null)");
    EXPECT_EQ(render(std::optional<std::string>{""}), "");
    EXPECT_EQ(render(std::optional<std::string>{"a \"b\""}), "a \"b\"");
}

TEST(Rendering, listsReadAsJson) {
    EXPECT_EQ(render(std::vector<std::string>{"-timestamps", "{\"a\":1}"}), R"(["-timestamps","{\"a\":1}"])");
    EXPECT_EQ(render(std::vector<std::string>{}), "[]");
}

TEST(Rendering, jsonReadsAsCompactText) {
    EXPECT_EQ(render(parseJson(R"({ "b" : [ 1, true ] , "a" : null })")), R"({"a":null,"b":[1,true]})");
    EXPECT_EQ(render(std::optional<Json>(Json("plain"))), "plain");
    EXPECT_EQ(render(std::optional<Json>(Json(nullptr))), "(null)");
    EXPECT_EQ(render(std::optional<Json>{}), "(null)");
    EXPECT_EQ(render(std::optional<Json>(Json(12))), "12");
}

TEST(Rendering, jsonThatIsNotUtf8IsTheNullPlaceholder) {
    EXPECT_EQ(render(std::optional<Json>(Json::array({"\xFF"}))), "(null)");
}

TEST(Rendering, errorsTellDomainCodeAndText) {
    EXPECT_EQ(render(kError), "Error Domain=NSURLErrorDomain Code=-1003 "
                              "\"A server with the specified hostname could not be found.\"");
}

TEST(Rendering, optionalErrorsTellThatTheyAreOptional) {
    EXPECT_EQ(render(std::optional<Error>(kError)),
              "Optional(Error Domain=NSURLErrorDomain Code=-1003 "
              "\"A server with the specified hostname could not be found.\")");
    EXPECT_EQ(render(std::optional<Error>{}), "nil");
}

TEST(Rendering, storedNumbersAreDecimal) {
    EXPECT_EQ(render(PropertyListValue(std::int64_t{-42})), "-42");
    EXPECT_EQ(render(PropertyListValue(1.5)), "1.5");
    EXPECT_EQ(render(PropertyListValue(1.0)), "1");
    EXPECT_EQ(render(PropertyListValue(true)), "1");
    EXPECT_EQ(render(PropertyListValue(false)), "0");
}

TEST(Rendering, storedTextIsAsItIs) { EXPECT_EQ(render(PropertyListValue("eu")), "eu"); }

TEST(Rendering, storedListsAndDictionariesReadAsJson) {
    EXPECT_EQ(render(PropertyListValue(platform::PropertyListArray{"a", std::int64_t{1}})), R"(["a",1])");
    EXPECT_EQ(render(PropertyListValue(platform::PropertyListDictionary{{"k", true}})), R"({"k":true})");
}

TEST(Rendering, storedDataReadsAsHexadecimal) {
    EXPECT_EQ(render(PropertyListValue(platform::PropertyListData{{0x00, 0xAB}})), "<00ab>");
}

} // namespace
} // namespace lumora
