#include "support/property_lists.h"

#include <gtest/gtest.h>

#include <cmath>

namespace lumora {
namespace {

using namespace std::string_literals;
using platform::PropertyListArray;
using platform::PropertyListDate;
using platform::PropertyListDictionary;
using platform::PropertyListValue;

std::string faultOf(const PropertyListValue& value) {
    const auto fault = faultAsXml(value);
    EXPECT_TRUE(!fault || (fault->domain == "NSCocoaErrorDomain" && fault->code == 3852));
    return fault ? fault->localizedDescription : "";
}

PropertyListValue nested(std::size_t levels) {
    PropertyListValue value = PropertyListArray{};
    for (std::size_t level = 1; level < levels; ++level)
        value = PropertyListArray{std::move(value)};
    return value;
}

TEST(PropertyListAsXml, carriesOrdinaryValues) {
    const PropertyListDictionary inner{
        {"caf\u00e9", "\t\r\n\U0001F600"}, {"", 1.5}, {"data", platform::PropertyListData{{0, 1}}}};
    EXPECT_EQ("", faultOf(PropertyListArray{inner, true, std::int64_t{1}, PropertyListDate{0}, "]]>"}));
}

TEST(PropertyListAsXml, carriesNoCharactersThatXmlForbids) {
    for (const auto& text :
         {"\0"s, "a\x01"s, "\x1F"s, "\xEF\xBF\xBE"s, "\xEF\xBF\xBF"s, "\xC3"s, "\xFF"s, "\xED\xA0\x80"s}) {
        EXPECT_NE("", faultOf(text)) << testing::PrintToString(text);
        EXPECT_NE("", faultOf(PropertyListDictionary{{text, true}}));
        EXPECT_NE("", faultOf(PropertyListArray{1.5, PropertyListDictionary{{"key", text}}}));
    }
}

TEST(PropertyListAsXml, carriesDatesOfFourDigitYears) {
    constexpr double kYear1 = -63113904000;
    constexpr double kYear10000 = 252423993600;
    for (const double second : {kYear1, 0.0, kYear10000 - 0.5})
        EXPECT_EQ("", faultOf(PropertyListDate{second})) << second;
    for (const double second : {kYear1 - 0.5, kYear10000, std::nan(""), HUGE_VAL, -HUGE_VAL})
        EXPECT_NE("", faultOf(PropertyListDate{second})) << second;
}

TEST(PropertyListAsXml, carriesNestingUpToTheLimit) {
    EXPECT_EQ("", faultOf(nested(kMaximumNesting)));
    EXPECT_NE("", faultOf(nested(kMaximumNesting + 1)));
}

} // namespace
} // namespace lumora
