#include "disk_image_fixture.h"

#include <archive.h>
#include <archive_entry.h>

#include <sys/stat.h>

#include <memory>
#include <random>

namespace lumora::testing {
namespace {

using DamagedImages = DiskImageFixture;

constexpr std::size_t kSector = ImageBytes::kSector;

TEST_F(DamagedImages, imageCutAtAnySectorIsRefused) {
    fillTree();
    const std::string whole = readFile(makeOvraImage());
    const auto cut = folder_ / "cut.iso";

    for (std::size_t size = 0; size < whole.size(); size += kSector) {
        SCOPED_TRACE(size);
        writeFile(cut, whole.substr(0, size));
        expectRefused(cut, size <= 16 * kSector ? "not an ISO 9660 image" : "truncated");
    }
    writeFile(cut, whole.substr(0, whole.size() - 1));
    expectRefused(cut, "truncated");
}

TEST_F(DamagedImages, imageCutAtAnySectorThatDeniesItIsNeverMountedWithOtherContents) {
    fillTree();
    const ImageBytes whole(makeOvraImage());
    const auto cut = folder_ / "cut.iso";
    const auto expected = pictureOf(tree_);
    std::size_t refused = 0;

    for (std::size_t sectors = 19; sectors < whole.sectors(); ++sectors) {
        SCOPED_TRACE(sectors);
        ImageBytes image = whole;
        image.setVolumeSectors(static_cast<std::uint32_t>(sectors));
        image.bytes().resize(sectors * kSector);
        image.save(cut);
        if (const auto mounted = images().mount(cut); mounted) {
            EXPECT_EQ(pictureOf(mounted.value().mountPoint), expected);
            EXPECT_TRUE(images().detach(mounted.value().mountPoint));
        } else {
            ++refused;
        }
        expectNoVolumes();
    }
    EXPECT_GT(refused, 0U);
}

TEST_F(DamagedImages, blankFolderIsNoticed) {
    fillTree();
    const ImageBytes whole(makeOvraImage());
    const auto folders = whole.folderSectors();
    ASSERT_EQ(folders.size(), 4U); // the root, the bundle and two folders in it

    for (const std::size_t folder : folders) {
        SCOPED_TRACE(folder);
        ImageBytes image = whole;
        image.bytes().replace(folder * kSector, kSector, kSector, '\0');
        image.save(folder_ / "blank.iso");
        expectRefused(folder_ / "blank.iso", "folder records are damaged");
    }
}

TEST_F(DamagedImages, blankPartOfAFolderIsNoticed) {
    for (int index = 0; index < 60; ++index) {
        writeFile(tree_ / ("entry " + std::to_string(index)), "x");
    }
    ImageBytes image(makeOvraImage());
    const std::size_t second = image.folderSectors().front() + 1;
    ASSERT_NE(image.bytes()[second * kSector], '\0');
    image.bytes().replace(second * kSector, kSector, kSector, '\0');
    image.save(folder_ / "blank.iso");

    expectRefused(folder_ / "blank.iso", "folder records are damaged");
}

TEST_F(DamagedImages, folderTooLargeForTheReadersMemoryIsRefused) {
    // A sparse image whose root claims 3 GiB: every size in it agrees, only nobody should try to hold that.
    constexpr std::uint32_t kFolderBytes = 3U << 30;
    ImageBytes image(makeOvraImage());
    const auto sectors = static_cast<std::uint32_t>(image.sectors() + kFolderBytes / kSector);
    image.setVolumeSectors(sectors);
    image.setRootSize(kFolderBytes);
    image.save(folder_ / "sparse.iso");
    std::filesystem::resize_file(folder_ / "sparse.iso", std::uintmax_t{sectors} * kSector);

    expectRefused(folder_ / "sparse.iso", "too many entries");
}

TEST_F(DamagedImages, hiddenRecordsAreNoticed) {
    fillTree();
    ImageBytes image(makeOvraImage());
    const std::size_t root = image.folderSectors().front() * kSector;
    // A zero instead of the third record's length ends the folder early.
    std::size_t third = root;
    for (int record = 0; record < 2; ++record) {
        third += static_cast<unsigned char>(image.bytes()[third]);
    }
    image.bytes()[third] = '\0';
    image.save(folder_ / "hidden.iso");

    expectRefused(folder_ / "hidden.iso", "folder records are damaged");
}

TEST_F(DamagedImages, sizesBeyondTheImageAreRefused) {
    fillTree();
    const ImageBytes whole(makeOvraImage());
    for (const std::uint32_t size : {0x7fffffffU, 0xffffffffU, 10'000'000U}) {
        SCOPED_TRACE(size);
        ImageBytes image = whole;
        image.setSize("OvraCrashDetector", size);
        image.save(folder_ / "huge.iso");
        expectRefused(folder_ / "huge.iso", "folder records are damaged");
    }
}

TEST_F(DamagedImages, placesBeyondTheImageAreRefused) {
    fillTree();
    ImageBytes image(makeOvraImage());
    image.setSector("OvraCrashDetector", static_cast<std::uint32_t>(image.sectors()));
    image.save(folder_ / "far.iso");

    expectRefused(folder_ / "far.iso", "folder records are damaged");
}

TEST_F(DamagedImages, filesOfDifferentSizeAtOnePlaceAreRefused) {
    fillTree();
    ImageBytes image(makeOvraImage());
    image.setSector("OvraCrashDetector", image.sectorOf("Info.plist"));
    image.save(folder_ / "overlap.iso");

    expectRefused(folder_ / "overlap.iso", "folder records are damaged");
}

TEST_F(DamagedImages, folderThatContainsItselfIsRefused) {
    fillTree();
    ImageBytes image(makeOvraImage());
    image.setSector("MacOS", image.sectorOf("Contents"));
    image.save(folder_ / "loop.iso");

    expectRefused(folder_ / "loop.iso", "folder records are damaged");
}

TEST_F(DamagedImages, numbersThatDisagreeWithTheirTwinsAreRefused) {
    fillTree();
    ImageBytes image(makeOvraImage());
    image.bytes()[16 * kSector + 80] = static_cast<char>(image.bytes()[16 * kSector + 80] - 1);
    image.save(folder_ / "twins.iso");

    expectRefused(folder_ / "twins.iso", "volume descriptor is damaged");
}

TEST_F(DamagedImages, filesThatAreNoImagesAreRefused) {
    const auto file = folder_ / "download";
    for (const std::string& contents : {std::string(), std::string("<html>404 Not Found</html>"),
                                        noise(400'000, 7), std::string(400'000, '\0')}) {
        writeFile(file, contents);
        expectRefused(file, "not an ISO 9660 image");
    }
}

TEST_F(DamagedImages, whatIsNotAFileIsRefused) {
    expectRefused(folder_ / "missing", "No such file");
    expectRefused(tree_, "is not a file");
    ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), 0600), 0);
    expectRefused(folder_ / "pipe", "is not a file");
}

