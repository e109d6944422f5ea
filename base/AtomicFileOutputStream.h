#pragma once

#include <string>

#include "base/FileOutputStream.h"

namespace qro_base {

// Replaces a file as a whole. The bytes go to a temporary file beside the
// target (target + ".tmp" + process id + "-" + a number unique in the
// process, in the same directory, so that the final rename stays on one
// file system and two writers never share a temporary file); Commit() flushes
// it to disk, renames it over the target and syncs the directory (see
// Durability for the other ways). A reader, or the next start after a
// kill or a power loss, therefore finds either the whole old file or the
// whole new one, never a torn one. Without a successful Commit() the
// temporary file is removed and the target stays as it was.
//
// Failures (the temporary file cannot be created, a write, flush, sync or
// the rename fails, for example on a full disk or a read-only folder) are
// logged once, as "Cannot write <target>: <reason>", by Commit().
class AtomicFileOutputStream : public FileOutputStream {
 public:
  // How Commit() makes the new file durable.
  enum class Durability {
    // The file is synced before the rename, its folder after.
    kFile,
    // Nothing is synced: the rename is atomic for readers, but after a
    // power loss the file may be missing, old or torn until a later
    // kFileSystem commit on the same file system has gone through.
    kDeferred,
    // The whole file system is synced before the rename (this file and
    // every deferred one before it, in one call), the folder after: a
    // commit point for a set of files.
    kFileSystem,
  };

  explicit AtomicFileOutputStream(const std::string& path,
                                  Durability durability = Durability::kFile);
  ~AtomicFileOutputStream() override;

  bool Write(char c) override;
  bool Write(const char* buffer, unsigned count) override;

  // Makes the written bytes the target's content. False, with the target
  // unchanged and the temporary file removed, when anything failed since
  // the stream was opened. A second call returns false.
  bool Commit();

  // The temporary file's name begins with the target's and this suffix.
  static constexpr const char* kTemporarySuffix = ".tmp";

 private:
  // Records the first failure (errno at that moment).
  void Fail();
  // Drops the temporary file and logs the failure.
  bool Abandon();

  AtomicFileOutputStream(const std::string& path, const std::string& temporaryPath,
                         Durability durability);
  static std::string TemporaryPathFor(const std::string& path);

  std::string path_;
  std::string temporaryPath_;
  Durability durability_;
  int error_ = 0;
  bool failed_ = false;
  bool finished_ = false;
};

}  // namespace qro_base
