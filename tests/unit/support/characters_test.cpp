#include "support/characters.h"

#include <gtest/gtest.h>

#include <string>

namespace lumora {
namespace {

using namespace std::string_view_literals;

TEST(Characters, emptyTextHasNone) { EXPECT_EQ(countCharacters(""), 0U); }

TEST(Characters, asciiLettersCountOneEach) { EXPECT_EQ(countCharacters("123456789"), 9U); }

TEST(Characters, letterWithCombiningMarkIsOne) { EXPECT_EQ(countCharacters("e\u0301"), 1U); }

TEST(Characters, precomposedLetterIsOne) { EXPECT_EQ(countCharacters("\u00E9"), 1U); }

TEST(Characters, familyJoinedByZeroWidthJoinersIsOne) {
    EXPECT_EQ(countCharacters("\U0001F468\u200D\U0001F469\u200D\U0001F467"), 1U);
}

TEST(Characters, emojiWithSkinToneIsOne) { EXPECT_EQ(countCharacters("\U0001F44D\U0001F3FD"), 1U); }

TEST(Characters, regionalIndicatorsPairUp) {
    EXPECT_EQ(countCharacters("\U0001F1E9\U0001F1EA"), 1U);
    EXPECT_EQ(countCharacters("\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7"), 2U);
    EXPECT_EQ(countCharacters("\U0001F1E9\U0001F1EA\U0001F1EB"), 2U);
}

TEST(Characters, carriageReturnAndLineFeedAreOne) { EXPECT_EQ(countCharacters("a\r\nb"), 3U); }

TEST(Characters, hangulSyllableOfJamosIsOne) { EXPECT_EQ(countCharacters("\u1112\u1161\u11AB"), 1U); }

TEST(Characters, utf16BecomesUtf8) {
    EXPECT_EQ(utf8OfUtf16(u""), "");
    EXPECT_EQ(utf8OfUtf16(u"a\0\u00E9\u65E5\uFFFF\U0001F600\U0010FFFF"sv),
              "a\0\u00E9\u65E5\uFFFF\U0001F600\U0010FFFF"sv);
}

TEST(Characters, halvesOfSurrogatePairsAreThreeBytesEach) {
    constexpr char16_t kHalves[] = {0xDE00, u'a', 0xD83D, 0xD83D, 0xDE00, 0xD83D};
    EXPECT_EQ(utf8OfUtf16({kHalves, std::size(kHalves)}), "\xED\xB8\x80"
                                                          "a\xED\xA0\xBD\U0001F600\xED\xA0\xBD");
}

TEST(Characters, invalidBytesCountOneEach) {
    EXPECT_EQ(countCharacters("\xFF\xFE"sv), 2U);
    EXPECT_EQ(countCharacters("a\xC3"sv), 2U);
}

TEST(Characters, nulIsACharacter) { EXPECT_EQ(countCharacters("a\0b"sv), 3U); }

TEST(Characters, longTextOfMarksIsOneCharacter) {
    std::string text = "a";
    for (int mark = 0; mark < 10000; ++mark)
        text += "\u0301";
    EXPECT_EQ(countCharacters(text), 1U);
}

TEST(CharacterAt, countsUserPerceivedCharacters) {
    EXPECT_EQ(characterAt("e\u0301\U0001F1E9\U0001F1EA7x", 0), "e\u0301");
    EXPECT_EQ(characterAt("e\u0301\U0001F1E9\U0001F1EA7x", 1), "\U0001F1E9\U0001F1EA");
    EXPECT_EQ(characterAt("e\u0301\U0001F1E9\U0001F1EA7x", 2), "7");
}

TEST(CharacterAt, isEmptyBehindTheEnd) {
    EXPECT_EQ(characterAt("abc", 3), "");
    EXPECT_EQ(characterAt("", 0), "");
}

TEST(Trimming, removesWhiteSpaceAndLineBreaksAtBothEndsOnly) {
    EXPECT_EQ(trimmed(" \t\r\n\v\f a b \n"), "a b");
}

TEST(Trimming, knowsUnicodeWhiteSpace) {
    EXPECT_EQ(trimmed("\u0085\u00A0\u2003\u2028host\u2029\u3000\u202F"), "host");
}

TEST(Trimming, keepsZeroWidthSpaceAndControlCharacters) {
    EXPECT_EQ(trimmed("\u200Bhost\x1F"), "\u200Bhost\x1F");
}

TEST(Trimming, leavesNothingOfBlanksAndOfNothing) {
    EXPECT_EQ(trimmed(" \n\t"), "");
    EXPECT_EQ(trimmed(""), "");
}

TEST(Trimming, keepsInvalidBytes) { EXPECT_EQ(trimmed(" \xFF "), "\xFF"); }

} // namespace
} // namespace lumora
