#include "platform/linux/ports/launch_arguments.h"
#include "platform/linux/ports/linux_preferences.h"
#include "platform/linux/ports/linux_property_lists.h"
#include "support/in_child.h"
#include "support/temporary_folder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>

namespace lumora::contract {
namespace {

namespace fs = std::filesystem;
using platform::PreferenceLevel;
using platform::PropertyListDictionary;
using platform::PropertyListValue;
using platform::linux_backend::LinuxPreferences;
using platform::linux_backend::PreferenceFolders;
using platform::linux_backend::preferencesFromArguments;
using testing::Pair;
using testing::UnorderedElementsAre;

constexpr const char* kDomain = LinuxPreferences::kApplicationDomain;
constexpr auto kUser = PreferenceLevel::currentUserAnyHost;
constexpr auto kSystem = PreferenceLevel::anyUserAnyHost;

/// The files behind the levels.
class LinuxPreferencesContract : public testing::Test {
  protected:
    LinuxPreferencesContract() {
        folders_.managed = folder_ / "managed";
        folders_.user = folder_ / "home/Library/Preferences";
        folders_.system = folder_ / "Library/Preferences";
    }

    LinuxPreferences make(const std::vector<std::string>& arguments = {}) {
        return {arguments, folders_, lists_};
    }

    static std::string fileIn(const std::string& folder) { return folder + "/" + kDomain + ".plist"; }

    void store(const std::string& folder, const PropertyListDictionary& dictionary) {
        fs::create_directories(folder);
        writeFile(fileIn(folder), lists_.serializeXml(dictionary).value());
    }

    PropertyListDictionary stored(const std::string& folder) {
        const auto list = lists_.parse(contentsOf(fileIn(folder)));
        const auto* dictionary = list ? list.value().as<PropertyListDictionary>() : nullptr;
        return dictionary == nullptr ? PropertyListDictionary{} : *dictionary;
    }

    TemporaryFolder folder_;
    PreferenceFolders folders_;
    platform::linux_backend::LinuxPropertyLists lists_;
};

/// Leaves this process only so many more file descriptors.
class FewDescriptors {
  public:
    explicit FewDescriptors(rlim_t count) {
        ::getrlimit(RLIMIT_NOFILE, &previous_);
        const int next = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        ::close(next);
        const rlimit few{static_cast<rlim_t>(next) + count, previous_.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &few);
    }
    ~FewDescriptors() { ::setrlimit(RLIMIT_NOFILE, &previous_); }
    FewDescriptors(const FewDescriptors&) = delete;
    FewDescriptors& operator=(const FewDescriptors&) = delete;