struct FreeWriter {
    void operator()(archive* writer) const noexcept { archive_write_free(writer); }
};

/// An archive with one file of 100 000 bytes, in another format than ours.
void makeArchive(const std::filesystem::path& file, const char* format) {
    const std::unique_ptr<archive, FreeWriter> writer(archive_write_new());
    ASSERT_EQ(archive_write_set_format_by_name(writer.get(), format), ARCHIVE_OK);
    ASSERT_EQ(archive_write_open_filename(writer.get(), file.c_str()), ARCHIVE_OK);
    const std::string contents = noise(100'000, 5);
    archive_entry* entry = archive_entry_new();
    archive_entry_set_pathname(entry, "file");
    archive_entry_set_filetype(entry, AE_IFREG);
    archive_entry_set_perm(entry, 0644);
    archive_entry_set_size(entry, static_cast<la_int64_t>(contents.size()));
    EXPECT_EQ(archive_write_header(writer.get(), entry), ARCHIVE_OK);
    archive_entry_free(entry);
    EXPECT_EQ(archive_write_data(writer.get(), contents.data(), contents.size()),
              static_cast<la_ssize_t>(contents.size()));
    EXPECT_EQ(archive_write_close(writer.get()), ARCHIVE_OK);
}

TEST_F(DamagedImages, otherArchiveFormatsAreRefused) {
    for (const char* format : {"zip", "ustar", "pax", "cpio", "7zip", "xar", "ar"}) {
        SCOPED_TRACE(format);
        makeArchive(folder_ / "archive", format);
        expectRefused(folder_ / "archive", "not an ISO 9660 image");
    }
}

TEST_F(DamagedImages, compressedImagesAreRefused) {
    fillTree();
    const std::string image = readFile(makeOvraImage());
    for (const char* filter : {"gzip", "xz", "zstd"}) {
        SCOPED_TRACE(filter);
        const auto packed = folder_ / "packed";
        const std::unique_ptr<archive, FreeWriter> writer(archive_write_new());
        ASSERT_EQ(archive_write_set_format_raw(writer.get()), ARCHIVE_OK);
        ASSERT_EQ(archive_write_add_filter_by_name(writer.get(), filter), ARCHIVE_OK);
        ASSERT_EQ(archive_write_open_filename(writer.get(), packed.c_str()), ARCHIVE_OK);
        archive_entry* entry = archive_entry_new();
        archive_entry_set_filetype(entry, AE_IFREG);
        EXPECT_EQ(archive_write_header(writer.get(), entry), ARCHIVE_OK);
        archive_entry_free(entry);
        EXPECT_EQ(archive_write_data(writer.get(), image.data(), image.size()),
                  static_cast<la_ssize_t>(image.size()));
        ASSERT_EQ(archive_write_close(writer.get()), ARCHIVE_OK);
        expectRefused(packed, "not an ISO 9660 image");
    }
}

TEST_F(DamagedImages, flippedBitsNeitherCrashNorLeaveAnything) {
    fillTree();
    ImageBytes whole(makeOvraImage());
    std::mt19937 generator(11);
    const std::size_t first = 16 * kSector;
    std::size_t refused = 0;

    for (int round = 0; round < 400; ++round) {
        SCOPED_TRACE(round);
        ImageBytes image = whole;
        for (int flip = 0; flip < 3; ++flip) {
            const std::size_t at = first + generator() % (image.bytes().size() - first);
            image.bytes()[at] = static_cast<char>(image.bytes()[at] ^ (1 << (generator() % 8)));
        }
        image.save(folder_ / "flipped.iso");
        if (const auto mounted = images().mount(folder_ / "flipped.iso"); mounted) {
            EXPECT_TRUE(images().detach(mounted.value().mountPoint));
        } else {
            ++refused;
        }
        expectNoVolumes();
    }
    EXPECT_GT(refused, 0U);
}

} // namespace
} // namespace lumora::testing
