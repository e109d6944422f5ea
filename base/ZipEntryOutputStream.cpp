#include "base/ZipEntryOutputStream.h"

#include <cstdio>

#include "base/FileTime.h"

namespace qro_base {
namespace {

// Entry names are stored with a 16-bit length.
constexpr size_t kMaxEntryNameLength = 0xFFFF;

constexpr int kDefaultLevel = -1;  // Z_DEFAULT_COMPRESSION
constexpr int kWindowBits = -15;   // raw deflate, as the zip format stores it
constexpr int kMemoryLevel = 8;
constexpr int kDefaultStrategy = 0;

}  // namespace

ZipEntryOutputStream::ZipEntryOutputStream(const char* path) : path_(path != nullptr ? path : "") {
  if (path == nullptr) return;
  zlib_filefunc64_def fileFunctions;
  fill_fopen64_filefunc(&fileFunctions);
  zip_ = zipOpen2_64(path, APPEND_STATUS_CREATE, nullptr, &fileFunctions);
  open_ = zip_ != nullptr;
}

ZipEntryOutputStream::~ZipEntryOutputStream() {
  if (!closed_) Close();
}

bool ZipEntryOutputStream::PutNextEntry(ZipEntry& entry) {
  entries_.push_back(entry);
  const std::string& name = entry.GetName();
  zip_fileinfo info = {};
  filetime(name.c_str(), &info.tmz_date, &info.dosDate);
  int result = ZIP_PARAMERROR;
  if (zip_ != nullptr && name.size() <= kMaxEntryNameLength) {
    result = zipOpenNewFileInZip3(zip_, name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr,
                                  Z_DEFLATED, kDefaultLevel, 0, kWindowBits, kMemoryLevel,
                                  kDefaultStrategy, nullptr, 0);
  }
  if (result != ZIP_OK) {
    std::printf("error in opening %s in zipfile\n", name.c_str());
    return false;
  }
  return true;
}

bool ZipEntryOutputStream::Write(char) { return false; }

bool ZipEntryOutputStream::Write(const char* buffer, unsigned count) {
  if (count == 0 || buffer == nullptr || zip_ == nullptr) return false;
  return zipWriteInFileInZip(zip_, buffer, count) == ZIP_OK;
}

bool ZipEntryOutputStream::CloseEntry() {
  if (zip_ == nullptr) return false;
  return zipCloseFileInZip(zip_) == ZIP_OK;
}

bool ZipEntryOutputStream::Close() {
  closed_ = true;
  open_ = false;
  if (zip_ == nullptr) return false;
  int result = zipClose(zip_, nullptr);
  zip_ = nullptr;
  return result == ZIP_OK;
}

}  // namespace qro_base
