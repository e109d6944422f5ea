#pragma once
// Shared pieces of the fuzz targets: a scratch folder per process (in
// /dev/shm when there is one, so that writing each input is cheap), whole
// file writes, an in-memory output stream and a font table to resolve
// names against.

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "base/FileUtils.h"
#include "base/Log.h"
#include "base/StringOutputStream.h"
#include "common/font_info/FontInfo.h"
#include "common/registry/FontTable.h"

namespace kelfont_fuzz {

// A folder of this process, ending in "/", created on first use (with
// FInfo/Fdata, package and storage/FInfo/Fdata) and removed at exit.
inline const std::string& scratch() {
  // Never destroyed: the exit handler below still needs it.
  static const std::string* path = [] {
    const char* root = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
    auto* dir =
        new std::string(std::string(root) + "/kelfont-fuzz-" + std::to_string(getpid()) + "/");
    for (const char* sub : {"FInfo/Fdata", "package", "storage/FInfo/Fdata"})
      qro_base::confirmFilePathExists((*dir + sub).c_str());
    std::atexit([] {
      std::error_code ignored;
      std::filesystem::remove_all(scratch(), ignored);
    });
    return dir;
  }();
  return *path;
}

// Code points to look up: the start of the basic plane one by one, then a
// spread over the rest up to the supplementary planes.
inline const std::vector<unsigned>& probeCodes() {
  static const std::vector<unsigned> codes = [] {
    std::vector<unsigned> out;
    for (unsigned code = 0; code < 0x30000; code += code < 0x250 ? 1 : 251) out.push_back(code);
    return out;
  }();
  return codes;
}

inline bool writeWhole(const std::string& path, const uint8_t* data, size_t size) {
  FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return false;
  bool ok = size == 0 || std::fwrite(data, 1, size, file) == size;
  return std::fclose(file) == 0 && ok;
}

// Silences the log and writes the input to scratch() + name; false when it
// could not be written.
inline bool takeInput(const std::string& name, const uint8_t* data, size_t size) {
  qro_base::setLogHook([](int, const char*, const char*, void*) {}, nullptr);
  return writeWhole(scratch() + name, data, size);
}

// The bytes `table` writes.
template <typename Table>
std::string bytesOf(const Table& table) {
  std::string bytes;
  qro_base::StringOutputStream out(bytes);
  table.Write(out);
  return bytes;
}

// Stops the run: a property that must hold did not.
[[noreturn]] inline void fail(const char* what) {
  std::fprintf(stderr, "property violated: %s\n", what);
  std::abort();
}

// Stops the run unless every index lies in lowest .. the table's last font.
template <typename Indexes>
void expectFonts(const Indexes& indexes, int lowest, const qro_common::FontTable& table,
                 const char* what) {
  for (int index : indexes) {
    if (index < lowest || index >= table.GetFontCount()) fail(what);
  }
}

// Names the list readers resolve: "Alpha" .. "Delta" with a file, "Ghost"
// without one, plus a localized name.
inline void addListFonts(qro_common::FontTable& table) {
  const char* names[] = {"Alpha", "Beta", "Gamma", "Delta", "Ghost"};
  for (const char* name : names) {
    auto* info = new qro_common::FontInfo();
    info->SetFontName(new std::string(name));
    if (std::string(name) != "Ghost") info->SetFilePath(new std::string("/fonts/x.ttf"));
    if (std::string(name) == "Beta") info->AddLocalizedName(0x0412, "베타");
    table.RegisterFontInfo(info, false);
  }
}

}  // namespace kelfont_fuzz
