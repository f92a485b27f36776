// What a disk holds after the power failed: a model of files whose writes were not all synced.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/crash/fault_vfs.h"

namespace crashtest {

/// Which of the operations that were not synced reached the disk all the same. Operations on names
/// survive in their order; writes may survive in any selection.
enum class Survival { kNothing, kNamesOnly, kDataOnly, kEverySecondWrite, kEverything, kCount };

/// Files by path. A folder's names and a file's content are synced apart.
class PowerLoss {
 public:
  using Files = std::map<std::string, std::string>;

  /// `files` are on the disk.
  explicit PowerLoss(const Files& files);

  void apply(const FileEvent& event);
  /// The files after a power loss at this point.
  [[nodiscard]] Files survivors(Survival survival) const;

 private:
  struct Inode {
    std::string content;                  ///< synced
    std::vector<const FileEvent*> dirty;  ///< writes and truncations since
  };
  void changeNames(std::map<std::string, std::size_t>& names, const FileEvent& event,
                   std::size_t inode) const;
  void syncNames();

  std::vector<Inode> m_inodes;
  std::map<std::string, std::size_t> m_names;        ///< as the running program sees them
  std::map<std::string, std::size_t> m_syncedNames;  ///< on the disk
  std::vector<std::pair<const FileEvent*, std::size_t>> m_dirtyNames;
};

}  // namespace crashtest
