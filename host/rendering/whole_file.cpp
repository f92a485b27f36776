// Files that are written whole or not at all.
#include "host/rendering/whole_file.h"

#include "platform/base/new_file.h"

namespace rendering {

std::string writeWholeFile(const std::string& path, const std::string& bytes) {
  OdNewFile file(path);
  OdStatus status = file.create();
  if (status.ok()) status = file.write(bytes.data(), bytes.size());
  if (status.ok()) status = file.commit();
  return std::string(status.text.utf8());
}

}  // namespace rendering
