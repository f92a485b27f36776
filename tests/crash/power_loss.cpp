// What a disk holds after the power failed.
#include "tests/crash/power_loss.h"

#include <algorithm>

namespace crashtest {

namespace {

void changeContent(std::string& content, const FileEvent& event) {
  const auto offset = static_cast<std::size_t>(event.offset);
  if (event.kind == FileEvent::Kind::kTruncate) return content.resize(offset);
  if (content.size() < offset + event.data.size()) content.resize(offset + event.data.size());
  std::copy(event.data.begin(), event.data.end(),
            content.begin() + static_cast<std::ptrdiff_t>(offset));
}

}  // namespace

PowerLoss::PowerLoss(const Files& files) {
  for (const auto& [path, content] : files) {
    m_names[path] = m_inodes.size();
    m_inodes.push_back({content, {}});
  }
  m_syncedNames = m_names;
}

void PowerLoss::apply(const FileEvent& event) {
  switch (event.kind) {
    case FileEvent::Kind::kCreate:
      m_inodes.push_back({});
      m_names[event.path] = m_inodes.size() - 1;
      m_dirtyNames.emplace_back(&event, m_inodes.size() - 1);
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
    case FileEvent::Kind::kRename: {
      const auto found = m_names.find(event.path);
      if (found == m_names.end()) break;
      const std::size_t inode = found->second;
      changeNames(m_names, event, inode);
      m_dirtyNames.emplace_back(&event, inode);
      break;
    }
    case FileEvent::Kind::kSyncFolder:
      syncNames();
      break;
  }
  if (event.syncsFolder) syncNames();
}

void PowerLoss::changeNames(std::map<std::string, std::size_t>& names, const FileEvent& event,
                            std::size_t inode) const {
  if (event.kind == FileEvent::Kind::kCreate) {
    names[event.path] = inode;
    return;
  }
  names.erase(event.path);
  if (event.kind == FileEvent::Kind::kRename) names[event.to] = inode;
}

void PowerLoss::syncNames() {
  m_syncedNames = m_names;
  m_dirtyNames.clear();
}

PowerLoss::Files PowerLoss::survivors(Survival survival) const {
  std::map<std::string, std::size_t> names = m_syncedNames;
  const bool keepsNames = survival != Survival::kNothing && survival != Survival::kDataOnly;
  for (const auto& [event, inode] : m_dirtyNames) {
    if (keepsNames) changeNames(names, *event, inode);
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

}  // namespace crashtest
