// Every truncation and every flipped bit of a drawing gives an error or the intact content.
#include <fcntl.h>
#include <unistd.h>

#include <future>

#include "tests/platform/storage/store_testing.h"

namespace {

using storetest::Content;
using storetest::makeContent;

/// Instrumented builds are slow: they try every seventh bit, which is every bit place in turn.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t kBitStep = 7;
#else
constexpr std::size_t kBitStep = 1;
#endif

/// All records with their digest, then some of them by their handles: a damaged inner page lets
/// the walk pass and leads the search astray, which must not look like an absent record.
std::optional<Content> readEverything(OdDbRecordStoreFactory& factory, const std::string& path) {
  std::unique_ptr<OdDbRecordStore> store;
  OdStatus status = factory.open(path, OdDbStoreOpenMode::kReadOnly, store);
  if (!status.ok()) return {};
  std::optional<Content> content = storetest::readAll(*store);
  OdDbRecordView record;
  for (OdUInt64 handle = 1; content.has_value() && handle <= 24; handle += 2) {
    status = store->readRecord(handle, record);
    EXPECT_NE(status.code, eUnknownHandle) << handle;
    if (!status.ok()) content.reset();
  }
  return content;
}

class Damage : public storetest::FolderTest {
 protected:
  void SetUp() override {
    ASSERT_TRUE(writeFile(*m_factory, m_path, m_content).ok());
    m_bytes = readBytes(m_path);
  }
  /// True when the damaged file is refused; a file that passes must have the intact content.
  [[nodiscard]] bool isNoticed(const std::string& path, const std::string& what) const {
    const auto found = readEverything(*m_factory, path);
    EXPECT_TRUE(!found.has_value() || *found == m_content) << what;
    return !found.has_value();
  }
  /// Flips the bits from `first` to before `last` one by one, in a copy of the file of its own.
  /// Returns how many were noticed.
  [[nodiscard]] std::size_t flipBits(const std::string& path, std::size_t first,
                                     std::size_t last) const {
    writeBytes(path, m_bytes);
    const int fd = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
    EXPECT_GE(fd, 0);
    std::size_t noticed = 0;
    for (std::size_t bit = first; bit < last && !HasFailure(); bit += kBitStep) {
      const std::size_t offset = bit / 8;
      const char sound = m_bytes[offset];
      const char flipped = static_cast<char>(sound ^ static_cast<char>(1U << (bit % 8)));
      EXPECT_EQ(::pwrite(fd, &flipped, 1, static_cast<off_t>(offset)), 1);
      if (isNoticed(path, "bit " + std::to_string(bit))) ++noticed;
      EXPECT_EQ(::pwrite(fd, &sound, 1, static_cast<off_t>(offset)), 1);
    }
    ::close(fd);
    return noticed;
  }

  std::unique_ptr<OdDbRecordStoreFactory> m_factory = createSqliteStoreFactory();
  std::string m_path = file("drawing.vdm");
  Content m_content = makeContent(24, 200);
  std::string m_bytes;
};

TEST_F(Damage, EveryTruncationIsNoticed) {
  for (std::size_t size = m_bytes.size(); size-- > 0 && !HasFailure();) {
    ASSERT_EQ(::truncate(m_path.c_str(), static_cast<off_t>(size)), 0);
    EXPECT_TRUE(isNoticed(m_path, "size")) << size << " of " << m_bytes.size();
  }
}

TEST_F(Damage, EveryFlippedBitIsNoticedOrHarmless) {
  const std::size_t bits = m_bytes.size() * 8;
  auto firstHalf =
      std::async(std::launch::async, [&] { return flipBits(file("first.vdm"), 0, bits / 2); });
  const std::size_t secondHalf = flipBits(file("second.vdm"), bits / 2, bits);
  // Harmless are free bytes of pages; the bytes of the records are not.
  std::size_t recordBytes = 0;
  for (const auto& [handle, record] : m_content.records) recordBytes += record.data.size();
  EXPECT_GT(firstHalf.get() + secondHalf, recordBytes * 8 / kBitStep);
}

}  // namespace