  private:
    rlimit previous_{};
};

/// From here on this process finds no file system that knows locks. False when the kernel does not grant that.
bool loseFileLocks() {
    std::array<sock_filter, 4> refuseLocks{{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_flock, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOLCK),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    const sock_fprog program{refuseLocks.size(), refuseLocks.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

TEST(LaunchArguments, pairsGiveStrings) {
    EXPECT_THAT(preferencesFromArguments({"-DC", "com", "-pathForLumora", "join", "-Empty", ""}),
                UnorderedElementsAre(Pair("DC", "com"), Pair("pathForLumora", "join"), Pair("Empty", "")));
}

TEST(LaunchArguments, aKeyBeforeADashWordOrAtTheEndHasNoValue) {
    EXPECT_THAT(preferencesFromArguments({"-A", "-B", "b", "-Number", "-5", "-Last"}),
                UnorderedElementsAre(Pair("B", "b")));
    EXPECT_THAT(preferencesFromArguments({}), testing::IsEmpty());
    EXPECT_THAT(preferencesFromArguments({"-"}), testing::IsEmpty());
    EXPECT_THAT(preferencesFromArguments({"-", "value"}), testing::IsEmpty());
}

TEST(LaunchArguments, strayWordsAreSkippedAndTheLaterOfEqualKeysCounts) {
    EXPECT_THAT(preferencesFromArguments({"stray", "-A", "1", "stray", "-A", "2", "--long", "x"}),
                UnorderedElementsAre(Pair("A", "2"), Pair("-long", "x")));
}

TEST(PreferenceFoldersOfAHome, lieWhereThePlatformHasThem) {
    const PreferenceFolders folders = PreferenceFolders::forHome("/home/x");

    EXPECT_EQ("/Library/Managed Preferences", folders.managed);
    EXPECT_EQ("/home/x/Library/Preferences", folders.user);
    EXPECT_EQ("/Library/Preferences", folders.system);
}

TEST_F(LinuxPreferencesContract, theFirstLevelThatHasTheKeyWins) {
    store(folders_.system, {{"a", "system"}, {"b", "system"}, {"c", "system"}, {"d", "system"}});
    store(folders_.user, {{"a", "user"}, {"b", "user"}, {"c", "user"}});
    store(folders_.managed, {{"a", "managed"}, {"b", "managed"}});
    auto preferences = make({"-a", "argument"});

    EXPECT_EQ(PropertyListValue("argument"), preferences.objectForKey("a"));
    EXPECT_EQ(PropertyListValue("managed"), preferences.objectForKey("b"));
    EXPECT_EQ(PropertyListValue("user"), preferences.objectForKey("c"));
    EXPECT_EQ(PropertyListValue("system"), preferences.objectForKey("d"));
    EXPECT_EQ(std::nullopt, preferences.objectForKey("e"));
}

TEST_F(LinuxPreferencesContract, theUsersFileIsPrivateAndTheSystemsReadable) {
    const mode_t previous = ::umask(0077);
    auto preferences = make();
    preferences.setValue("k", "v", kDomain, kUser);
    preferences.setValue("k", "v", kDomain, kSystem);
    EXPECT_TRUE(preferences.synchronize(kDomain, kUser));
    EXPECT_TRUE(preferences.synchronize(kDomain, kSystem));
    ::umask(previous);

    EXPECT_EQ(fs::perms(0600), fs::status(fileIn(folders_.user)).permissions());
    EXPECT_EQ(fs::perms(0644), fs::status(fileIn(folders_.system)).permissions());
    EXPECT_EQ(fs::perms(0700), fs::status(folders_.user).permissions());
    for (const char* made : {"Library", "Library/Preferences"})
        EXPECT_EQ(fs::perms(0755), fs::status(folder_ / made).permissions()) << made;
    EXPECT_EQ(PropertyListValue("v"), stored(folders_.system).at("k"));
}

TEST_F(LinuxPreferencesContract, anUnwritableFolderKeepsTheValueInThisProcess) {
    fs::create_directories(folder_ / "home");
    writeFile(folder_ / "home/Library", "a file in the way");
    auto preferences = make();

    preferences.setObject("k", "v");
    preferences.synchronize();

    EXPECT_EQ(PropertyListValue("v"), preferences.objectForKey("k"));
}

TEST_F(LinuxPreferencesContract, otherDomainsHaveFilesOfTheirOwn) {
    auto preferences = make();
    preferences.setValue("k", "v", "com.example.other", kUser);
    ASSERT_TRUE(preferences.synchronize("com.example.other", kUser));

    EXPECT_TRUE(fs::exists(folders_.user + "/com.example.other.plist"));
    EXPECT_EQ(std::nullopt, preferences.objectForKey("k"));
    preferences.setValue("k", "v", "../escape", kUser);
    EXPECT_FALSE(preferences.synchronize("../escape", kUser));
    EXPECT_FALSE(preferences.synchronize("", kUser));
}

TEST_F(LinuxPreferencesContract, whatOthersWriteIsSeenAtOnce) {
    auto preferences = make();
    EXPECT_EQ(std::nullopt, preferences.objectForKey("k"));
    // Equal sizes, and more than one write within a tick of the file system's clock.
    for (int round = 0; round < 200; ++round) {
        const std::string value = fmt::format("{:03}", round);
        auto other = make();
        other.setObject("k", value);
        other.synchronize();
        ASSERT_EQ(PropertyListValue(value), preferences.objectForKey("k"));
    }
    fs::remove(fileIn(folders_.user));
    EXPECT_EQ(std::nullopt, preferences.objectForKey("k"));
}

TEST_F(LinuxPreferencesContract, aBinaryFileIsReadAndWrittenOver) {
    fs::create_directories(folders_.user);
    writeFile(
        fileIn(folders_.user),
        std::string(
            "bplist00\xD1\x01\x02Qk\x53old\x08\x0B\x0D\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x03\0\0\0\0\0\0\0\0"
            "\0\0\0\0\0\0\0\x11",
            52));
    auto preferences = make();

    EXPECT_EQ(PropertyListValue("old"), preferences.objectForKey("k"));
    preferences.setObject("l", "new");
    preferences.synchronize();

    EXPECT_THAT(stored(folders_.user), UnorderedElementsAre(Pair("k", PropertyListValue("old")),
                                                            Pair("l", PropertyListValue("new"))));
}

TEST_F(LinuxPreferencesContract, damagedFilesCountAsEmptyAndAreKeptAsideWhenWrittenOver) {
    fs::create_directories(folders_.user);
    const std::string file = fileIn(folders_.user);
    int number = 0;
    for (const std::string& bytes :
         {std::string("<plist><dict><key>k"), std::string("bplist00junk"),
          lists_.serializeXml("no dictionary").value(), std::string(), std::string(5 << 20, ' ')}) {
        writeFile(file, bytes);
        auto preferences = make();
        EXPECT_EQ(std::nullopt, preferences.objectForKey("k"));

        preferences.setObject("k", "v");
        preferences.synchronize();

        EXPECT_EQ(PropertyListValue("v"), stored(folders_.user).at("k"));
        EXPECT_EQ(bytes, contentsOf(fmt::format("{}.damaged-{}", file, ++number)));
    }
}

TEST_F(LinuxPreferencesContract, aPipeInPlaceOfAFileNeitherBlocksNorCounts) {
    fs::create_directories(folders_.managed);
    ASSERT_EQ(0, ::mkfifo(fileIn(folders_.managed).c_str(), 0600));
    store(folders_.user, {{"k", "user"}});

    EXPECT_EQ(PropertyListValue("user"), make().objectForKey("k"));
}

TEST_F(LinuxPreferencesContract, aTextThatXmlCannotCarryKeepsNoOtherValueFromTheDisk) {
    auto preferences = make();
    preferences.setObject("bad", std::string("a\0b", 3));
    preferences.setObject("good", "text");
    preferences.synchronize();

    EXPECT_THAT(stored(folders_.user), UnorderedElementsAre(Pair("good", PropertyListValue("text"))));
    EXPECT_EQ(PropertyListValue(std::string("a\0b", 3)), preferences.objectForKey("bad"));
}

TEST_F(LinuxPreferencesContract, anEnormousTextKeepsNoOtherValueFromTheDisk) {
    store(folders_.user, {{"LumoraToken", "token"}});
    auto preferences = make();
    const std::string enormous(5 << 20, 'x');
    preferences.setObject("WindowTitle", enormous);
    preferences.setObject("name", "Ann");
    preferences.synchronize();

    EXPECT_THAT(stored(folders_.user), UnorderedElementsAre(Pair("LumoraToken", PropertyListValue("token")),
                                                            Pair("name", PropertyListValue("Ann"))));
    EXPECT_EQ(PropertyListValue(enormous), preferences.objectForKey("WindowTitle"));
    EXPECT_EQ(PropertyListValue("token"), make().objectForKey("LumoraToken"));

    preferences.setObject("WindowTitle", "short");
    preferences.synchronize();
    EXPECT_EQ(PropertyListValue("short"), make().objectForKey("WindowTitle"));
}

TEST_F(LinuxPreferencesContract, aFileThatCannotBeOpenedNowIsNoDamagedOne) {
    store(folders_.user, {{"k", "v"}});
    auto preferences = make();
    ASSERT_EQ(PropertyListValue("v"), preferences.objectForKey("k"));
    {
        const FewDescriptors none(0);
        EXPECT_EQ(PropertyListValue("v"), preferences.objectForKey("k"));
    }
    {
        const FewDescriptors forTheLockAlone(1);
        preferences.setObject("l", "w");
        preferences.synchronize();
    }
    EXPECT_THAT(stored(folders_.user), UnorderedElementsAre(Pair("k", PropertyListValue("v"))));

    preferences.synchronize();
    EXPECT_THAT(stored(folders_.user),
                UnorderedElementsAre(Pair("k", PropertyListValue("v")), Pair("l", PropertyListValue("w"))));
    EXPECT_FALSE(fs::exists(fileIn(folders_.user) + ".damaged-1"));
}

TEST_F(LinuxPreferencesContract, aFileSystemWithoutLocksKeepsValuesToo) {
    const std::string report = inChild([this]() -> std::string {
        if (!loseFileLocks())
            return "no filter";
        auto preferences = make();
        preferences.setObject("k", "v");
        preferences.synchronize();
        return "";
    });
    if (report == "no filter")
        GTEST_SKIP() << "the kernel does not let this process filter its calls";

    EXPECT_EQ("", report);
    EXPECT_THAT(stored(folders_.user), UnorderedElementsAre(Pair("k", PropertyListValue("v"))));
}

} // namespace
} // namespace lumora::contract
