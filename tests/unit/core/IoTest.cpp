#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "norvane/platform/core/io/FileReader.h"
#include "norvane/platform/core/io/FileWriter.h"
#include "norvane/platform/core/io/MemoryReader.h"
#include "norvane/platform/core/io/MemoryWriter.h"

namespace norvane::platform::core::io {
namespace {

namespace fs = std::filesystem;

std::string readAll(IDataReader& reader, std::size_t piece = 3) {
    std::string result;
    std::string buffer(piece, '\0');
    while (const std::size_t count = reader.read(buffer.data(), piece)) result.append(buffer, 0, count);
    return result;
}

std::string contentsOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void putFile(const fs::path& path, const std::string& contents) {
    std::ofstream(path, std::ios::binary) << contents;
}

class FolderTest : public testing::Test {
  protected:
    FolderTest() {
        std::string pattern = (fs::temp_directory_path() / "qvt-io-XXXXXX").string();
        folder = ::mkdtemp(pattern.data());
    }
    ~FolderTest() override { fs::remove_all(folder); }

    std::string path(const std::string& name) const { return (folder / name).string(); }
    std::size_t fileCount() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    }

    fs::path folder;
};

using FileReaderTest = FolderTest;
using FileWriterTest = FolderTest;

TEST(MemoryReaderTest, GivesItsBytesInPiecesOfAnySize) {
    MemoryReader reader(std::string_view("ab\0cdef", 7));
    ASSERT_TRUE(reader.open());

    EXPECT_EQ(readAll(reader), std::string("ab\0cdef", 7));
    std::array<char, 4> buffer{};
    EXPECT_EQ(reader.read(buffer.data(), buffer.size()), 0u);
}

TEST(MemoryReaderTest, OpeningGoesBackToTheBeginning) {
    MemoryReader reader("text", 4);
    reader.open();
    readAll(reader);
    reader.close();

    reader.open();

    EXPECT_EQ(readAll(reader), "text");
}

TEST(MemoryReaderTest, NoBytesAtAllAreAnEnd) {
    MemoryReader reader(nullptr, 0);

    EXPECT_TRUE(reader.open());
    EXPECT_EQ(readAll(reader), "");
}

TEST(MemoryWriterTest, CollectsWhatIsWritten) {
    MemoryWriter writer;
    ASSERT_TRUE(writer.open());

    EXPECT_EQ(writer.write("ab\0c", 4), 4u);
    EXPECT_EQ(writer.write("d", 1), 1u);

    EXPECT_EQ(writer.text(), std::string("ab\0cd", 5));
    EXPECT_FALSE(writer.closed());
    writer.close();
    EXPECT_TRUE(writer.closed());
}

TEST(MemoryWriterTest, OpeningForgetsTheOutputBefore) {
    MemoryWriter writer;
    writer.write("old", 3);
    writer.close();

    writer.open();

    EXPECT_EQ(writer.text(), "");
    EXPECT_FALSE(writer.closed());
}

TEST_F(FileReaderTest, ReadsAFile) {
    putFile(path("in"), "contents");
    FileReader reader(path("in"));

    ASSERT_TRUE(reader.open());

    EXPECT_EQ(readAll(reader), "contents");
    EXPECT_FALSE(reader.failed());
    EXPECT_EQ(reader.error(), "");
}

TEST_F(FileReaderTest, OpenedAgainBeginsAgain) {
    putFile(path("in"), "contents");
    FileReader reader(path("in"));
    reader.open();
    readAll(reader);

    ASSERT_TRUE(reader.open());

    EXPECT_EQ(readAll(reader), "contents");
}

TEST_F(FileReaderTest, MissingFileIsNotOpenedAndSaysWhy) {
    FileReader reader(path("missing"));

    EXPECT_FALSE(reader.open());

    EXPECT_TRUE(reader.failed());
    EXPECT_EQ(reader.errorNumber(), ENOENT);
    EXPECT_EQ(reader.error(), "No such file or directory");
    EXPECT_EQ(readAll(reader), "");
}

TEST_F(FileReaderTest, FailureToReadIsToldFromTheEnd) {
    FileReader reader(folder.string());
    ASSERT_TRUE(reader.open());

    EXPECT_EQ(readAll(reader), "");

    EXPECT_TRUE(reader.failed());
    EXPECT_EQ(reader.errorNumber(), EISDIR);
}

TEST_F(FileReaderTest, BorrowedDescriptorIsReadAndStaysOpen) {
    putFile(path("in"), "contents");
    const int descriptor = ::open(path("in").c_str(), O_RDONLY);
    {
        FileReader reader(descriptor);
        ASSERT_TRUE(reader.open());
        EXPECT_EQ(readAll(reader), "contents");
        reader.close();
    }
    EXPECT_NE(::fcntl(descriptor, F_GETFD), -1);
    ::close(descriptor);
}

TEST_F(FileWriterTest, FileAppearsWhenTheWriterIsClosed) {
    FileWriter writer(path("out"));
    ASSERT_TRUE(writer.open());
    EXPECT_EQ(writer.write("contents", 8), 8u);
    EXPECT_FALSE(fs::exists(path("out")));

    writer.close();

    EXPECT_FALSE(writer.failed());
    EXPECT_EQ(contentsOf(path("out")), "contents");
    EXPECT_EQ(fileCount(), 1u);
}

TEST_F(FileWriterTest, OldFileStaysUntilTheNewOneIsWhole) {
    putFile(path("out"), "old");
    FileWriter writer(path("out"));
    writer.open();
    writer.write("new", 3);
    EXPECT_EQ(contentsOf(path("out")), "old");

    writer.close();

    EXPECT_EQ(contentsOf(path("out")), "new");
}

TEST_F(FileWriterTest, WriterThatIsNotClosedLeavesNothingBehind) {
    putFile(path("out"), "old");
    {
        FileWriter writer(path("out"));
        writer.open();
        writer.write("new", 3);
    }
    EXPECT_EQ(contentsOf(path("out")), "old");
    EXPECT_EQ(fileCount(), 1u);
}

TEST_F(FileWriterTest, OpenedAgainItBeginsAgain) {
    FileWriter writer(path("out"));
    writer.open();
    writer.write("first", 5);

    writer.open();
    writer.write("second", 6);
    writer.close();

    EXPECT_EQ(contentsOf(path("out")), "second");
    EXPECT_EQ(fileCount(), 1u);
}

TEST_F(FileWriterTest, NewFileKeepsThePermissionsOfTheOld) {
    putFile(path("out"), "old");
    ::chmod(path("out").c_str(), 0640);
    FileWriter writer(path("out"));
    writer.open();
    writer.write("new", 3);

    writer.close();

    EXPECT_EQ(fs::status(path("out")).permissions(), fs::perms(0640));
}

TEST_F(FileWriterTest, SymbolicLinkStaysALink) {
    putFile(path("real"), "old");
    fs::create_symlink("real", path("link"));
    FileWriter writer(path("link"));
    writer.open();
    writer.write("new", 3);

    writer.close();

    EXPECT_TRUE(fs::is_symlink(path("link")));
    EXPECT_EQ(contentsOf(path("real")), "new");
}

TEST_F(FileWriterTest, FolderThatIsNotThereIsAFailure) {
    FileWriter writer(path("missing/out"));

    EXPECT_FALSE(writer.open());

    EXPECT_EQ(writer.errorNumber(), ENOENT);
    EXPECT_EQ(writer.write("x", 1), 0u);
    writer.close();
    EXPECT_TRUE(writer.failed());
}

TEST_F(FileWriterTest, FileThatCannotTakeItsPlaceIsAFailure) {
    FileWriter writer(path("out"));
    writer.open();
    writer.write("new", 3);
    fs::create_directory(path("out"));

    writer.close();

    EXPECT_EQ(writer.errorNumber(), EISDIR);
    EXPECT_TRUE(fs::is_directory(path("out")));
    EXPECT_EQ(fileCount(), 1u);
}

// By descriptor, never by path: a writer with a fault in it would put a file in the place of the device.
TEST_F(FileWriterTest, FullDiskIsAFailure) {
    const int descriptor = ::open("/dev/full", O_WRONLY);
    ASSERT_NE(descriptor, -1);
    FileWriter writer(descriptor);
    ASSERT_TRUE(writer.open());

    EXPECT_EQ(writer.write("x", 1), 0u);

    EXPECT_EQ(writer.errorNumber(), ENOSPC);
    writer.close();
    EXPECT_TRUE(writer.failed());
    EXPECT_EQ(writer.error(), "No space left on device");
    ::close(descriptor);
}

TEST_F(FileWriterTest, NothingIsPutInPlaceAfterAFailedWrite) {
    putFile(path("out"), "old");
    FileWriter writer(path("out"));
    writer.open();
    writer.write("new", 3);
    EXPECT_EQ(writer.write(nullptr, 1), 0u);

    writer.close();

    EXPECT_TRUE(writer.failed());
    EXPECT_EQ(contentsOf(path("out")), "old");
    EXPECT_EQ(fileCount(), 1u);
}

TEST_F(FileWriterTest, WhatIsNoPlainFileIsWrittenInPlace) {
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    const int reading = ::open(path("pipe").c_str(), O_RDONLY | O_NONBLOCK);
    FileWriter writer(path("pipe"));
    ASSERT_TRUE(writer.open());
    EXPECT_EQ(writer.write("contents", 8), 8u);

    writer.close();

    EXPECT_FALSE(writer.failed());
    EXPECT_TRUE(fs::is_fifo(path("pipe")));
    EXPECT_EQ(fileCount(), 1u);
    std::array<char, 16> received{};
    EXPECT_EQ(::read(reading, received.data(), received.size()), 8);
    EXPECT_STREQ(received.data(), "contents");
    ::close(reading);
}

TEST_F(FileWriterTest, BorrowedDescriptorIsWrittenAndStaysOpen) {
    const int descriptor = ::open(path("out").c_str(), O_WRONLY | O_CREAT, 0600);
    {
        FileWriter writer(descriptor);
        ASSERT_TRUE(writer.open());
        EXPECT_EQ(writer.write("contents", 8), 8u);
        writer.close();
    }
    EXPECT_EQ(contentsOf(path("out")), "contents");
    EXPECT_NE(::fcntl(descriptor, F_GETFD), -1);
    ::close(descriptor);
}

}  // namespace
}  // namespace norvane::platform::core::io
