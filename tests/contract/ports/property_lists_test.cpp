#include "support/backend.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <limits>

namespace lumora::contract {
namespace {

using platform::PropertyListArray;
using platform::PropertyListData;
using platform::PropertyListDate;
using platform::PropertyListDictionary;
using platform::PropertyListValue;

class PropertyListsContract : public testing::Test {
  protected:
    std::string xml(const PropertyListValue& value) {
        const auto written = lists_.serializeXml(value);
        return written ? written.value() : "error: " + written.error().localizedDescription;
    }

    /// What an independent, strict reader makes of what we write.
    std::string asPythonSees(const std::string& bytes) {
        writeFile(folder_ / "list", bytes);
        return python("import plistlib,sys; print(ascii(plistlib.load(open(sys.argv[1],'rb'))))");
    }

    /// What an independent writer makes of a Python value.
    std::string binaryFromPython(const std::string& value) {
        python("import plistlib,sys,datetime; plistlib.dump(" + value +
               ",open(sys.argv[1],'wb'),fmt=plistlib.FMT_BINARY)");
        return contentsOf(folder_ / "list");
    }

    PropertyListValue parsed(const std::string& bytes) {
        const auto value = lists_.parse(bytes);
        return value ? value.value() : PropertyListValue("error: " + value.error().localizedDescription);
    }

    static std::string document(const std::string& content) {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + content + "</plist>";
    }

    static PropertyListValue nested(int levels) {
        PropertyListValue value = true;
        for (int level = 0; level < levels; ++level) {
            PropertyListArray around;
            around.push_back(std::move(value));
            value = std::move(around);
        }
        return value;
    }

    PropertyLists lists_;
    TemporaryFolder folder_;

