// Tests of files that are written beside their place and put there whole.
#include "platform/base/new_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

#include "tests/support/status_testing.h"
#include "tests/support/test_folder.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kLeftover = ".a.txt.0123456789abcdef.tmp";

class OdNewFileTest : public testing::Test {
 protected:
  [[nodiscard]] std::string file(std::string_view name) const { return m_folder.file(name); }
  static OdStatus writeTo(const std::string& path, const std::string& text) {
    OdNewFile made(path);
    OdStatus status = made.create();
    if (status.ok()) status = made.write(text.data(), text.size());
    return status.ok() ? made.commit() : status;
  }

  const TestFolder m_folder;
};

TEST_F(OdNewFileTest, ReplacesAFileAndKeepsItsModeAndTheLinksToIt) {
  writeBytes(file("a.txt"), "old");
  fs::permissions(file("a.txt"), fs::perms(0640));
  fs::create_symlink("a.txt", file("link"));
  fs::create_symlink(file("link"), file("link_to_link"));
  fs::create_symlink("new.txt", file("to_nothing"));
  EXPECT_TRUE(succeeded(writeTo(file("link_to_link"), "new")));
  EXPECT_TRUE(succeeded(writeTo(file("to_nothing"), "made")));
  EXPECT_EQ(readBytes(file("a.txt")), "new");
  EXPECT_EQ(readBytes(file("new.txt")), "made");
  EXPECT_EQ(fs::status(file("a.txt")).permissions(), fs::perms(0640));
  EXPECT_EQ(m_folder.listing(), "a.txt link link_to_link new.txt to_nothing");
  EXPECT_TRUE(fs::is_symlink(file("link")) && fs::is_symlink(file("to_nothing")));
}

TEST_F(OdNewFileTest, ReplacesNothingButRegularFiles) {
  fs::create_directory(file("folder"));
  ASSERT_EQ(::mkfifo(file("pipe").c_str(), 0600), 0);
  fs::create_symlink(file("loop"), file("loop"));
  fs::create_symlink("/dev/full", file("device"));
  const std::string before = m_folder.listing();
  for (const char* name : {"folder", "pipe", "device", "loop", "no/such/folder", ""}) {
    const OdStatus status = writeTo(file(name), "text");
    EXPECT_FALSE(status.ok()) << name;
    EXPECT_NE(textOf(status).find(file(name)), std::string::npos) << textOf(status);
  }
  EXPECT_EQ(m_folder.listing(), before);
}

TEST_F(OdNewFileTest, AFileThatIsGivenUpLeavesNothing) {
  writeBytes(file("a.txt"), "old");
  {
    OdNewFile made(file("a.txt"));
    ASSERT_TRUE(succeeded(made.create()));
    EXPECT_TRUE(succeeded(made.write("new", 3)));
    EXPECT_NE(m_folder.listing(), "a.txt");
  }
  EXPECT_EQ(m_folder.listing(), "a.txt");
  EXPECT_EQ(readBytes(file("a.txt")), "old");
}

TEST_F(OdNewFileTest, RemovesLeftoversButNoFileThatIsBeingWritten) {
  const std::string kOthers = ".a.txt.0123456789abcdeg.tmp .b.txt.0123456789abcdef.tmp a.txt";
  for (const std::string name :
       {kLeftover, ".a.txt.0123456789abcdeg.tmp", ".b.txt.0123456789abcdef.tmp"}) {
    writeBytes(file(name), "x");
  }
  OdNewFile living(file("a.txt"));
  ASSERT_TRUE(succeeded(living.create()));
  EXPECT_FALSE(fs::exists(file(kLeftover)));
  EXPECT_TRUE(succeeded(writeTo(file("a.txt"), "other")));
  EXPECT_TRUE(fs::exists(living.temporary()));
  EXPECT_EQ(living.commit().code, eFileChanged) << "of two makers of a new file the first one wins";
  EXPECT_EQ(readBytes(file("a.txt")), "other");
  EXPECT_TRUE(succeeded(writeTo(file("a.txt"), "again"))) << "replacing is another matter";
  fs::remove(living.temporary());
  EXPECT_EQ(m_folder.listing(), kOthers);
}

TEST_F(OdNewFileTest, ANameIsClaimedOnce) {
  fs::create_symlink("a.txt", file("link"));
  {
    OdNameClaim claim(file("a.txt"));
    ASSERT_EQ(claim.take(), 0);
    const OdNameClaim moved = std::move(claim);
    EXPECT_EQ(OdNameClaim(file("link")).take(), EADDRINUSE);
    EXPECT_EQ(OdNameClaim(file("b.txt")).take(), 0);
    EXPECT_TRUE(succeeded(writeTo(file("a.txt"), "text")));
    EXPECT_EQ(OdNameClaim(file("a.txt")).take(), EADDRINUSE) << "writing ends no claim";
  }
  EXPECT_EQ(OdNameClaim(file("a.txt")).take(), 0);
  EXPECT_EQ(m_folder.listing(), "a.txt link");
}

TEST_F(OdNewFileTest, WritesNamesOfEveryLength) {
  const std::string longest(255, 'n');
  EXPECT_TRUE(succeeded(writeTo(file(longest), "text")));
  EXPECT_EQ(readBytes(file(longest)), "text");
  EXPECT_FALSE(writeTo(file(longest + "n"), "text").ok());
  EXPECT_EQ(m_folder.listing(), longest);
}

}  // namespace
