#pragma once

#include <cstdint>
#include <string>

namespace qro_base {

// One entry of a zip archive: its full path inside the archive (with folder
// prefixes such as "Fdata/0"; folders themselves end in "/") and its
// uncompressed size in bytes.
class ZipEntry {
 public:
  ZipEntry() = default;
  ZipEntry(const std::string& name, int64_t size) : name_(name), size_(size) {}
  ZipEntry(const ZipEntry&) = default;
  ZipEntry& operator=(const ZipEntry&) = default;
  virtual ~ZipEntry();

  const std::string& GetName() const { return name_; }
  void SetName(const std::string& name) { name_ = name; }
  int64_t GetSize() const { return size_; }
  void SetSize(int64_t size) { size_ = size; }

 private:
  std::string name_;
  int64_t size_ = 0;
};

}  // namespace qro_base