  private:
    std::string python(const std::string& program) {
        const auto tasks = makeTasks();
        const auto result =
            tasks->run("/usr/bin/python3", {"-c", program, folder_ / "list"}, platform::TaskOutput::capture);
        if (!result || result.value().terminationStatus != 0)
            return "python failed";
        return result.value().standardOutput;
    }
};

const PropertyListDictionary kEveryType{
    {"array", PropertyListArray{"one", std::int64_t{2}, PropertyListArray{}, PropertyListDictionary{}}},
    {"data", PropertyListData{{0x00, 0xff, 0x10, 0x80}}},
    {"empty data", PropertyListData{}},
    {"date", PropertyListDate{791024467}},
    {"dictionary", PropertyListDictionary{{"", "empty key"}}},
    {"false", false},
    {"true", true},
    {"largest", std::numeric_limits<std::int64_t>::max()},
    {"smallest", std::numeric_limits<std::int64_t>::min()},
    {"negative", std::int64_t{-5}},
    {"zero", std::int64_t{0}},
    {"real", 0.1},
    {"negative real", -1.2345678901234567e-300},
    {"string", "text"},
};

const PropertyListDictionary kHardTexts{
    {"markup & <key> \"'", "a & b < c > d \"e\" 'f' ]]> &amp; &#65;"},
    {"blanks", "  leading and trailing\t \n"},
    {"line ends", "a\nb\rc\r\nd\n"},
    {"only blanks", "   "},
    {"empty", ""},
    {"accents and emoji \xF0\x9F\x98\x80", "\xC3\xA9\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x94\xAC"},
};

TEST_F(PropertyListsContract, everyTypeComesBackFromXmlUnchanged) {
    EXPECT_EQ(PropertyListValue(kEveryType), parsed(xml(kEveryType)));
}

TEST_F(PropertyListsContract, everyTextComesBackFromXmlUnchanged) {
    EXPECT_EQ(PropertyListValue(kHardTexts), parsed(xml(kHardTexts)));
}

TEST_F(PropertyListsContract, aStrictReaderSeesWhatWeWrote) {
    EXPECT_EQ("{'array': ['one', 2, [], {}], 'data': b'\\x00\\xff\\x10\\x80', 'date': "
              "datetime.datetime(2026, 1, 25, 9, "
              "1, 7), 'dictionary': {'': 'empty key'}, 'empty data': b'', 'false': False, 'largest': "
              "9223372036854775807, 'negative': -5, 'negative real': -1.2345678901234568e-300, 'real': 0.1, "
              "'smallest': -9223372036854775808, 'string': 'text', 'true': True, 'zero': 0}\n",
              asPythonSees(xml(kEveryType)));
    EXPECT_EQ(
        "{'accents and emoji \\U0001f600': '\\xe9\\U0001f469\\u200d\\U0001f52c', 'blanks': '  leading and "
        "trailing\\t \\n', 'empty': '', 'line ends': 'a\\nb\\rc\\r\\nd\\n', 'markup & <key> \"\\'': 'a & b < "
        "c > "
        "d \"e\" \\'f\\' ]]> &amp; &#65;', 'only blanks': '   '}\n",
        asPythonSees(xml(kHardTexts)));
}

TEST_F(PropertyListsContract, xmlCarriesTheFormatsHead) {
    EXPECT_EQ(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
        "<plist "
        "version=\"1.0\">\n<dict>\n\t<key>a</key>\n\t<array>\n\t\t<true/>\n\t</array>\n</dict>\n</plist>\n",
        xml(PropertyListDictionary{{"a", PropertyListArray{true}}}));
}

TEST_F(PropertyListsContract, binaryListsOfOthersAreRead) {
    const PropertyListValue expected = PropertyListDictionary{
        {"a", PropertyListArray{"x", std::int64_t{-7}, std::int64_t{300}, 2.5, true, false}},
        {"b", PropertyListData{{1, 2}}},
        {"c", PropertyListDate{0}},
        {"\xC3\xA9", "\xF0\x9F\x98\x80"},
        {"nine", std::int64_t{9223372036854775807}},
        {"min", std::numeric_limits<std::int64_t>::min()},
    };

    EXPECT_EQ(expected, parsed(binaryFromPython(
                            "{'a':['x',-7,300,2.5,True,False],'b':b'\\1\\2','c':datetime.datetime(2001,1,1),"
                            "'\\xe9':'\\U0001f600','nine':9223372036854775807,'min':-9223372036854775808}")));
}

TEST_F(PropertyListsContract, aTextWithANulInABinaryListIsKeptWholeOrAnError) {
    for (const auto& [written, text] : {std::pair{"'a\\0b'", std::string("a\0b", 3)},
                                        {"'\\0'", std::string("\0", 1)},
                                        {"'\\xe9\\0'", std::string("\xC3\xA9\0", 3)}}) {
        const auto value = lists_.parse(binaryFromPython(written));
        EXPECT_TRUE(!value || value.value() == PropertyListValue(text)) << written;
        const auto keyed = lists_.parse(binaryFromPython(std::string("{") + written + ":True}"));
        EXPECT_TRUE(!keyed || keyed.value() == PropertyListValue(PropertyListDictionary{{text, true}}))
            << written;
    }
}

TEST_F(PropertyListsContract, integersAboveTheSignedRangeKeepTheirSize) {
    EXPECT_EQ(PropertyListValue(18446744073709551615.0),
              parsed(document("<integer>18446744073709551615</integer>")));
    EXPECT_EQ(PropertyListValue(18446744073709551615.0), parsed(binaryFromPython("2**64-1")));
}

TEST_F(PropertyListsContract, farDatesAreKept) {
    EXPECT_EQ(PropertyListValue(PropertyListDate{63113904000}),
              parsed(document("<date>4001-01-01T00:00:00Z</date>")));
    EXPECT_EQ(PropertyListValue(PropertyListDate{63113904000}),
              parsed(binaryFromPython("datetime.datetime(4001,1,1)")));
    EXPECT_EQ(PropertyListValue(PropertyListDate{-978307201}),
              parsed(document("<date>1969-12-31T23:59:59Z</date>")));
}

TEST_F(PropertyListsContract, realsDoNotDependOnTheLocale) {
    if (std::setlocale(LC_NUMERIC, "de_DE.UTF-8") == nullptr)
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    const PropertyListValue value = parsed(document("<real>1.5</real>"));
    const std::string text = xml(1.5);
    std::setlocale(LC_NUMERIC, "C");

    EXPECT_EQ(PropertyListValue(1.5), value);
    EXPECT_THAT(text, testing::HasSubstr("<real>1.5</real>"));
}

TEST_F(PropertyListsContract, textThatXmlCannotCarryIsAnError) {
    for (const std::string& text :
         {std::string("a\0b", 3), std::string("\xff\xfe"), std::string("\x01"), std::string("\x1b[0m"),
          std::string("\xED\xA0\x80"), std::string("\xEF\xBF\xBE"), std::string("\xC3")}) {
        EXPECT_FALSE(lists_.serializeXml(text)) << testing::PrintToString(text);
        EXPECT_FALSE(lists_.serializeXml(PropertyListDictionary{{text, true}}))
            << testing::PrintToString(text);
        EXPECT_FALSE(lists_.serializeXml(PropertyListArray{PropertyListArray{text}}))
            << testing::PrintToString(text);
    }
    EXPECT_FALSE(lists_.serializeXml(PropertyListDate{1e300}));
    EXPECT_FALSE(lists_.serializeXml(PropertyListDate{std::nan("")}));
}

TEST_F(PropertyListsContract, aByteOrderMarkIsNoFault) {
    EXPECT_EQ(PropertyListValue("text"), parsed("\xEF\xBB\xBF" + document("<string>text</string>")));
}

TEST_F(PropertyListsContract, malformedXmlIsAnError) {
    for (const std::string& bytes :
         {std::string(), std::string("junk"), std::string("{\"a\":1}"),
          document("<dict><string>a</string></dict>"), document("<string>a"),
          document("<string>&undeclared;</string>"), document("<string>\xff</string>"),
          document("<unknown/>"), std::string("<plist><dict>"), std::string("\0\0\0\0", 4)}) {
        const auto value = lists_.parse(bytes);
        EXPECT_FALSE(value) << bytes;
    }
}

TEST_F(PropertyListsContract, entitiesThatUnfoldAreNotUnfolded) {
    std::string laughs = "<?xml version=\"1.0\"?><!DOCTYPE plist [<!ENTITY l0 \"ha\">";
    for (int level = 1; level < 30; ++level)
        laughs += "<!ENTITY l" + std::to_string(level) + " \"&l" + std::to_string(level - 1) + ";&l" +
                  std::to_string(level - 1) + ";\">";
    laughs += "]><plist version=\"1.0\"><string>&l29;</string></plist>";

    EXPECT_FALSE(lists_.parse(laughs));
}

TEST_F(PropertyListsContract, deepNestingIsAnErrorInBothDirectionsAndBothForms) {
    std::string deep;
    for (int level = 0; level < 200000; ++level)
        deep += "<array>";
    EXPECT_FALSE(lists_.parse(document(deep)));
    std::string closed = deep;
    for (int level = 0; level < 200000; ++level)
        closed += "</array>";
    EXPECT_FALSE(lists_.parse(document(closed)));

    // Closing tags in comments and character data close nothing.
    std::string disguised;
    for (int level = 0; level < 200000; ++level)
        disguised += "<array><!--</array>--><?</array>?>";
    EXPECT_FALSE(lists_.parse(document(disguised)));

    // Nor do quoted ends of tags, and quoted beginnings of comments begin none.
    std::string quoted;
    for (int level = 0; level < 200000; ++level)
        quoted += "<array a=\"/>\">";
    EXPECT_FALSE(lists_.parse(document(quoted)));
    EXPECT_FALSE(lists_.parse("<?xml \"?><!--\" ?><plist version=\"1.0\">" + closed + "</plist>"));

    EXPECT_FALSE(lists_.serializeXml(nested(1000)));
}

TEST_F(PropertyListsContract, ordinaryNestingIsRead) { EXPECT_EQ(nested(200), parsed(xml(nested(200)))); }

/// A binary list of one-byte references whose object i is the given bytes.
std::string binaryOf(const std::vector<std::string>& objects) {
    std::string bytes = "bplist00";
    std::string table;
    for (const std::string& object : objects) {
        table += static_cast<char>(bytes.size() >> 8U);
        table += static_cast<char>(bytes.size() & 0xFFU);
        bytes += object;
    }
    const std::size_t tableOffset = bytes.size();
    bytes += table + std::string(6, '\0') + "\x02\x01";
    const auto number = [&](std::size_t value) {
        for (int shift = 56; shift >= 0; shift -= 8)
            bytes += static_cast<char>(value >> static_cast<unsigned>(shift) & 0xFFU);
    };
    number(objects.size());
    number(0);
    number(tableOffset);
    return bytes;
}

TEST_F(PropertyListsContract, hostileBinaryListsAreErrors) {
    EXPECT_EQ(PropertyListValue(PropertyListArray{true, true}), parsed(binaryOf({"\xA2\x01\x01", "\x09"})));

    EXPECT_FALSE(lists_.parse(binaryOf({std::string("\xA1\x00", 2)}))) << "a circle";
    EXPECT_FALSE(lists_.parse(binaryOf({"\xA1\x05"}))) << "a reference to nothing";
    EXPECT_FALSE(lists_.parse(binaryOf({"\x5E"
                                        "ab"})))
        << "a text longer than the file";
    EXPECT_FALSE(lists_.parse(binaryOf({"\xC1\x00"}))) << "an unknown kind";
    EXPECT_FALSE(lists_.parse("bplist00"));
    EXPECT_FALSE(lists_.parse("bplist00" + std::string(32, '\xff')));

    std::vector<std::string> doubling;
    for (int level = 1; level <= 100; ++level)
        doubling.push_back(std::string("\xA2") + static_cast<char>(level) + static_cast<char>(level));
    doubling.emplace_back("\x09");
    EXPECT_FALSE(lists_.parse(binaryOf(doubling))) << "shared objects that multiply";

    std::vector<std::string> deep;
    for (int level = 1; level < 256; ++level)
        deep.push_back(std::string("\xA1") + static_cast<char>(level));
    deep.emplace_back(std::string("\xA1") + '\xff'); // and the last holds itself
    EXPECT_FALSE(lists_.parse(binaryOf(deep)));
}

TEST_F(PropertyListsContract, everyCutOfABinaryListIsReadOrRefusedWithoutHarm) {
    const std::string whole =
        binaryFromPython("{'a':['x',-7,2.5,True],'b':b'12','c':'d'*40,'e':datetime.datetime.now()}");
    ASSERT_TRUE(lists_.parse(whole));
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(lists_.parse(whole.substr(0, length))) << length;

    int accepted = 0;
    for (std::size_t at = 8; at < whole.size(); ++at) {
        for (const char byte : {'\x00', '\x0f', '\x14', '\x7f', '\xa1', '\xdf', '\xff'}) {
            std::string changed = whole;
            changed[at] = byte;
            if (lists_.parse(changed))
                ++accepted; // most changes of a text's bytes are
        }
    }
    EXPECT_GT(accepted, 0);
}

} // namespace
} // namespace lumora::contract
