#include "native/DefaultFontInfoFileExtracter.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "base/AtomicFileOutputStream.h"
#include "base/Environment.h"
#include "base/ZipEntryInputStream.h"
#include "base/ZipFile.h"
#include "common/registry/DataFileNames.h"

namespace qro_ni {
namespace {

std::string environmentStoragePath() {
  const std::string* path = qro_base::ensureEnvironment().GetFileStoragePath();
  return path != nullptr ? *path : std::string();
}

// Whether name stays inside the folder it is appended to: relative, no ".."
// component, no backslash (a separator on some file systems).
bool staysInFolder(const char* name) {
  if (name == nullptr || name[0] == '\0' || name[0] == '/') return false;
  if (std::strchr(name, '\\') != nullptr) return false;
  const char* component = name;
  for (;;) {
    const char* end = std::strchr(component, '/');
    size_t length = end != nullptr ? static_cast<size_t>(end - component) : std::strlen(component);
    if (length == 2 && component[0] == '.' && component[1] == '.') return false;
    if (end == nullptr) return true;
    component = end + 1;
  }
}

}  // namespace

DefaultFontInfoFileExtracter::DefaultFontInfoFileExtracter(const std::string& packageDirectory)
    : dataDirectory_(environmentStoragePath()), packageDirectory_(packageDirectory) {
  Load();
}

DefaultFontInfoFileExtracter::DefaultFontInfoFileExtracter(const std::string& dataDirectory,
                                                           const std::string& packageDirectory)
    : dataDirectory_(dataDirectory), packageDirectory_(packageDirectory) {
  Load();
}

DefaultFontInfoFileExtracter::~DefaultFontInfoFileExtracter() { delete zip_; }

void DefaultFontInfoFileExtracter::Load() {
  std::string path = packageDirectory_ + qro_common::getCompressedFontInfoFileName();
  zip_ = new qro_base::ZipFile(path.c_str(), true);
}

void DefaultFontInfoFileExtracter::Reload() {
  delete zip_;
  zip_ = nullptr;
  Load();
}

namespace {

// Whether the file at `path` holds exactly these bytes.
bool holdsBytes(const std::string& path, const char* bytes, unsigned size) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return false;
  std::unique_ptr<char[]> held(new (std::nothrow) char[size + 1u]);
  const bool same = held != nullptr && std::fread(held.get(), 1, size + 1u, file) == size &&
                    std::memcmp(held.get(), bytes, size) == 0;
  std::fclose(file);
  return same;
}

}  // namespace

bool DefaultFontInfoFileExtracter::Extract(const char* entryName) {
  if (zip_ == nullptr || !staysInFolder(entryName)) return false;
  const qro_base::ZipEntry* entry = zip_->GetEntry(entryName);
  // zziplib sign-extends its 32-bit sizes: a negative size is a damaged one.
  if (entry == nullptr || entry->GetSize() <= 0 || entry->GetSize() > kMaxEntrySize) {
    return false;
  }

  qro_base::ZipEntryInputStream in(*zip_, entryName);
  if (!in.IsOpen()) return false;
  unsigned size = in.Available();
  std::unique_ptr<char[]> buffer(new (std::nothrow) char[size]);
  if (buffer == nullptr) {
    in.Close();
    return false;
  }
  // One read delivers the whole entry with zziplib; a back end that
  // delivers it in pieces is read on to the end.
  unsigned got = 0;
  while (got < size) {
    int read = in.Read(buffer.get() + got, size - got);
    if (read <= 0 || static_cast<unsigned>(read) > size - got) break;
    got += static_cast<unsigned>(read);
  }
  in.Close();
  if (got != size) return false;

  std::string path = dataDirectory_ + qro_common::getFontInfoStorageName() + entryName;
  // A start that finds the entry already in place writes nothing. Written,
  // it is not synced: the next table a scan writes syncs it, and a torn
  // one is extracted again. A failed write is detected and logged (by the
  // stream's commit), never taken for an extracted file.
  if (holdsBytes(path, buffer.get(), size)) return true;
  qro_base::AtomicFileOutputStream out(path,
                                       qro_base::AtomicFileOutputStream::Durability::kDeferred);
  bool written = out.Write(buffer.get(), size);
  return out.Commit() && written;
}

bool DefaultFontInfoFileExtracter::ExtractFontTable() {
  // The named instances of the table's records go with it; a package
  // without them has none (and the caller has removed any older file).
  const bool table = Extract(qro_common::getFontInfoTableName());
  if (table) Extract(qro_common::getFontInstanceTableName());
  return table;
}

bool DefaultFontInfoFileExtracter::ExtractFontChain() {
  return Extract(qro_common::getFontChainName());
}

bool DefaultFontInfoFileExtracter::ExtractDefaultFontsList() {
  return Extract(qro_common::getDefaultFontsName());
}

bool DefaultFontInfoFileExtracter::ExtractScriptDefaultFontsList() {
  return Extract(qro_common::getScriptDefaultFontsName());
}

bool DefaultFontInfoFileExtracter::ExtractScriptDefaultFontsList(const char* language) {
  if (language == nullptr || std::strpbrk(language, "/\\") != nullptr) return false;
  std::string name = std::string(qro_common::getScriptDefaultFontsName()) + "_" + language;
  return Extract(name.c_str());
}

void DefaultFontInfoFileExtracter::ExtractFontInfoData(int number) {
  std::string name =
      std::string(qro_common::getFontInfoDataDirectoryName()) + std::to_string(number);
  Extract(name.c_str());
}

}  // namespace qro_ni
