// What a disk holds after the power failed: a model of files whose writes were not all synced.
#pragma once

#include <algorithm>
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
  explicit PowerLoss(const Files& files) {
    for (const auto& [path, content] : files) {
      m_names[path] = m_inodes.size();
      m_inodes.push_back({content, {}});
    }
    m_syncedNames = m_names;
  }

  void apply(const FileEvent& event) {
    switch (event.kind) {
      case FileEvent::Kind::kCreate:
        m_inodes.push_back({});
        changeNames(event, m_inodes.size() - 1);
        break;
      case FileEvent::Kind::kWrite:
      case FileEvent::Kind::kTruncate:
        m_inodes[m_names.at(event.path)].dirty.push_back(&event);
        break;
      case FileEvent::Kind::kSync: {
        Inode& inode = m_inodes[m_names.at(event.path)];
        for (const FileEvent* write : inode.dirty) changeContent(inode.content, *write);
        inode.dirty.clear();
        break;
      }
      case FileEvent::Kind::kRemove:
      case FileEvent::Kind::kRename:
        if (const auto found = m_names.find(event.path); found != m_names.end()) {
          changeNames(event, found->second);
        }
        break;
      case FileEvent::Kind::kSyncFolder:
        break;
    }
    if (event.syncsFolder || event.kind == FileEvent::Kind::kSyncFolder) {
      m_syncedNames = m_names;
      m_dirtyNames.clear();
    }
  }

  /// The files after a power loss at this point.
  [[nodiscard]] Files survivors(Survival survival) const {
    Names names = m_syncedNames;
    const bool keepsNames = survival != Survival::kNothing && survival != Survival::kDataOnly;
    for (const auto& [event, inode] : m_dirtyNames) {
      if (keepsNames) applyTo(names, *event, inode);
    }
    const std::size_t step = survival == Survival::kEverySecondWrite ? 2 : 1;
    const bool keepsData = survival != Survival::kNothing && survival != Survival::kNamesOnly;
    Files files;
    for (const auto& [path, inode] : names) {
      std::string content = m_inodes[inode].content;
      const std::vector<const FileEvent*>& dirty = m_inodes[inode].dirty;
      for (std::size_t i = 0; keepsData && i < dirty.size(); i += step) {
        changeContent(content, *dirty[i]);
      }
      files[path] = std::move(content);
    }
    return files;
  }

 private:
  using Names = std::map<std::string, std::size_t>;  ///< to indices of m_inodes
  struct Inode {
    std::string content;                  ///< synced
    std::vector<const FileEvent*> dirty;  ///< writes and truncations since
  };

  static void changeContent(std::string& content, const FileEvent& event) {
    const auto offset = static_cast<std::size_t>(event.offset);
    if (event.kind == FileEvent::Kind::kTruncate) return content.resize(offset);
    if (content.size() < offset + event.data.size()) content.resize(offset + event.data.size());
    std::copy(event.data.begin(), event.data.end(),
              content.begin() + static_cast<std::ptrdiff_t>(offset));
  }
  static void applyTo(Names& names, const FileEvent& event, std::size_t inode) {
    if (event.kind != FileEvent::Kind::kCreate) names.erase(event.path);
    if (event.kind == FileEvent::Kind::kCreate) names[event.path] = inode;
    if (event.kind == FileEvent::Kind::kRename) names[event.to] = inode;
  }
  void changeNames(const FileEvent& event, std::size_t inode) {
    applyTo(m_names, event, inode);
    m_dirtyNames.emplace_back(&event, inode);
  }

  std::vector<Inode> m_inodes;
  Names m_names;        ///< as the running program sees them
  Names m_syncedNames;  ///< on the disk
  std::vector<std::pair<const FileEvent*, std::size_t>> m_dirtyNames;
};

}  // namespace crashtest
