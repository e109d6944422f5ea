#include "common/analysis/FontFileStream.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>

namespace qro_common {

namespace {

// FreeType reads a face in many small pieces (a table directory entry, a
// glyph's metrics, a glyph), mostly moving forward through a few regions at
// once (the metrics table and the glyph data). A handful of small windows
// over the file serves those pieces without a system call each.
constexpr unsigned long kWindowSize = 4096;
constexpr int kWindowCount = 4;

struct Window {
  unsigned long start = 0;
  unsigned long length = 0;  // 0: empty
  unsigned char bytes[kWindowSize];
};

struct Source {
  int fd = -1;
  int next = 0;  // the window to refill next
  Window windows[kWindowCount];
};

// Reads up to count bytes at offset; fewer at the end of the file or on an
// error.
unsigned long readAt(int fd, unsigned long offset, unsigned char* buffer, unsigned long count) {
  unsigned long done = 0;
  while (done < count) {
    ssize_t got = pread(fd, buffer + done, count - done, static_cast<off_t>(offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    done += static_cast<unsigned long>(got);
  }
  return done;
}

}  // namespace

FT_Error FontFileStream::OpenFace(FT_Library library, const char* path, FT_Long faceIndex,
                                  FT_Face* face) {
  if (face != nullptr) *face = nullptr;
  if (library == nullptr || path == nullptr || face == nullptr) return FT_Err_Invalid_Argument;
  int fd = open(path, O_RDONLY | O_CLOEXEC);
  if (fd < 0) return FT_Err_Cannot_Open_Resource;
  struct stat status;
  if (fstat(fd, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size <= 0) {
    close(fd);
    return FT_Err_Cannot_Open_Resource;
  }
  auto size = static_cast<unsigned long>(status.st_size);
  auto* stream = new (std::nothrow) FT_StreamRec();
  if (stream == nullptr) {
    close(fd);
    return FT_Err_Out_Of_Memory;
  }
  stream->size = size;
  stream->pos = 0;
  stream->close = &FontFileStream::Close;

  auto* source = new (std::nothrow) Source();
  if (source == nullptr) {
    delete stream;
    close(fd);
    return FT_Err_Out_Of_Memory;
  }
  source->fd = fd;
  stream->descriptor.pointer = source;
  stream->read = &FontFileStream::Read;

  FT_Open_Args args = {};
  args.flags = FT_OPEN_STREAM;
  args.stream = stream;
  // From here on FreeType closes the stream: at FT_Done_Face, or before
  // returning an error.
  return FT_Open_Face(library, &args, faceIndex, face);
}

unsigned long FontFileStream::Read(FT_Stream stream, unsigned long offset, unsigned char* buffer,
                                   unsigned long count) {
  // A count of 0 asks whether the position can be reached: 0 means yes.
  if (count == 0) return offset > stream->size ? 1 : 0;
  auto* source = static_cast<Source*>(stream->descriptor.pointer);
  if (count > kWindowSize / 2) return readAt(source->fd, offset, buffer, count);
  for (Window& window : source->windows) {
    if (offset >= window.start && offset - window.start + count <= window.length) {
      std::memcpy(buffer, window.bytes + (offset - window.start), count);
      return count;
    }
  }
  Window& window = source->windows[source->next];
  source->next = (source->next + 1) % kWindowCount;
  window.start = offset;
  window.length = readAt(source->fd, offset, window.bytes, kWindowSize);
  unsigned long available = window.length < count ? window.length : count;
  std::memcpy(buffer, window.bytes, available);
  return available;
}

void FontFileStream::Close(FT_Stream stream) {
  // FreeType uses `base` for the frames it hands out, which are not the
  // stream's to free.
  auto* source = static_cast<Source*>(stream->descriptor.pointer);
  close(source->fd);
  delete source;
  delete stream;
}

}  // namespace qro_common
