// Every input and output stream driven by scripts of calls (tests/data/input_streams.tsv,
// tests/data/output_streams.tsv): a stream made from a source or over a file or an in-memory
// sink, the calls, and what they answer.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <zlib.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <iterator>
#include <memory>
#include <sstream>
#include <utility>
#include <vector>

#include "base/AtomicFileOutputStream.h"
#include "base/BufferedOutputStream.h"
#include "base/BufferedReader.h"
#include "base/ByteOrder.h"
#include "base/DefaultCharsetConverterManager.h"
#include "base/Environment.h"
#include "base/FileInputStream.h"
#include "base/FileOutputStream.h"
#include "base/InflateInputStream.h"
#include "base/MemoryInputStream.h"
#include "base/PartialInputStream.h"
#include "base/StringOutputStream.h"
#include "base/ZipEntryInputStream.h"
#include "base/ZipEntryOutputStream.h"
#include "base/ZipFile.h"
#include "tests/support/Cases.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Python.h"
#include "tests/support/TempDir.h"

namespace {

using namespace kelfont_test;

// The library's memory stream over the bytes, at most `chunk` of them a Read(buffer, count),
// counting those reads and the closes.
struct CountedInputStream : qro_base::MemoryInputStream {
  CountedInputStream(const std::string& data, unsigned chunk, bool* destroyed = nullptr)
      : MemoryInputStream(data.data(), static_cast<unsigned>(data.size())),
        chunk(chunk),
        destroyed(destroyed) {}
  ~CountedInputStream() override {
    if (destroyed != nullptr) *destroyed = true;
  }
  using MemoryInputStream::Read;
  int Read(char* buffer, unsigned count) override {
    ++reads;
    return MemoryInputStream::Read(buffer, std::min(count, chunk));
  }
  bool Close() override {
    ++closes;
    return MemoryInputStream::Close();
  }

  unsigned chunk;
  bool* destroyed;
  int reads = 0;
  int closes = 0;
};

// The library's string sink, recording every block written; fails while `fail` is set.
struct MemoryOutputStream : qro_base::StringOutputStream {
  MemoryOutputStream() : StringOutputStream(data) {}
  bool Write(char c) override { return Write(&c, 1); }
  bool Write(const char* buffer, unsigned count) override {
    if (!fail) blocks.emplace_back(buffer, count);
    return !fail && StringOutputStream::Write(buffer, count);
  }
  bool Close() override { return ++closes > 0; }

  bool fail = false;
  int closes = 0;
  std::string data;
  std::vector<std::string> blocks;
};

std::string token(const std::string& bytes) { return bytes.empty() ? "''" : escape(bytes); }

// The archive's entry list: "NAME SIZE" lines.
std::string listing(const qro_base::ZipFile& zip) {
  std::string out;
  for (const qro_base::ZipEntry* entry : zip.GetEntries()) {
    out += entry->GetName() + " " + std::to_string(entry->GetSize()) + "\n";
  }
  return out;
}

// zlib's compression of the bytes at the level.
std::string deflated(const std::string& bytes, int level) {
  uLongf size = compressBound(bytes.size());
  std::string out(size, '\0');
  compress2(reinterpret_cast<Bytef*>(&out[0]), &size, reinterpret_cast<const Bytef*>(bytes.data()),
            bytes.size(), level);
  return out.substr(0, size);
}

// The archives of the zip scripts, written by Python's zipfile module (an independent writer):
// python.zip, which Python then extracts into python.zip.d/ and lists ("NAME SIZE" lines) on
// its standard output, with an entry of damaged deflate data; half.zip (its first half), empty.zip,
// the folder folder.zip and the fifo fifo.zip; long.zip with long names, and
// longN.zip whose second directory header starts at byte N with a name of 65001 bytes.
const char kArchives[] = R"(
import os, sys, zipfile
path = sys.argv[1]
text = ''.join('line %d\n' % i for i in range(1000)).encode()
with zipfile.ZipFile(path, 'w') as z:
    z.mkdir('Fdata')
    z.writestr('Fdata/0', bytes(range(256)), compress_type=zipfile.ZIP_STORED)
    z.writestr('Ftable', text, compress_type=zipfile.ZIP_DEFLATED)
    z.writestr('fc', b'', compress_type=zipfile.ZIP_DEFLATED)
    z.writestr('bzip2', text, compress_type=zipfile.ZIP_BZIP2)
    z.writestr('lzma', text, compress_type=zipfile.ZIP_LZMA)
    z.writestr('corrupt', text, compress_type=zipfile.ZIP_DEFLATED)
    z.writestr('deflate', b'abc', compress_type=zipfile.ZIP_DEFLATED)
    info = z.getinfo('corrupt')
with zipfile.ZipFile(path) as z:
    z.extractall(path + '.d')
    for i in z.infolist():
        print(i.filename, i.file_size)
data = bytearray(open(path, 'rb').read())
start = info.header_offset + 30 + len(info.filename) + len(info.extra)
# 0xFF starts a final block of the reserved type 3: invalid at once.
data[start:start + info.compress_size] = b'\xff' * info.compress_size
open(path, 'wb').write(data)
folder = os.path.dirname(path)
open(folder + '/half.zip', 'wb').write(data[:len(data) // 2])
open(folder + '/empty.zip', 'wb').close()
os.mkdir(folder + '/folder.zip')
# A fifo would block a plain open.
os.mkfifo(folder + '/fifo.zip')
with zipfile.ZipFile(folder + '/long.zip', 'w') as z:
    z.writestr('Fdata/' + 'n' * 294, b'long name', compress_type=zipfile.ZIP_DEFLATED)
    z.writestr('d' * 255, b'255', compress_type=zipfile.ZIP_STORED)
    z.writestr('f' * 65000, b'ok', compress_type=zipfile.ZIP_STORED)
def write(path, pad):
    with zipfile.ZipFile(path, 'w') as z:
        z.writestr('p', b'.' * pad, compress_type=zipfile.ZIP_STORED)
        z.writestr('Fdata/' + 'n' * 64995, b'x', compress_type=zipfile.ZIP_STORED)
    data = open(path, 'rb').read()
    return data.find(b'PK\x01\x02', data.find(b'PK\x01\x02') + 1)
for target in range(65530, 65575, 3):
    path = '%s/long%d.zip' % (folder, target)
    assert write(path, target - write(path, 0)) == target
)";

// Reads the archive back with Python's zipfile module: every entry's name (or the length of a
// long one), size, method and checksum, after checking every checksum.
const char kZipReport[] = R"(
import sys, zipfile
with zipfile.ZipFile(sys.argv[1]) as z:
    assert z.testzip() is None
    for i in z.infolist():
        print(i.filename, i.file_size, i.compress_type, '%08x' % i.CRC)
)";

// The bytes with every MS-DOS time and date of a zip header for a local time from `since` to
// now as "<now>".
std::string stamped(std::string bytes, std::time_t since) {
  for (std::time_t now = since; now <= std::time(nullptr); ++now) {
    std::tm t;
    localtime_r(&now, &t);
    const unsigned time = (t.tm_hour << 11) | (t.tm_min << 5) | (t.tm_sec / 2);
    const unsigned date = ((t.tm_year - 80) << 9) | ((t.tm_mon + 1) << 5) | t.tm_mday;
    const char stamp[] = {char(time & 0xFF), char(time >> 8), char(date & 0xFF), char(date >> 8)};
    for (size_t at; (at = bytes.find(stamp, 0, 4)) != std::string::npos;)
      bytes.replace(at, 4, "<now>");
  }
  return bytes;
}

// A checked little-endian reader's value, or "fail".
template <typename T>
std::string checked(bool (*read)(qro_base::InputStream&, T&), qro_base::InputStream& in) {
  T value{};
  return read(in, value) ? std::to_string(+value) : "fail";
}

TEST(InputStreams, Scripts) {
  TempDir dir;
  std::string manifest;
  const std::string archive = dir.file("python.zip");
  ASSERT_TRUE(runPython(kArchives, {archive}, &manifest));
  for (const Case& c : cases("input_streams.tsv")) {
    SCOPED_TRACE(c.line);
    std::string kind = c[0].substr(0, c[0].find(':'));
    unsigned size = static_cast<unsigned>(std::strtoul(c[0].c_str() + kind.size() + 1, nullptr, 0));
    const std::string source = c[1];
    ASSERT_TRUE(writeFile(dir.file("f"), source));
    // What the in-memory source gives, CHUNK bytes a read: zlib data for zlib and zlib0.
    std::string bytes = kind == "zlib" || kind == "zlib0"
                            ? deflated(expand(source), kind == "zlib" ? Z_DEFAULT_COMPRESSION : 0)
                            : source;
    const size_t comma = c[0].find(',');
    const unsigned chunk = comma == std::string::npos ? ~0u : std::stoul(c[0].substr(comma + 1));
    bool destroyed = false;
    auto* memory = new CountedInputStream(bytes, chunk, &destroyed);
    std::unique_ptr<CountedInputStream> owned(memory);
    LogCapture log;
    std::unique_ptr<qro_base::ZipFile> zip;
    std::unique_ptr<qro_base::InputStream> in;
    qro_base::ensureEnvironment().SetCharsetConverterManager(
        kind == "reader-nomanager" ? nullptr : new qro_base::DefaultCharsetConverterManager());
    if (kind == "memory") {
      in.reset(
          new qro_base::MemoryInputStream(source.data(), static_cast<unsigned>(source.size())));
    } else if (kind == "memory-null") {
      in.reset(new qro_base::MemoryInputStream(nullptr, size));
    } else if (kind == "file") {
      // 0: the source, 1: missing, 2: a folder, 3: below a plain file (the archive), 4: no path
      const std::string paths[] = {dir.file("f"), dir.file("missing"), dir.path(),
                                   dir.file("python.zip/below")};
      in.reset(size == 4 ? new qro_base::FileInputStream(static_cast<const char*>(nullptr))
                         : new qro_base::FileInputStream(paths[size]));
    } else if (kind == "buffered" || kind == "buffered-file") {
      in.reset(new qro_base::BufferedInputStream(
          kind == "buffered" ? static_cast<qro_base::InputStream*>(owned.release())
                             : new qro_base::FileInputStream(dir.file("f")),
          size));
    } else if (kind == "partial") {
      in.reset(new qro_base::PartialInputStream(*memory, size));
    } else if (kind.rfind("reader", 0) == 0) {
      qro_base::InputStream* from = kind == "reader-file"
                                        ? new qro_base::FileInputStream(dir.file("f"))
                                        : static_cast<qro_base::InputStream*>(owned.release());
      in.reset(new qro_base::BufferedReader(
          from, kind == "reader-949" ? 949 : qro_base::kEncodingUtf8, size));
    } else if (kind.rfind("zlib", 0) == 0) {
      in.reset(new qro_base::InflateInputStream(*memory, size));
    } else {  // zz:ENTRY or mini:ENTRY in the archive named by the source
      const std::string path = source.empty() ? archive : dir.file(source);
      zip.reset(new qro_base::ZipFile(source == "NULL" ? nullptr : path.c_str(), kind == "zz"));
      const std::string entry = expand(c[0].substr(kind.size() + 1));
      in.reset(new qro_base::ZipEntryInputStream(*zip, entry.c_str()));
    }
    std::string got;  // every byte read
    auto* file = dynamic_cast<qro_base::FileInputStream*>(in.get());
    auto* inflate = dynamic_cast<qro_base::InflateInputStream*>(in.get());
    expectCalls(c, 2, [&](const std::string& op, std::ostream& said) {
      const unsigned n = static_cast<unsigned>(std::strtoul(op.c_str() + 1, nullptr, 10));
      // n bytes and 64 that must stay '#', 256 for the back end, or what is available.
      const bool guarded = op[0] == 'r' || op[0] == 'j';
      std::vector<char> buffer(guarded ? n + 64 : op[0] == 'i' ? 256 : in->Available(), '#');
      int count = 0;
      long at = 0;
      switch (op[0]) {
        case 'r':
          if (op.size() == 1) {
            int v = in->Read();
            said << v;
            if (v >= 0) got += static_cast<char>(v);
            break;
          }
          [[fallthrough]];
        case 'x':  // n asked, into a buffer of what is available
          said << (count = in->Read(buffer.data(), n));
          if (count > 0 && count <= 16 && op[0] == 'r')
            said << ':' << token(std::string(buffer.data(), count));
          if (count > 0) got.append(buffer.data(), count);
          break;
        case 'R': {
          std::string all;
          std::ostringstream units;
          for (int v; (v = in->Read()) != -1;) {
            all += static_cast<char>(v);
            got += static_cast<char>(v);
            units << (units.tellp() ? "," : "") << std::hex << v;
          }
          said << (kind.rfind("reader", 0) == 0 ? (all.empty() ? "''" : units.str()) : token(all));
          break;
        }
        case '<':  // the plain little-endian readers
          if (op == "<u16") said << qro_base::readUInt16(*in);
          if (op == "<i32") said << qro_base::readInt32(*in);
          if (op == "<u32") said << qro_base::readUInt32(*in);
          break;
        case '?':  // the checked ones
          if (op == "?u8") said << checked(qro_base::readUInt8, *in);
          if (op == "?i16") said << checked(qro_base::readInt16, *in);
          if (op == "?u16") said << checked(qro_base::readUInt16, *in);
          if (op == "?i32") said << checked(qro_base::readInt32, *in);
          if (op == "?u32") said << checked(qro_base::readUInt32, *in);
          break;
        // One call a line.
        // clang-format off
        case 'f': said << (in->Read(buffer.data(), n) <= 0 ? "fail" : "read"); break;
        case 's': said << in->Skip(n); break;
        case 'a': said << in->Available(); break;
        case 'c': said << in->Close(); break;
        case 'o': said << in->IsOpen(); break;
        case 'z': said << file->Size(); break;
        case 'k': said << file->Seek(static_cast<long>(n), SEEK_SET); break;
        case 'e': said << file->Seek(0, SEEK_END); break;
        case 't': said << file->Tell(); break;
        case 'S': said << memory->Read(); break;
        case 'C': said << memory->closes; break;
        case 'n': said << memory->reads; break;
        case 'P': in.reset(new qro_base::PartialInputStream(*memory, n)); said << '.'; break;
        case 'T': said << inflate->Status(); break;
        case 'd': said << destroyed; break;
        case 'D': in.reset(); said << destroyed; break;
        case 'N': in.reset(new qro_base::ZipEntryInputStream(*zip, &op[1])); said << '.'; break;
        case 'l': said << (listing(*zip) == manifest); break;
        case 'L': said << escape(listing(*zip)); break;
        case '#': said << zip->GetEntries().size(); break;
        case 'b': said << zip->GetImpl()->OpenEntry(op.c_str() + 1); break;
        case 'i': said << zip->GetImpl()->ReadEntry(buffer.data(), n); break;
        case 'B': said << zip->GetImpl()->CloseEntry(); break;
        case 'Z': in.reset(); zip.reset(); said << log.taken(); break;
        // clang-format on
        case '=':  // what was read equals the source, or the entry as Python extracted it
          said << (got == (op.size() == 1 ? expand(source) : readFile(archive + ".d/" + &op[1])));
          break;
        case 'j': {  // Read() into a destination of n bytes, from the zlib data again
          CountedInputStream again(bytes, chunk);
          said << qro_base::InflateInputStream(again, size, buffer.data(), n).Read();
          break;
        }
        case '~':  // the zlib data damaged: a byte at n flipped (from the end when negative), or
        case '|':  // cut to n bytes (by -n bytes); the stream made again
          at = std::stol(op.substr(1));
          at += at < 0 ? static_cast<long>(bytes.size()) : 0;
          if (op[0] == '|') bytes.resize(static_cast<size_t>(at));
          if (op[0] == '~') bytes[static_cast<size_t>(at)] ^= 0x55;
          owned.reset(memory = new CountedInputStream(bytes, chunk));
          in.reset(inflate = new qro_base::InflateInputStream(*memory, size));
          said << '.';
          break;
        default:
          ADD_FAILURE() << "unknown call " << op;
      }
      if (guarded && std::count(buffer.end() - 64, buffer.end(), '#') != 64) said << "(past)";
    });
    in.reset();
  }
  qro_base::ensureEnvironment().SetCharsetConverterManager(nullptr);
}

TEST(OutputStreams, Scripts) {
  for (const Case& c : cases("output_streams.tsv")) {
    SCOPED_TRACE(c.line);
    TempDir dir;
    ASSERT_TRUE(writeFile(dir.file("plain"), "x"));
    ASSERT_EQ(mkdir(dir.file("folder").c_str(), 0755), 0);
    const std::string kind = c[0].substr(0, c[0].find(':')), arg = c[0].substr(kind.size() + 1);
    // The file written: "f" (holding the source bytes unless they are "-"),
    // or for KIND@:PATH a path below the folder, which holds "plain" and "folder".
    const std::string path = kind.back() == '@' ? dir.file(arg) : dir.file("f");
    ASSERT_TRUE(c[1] == "-" || writeFile(dir.file("f"), expand(c[1])));
    const std::time_t started = std::time(nullptr);
    MemoryOutputStream sink;
    std::unique_ptr<qro_base::OutputStream> file;
    std::unique_ptr<qro_base::OutputStream> out;
    if (kind == "file" || kind == "file@") {
      out.reset(arg.empty() || kind == "file@" ? new qro_base::FileOutputStream(path.c_str())
                                               : new qro_base::FileOutputStream(path, arg.c_str()));
    } else if (kind.rfind("buffered", 0) == 0) {
      if (kind == "buffered-file") file.reset(new qro_base::FileOutputStream(path.c_str()));
      out.reset(new qro_base::BufferedOutputStream(file ? file.get() : &sink, std::stoul(arg)));
    } else if (kind == "memory") {
      out.reset(new MemoryOutputStream());
    } else if (kind.rfind("atomic", 0) == 0) {
      out.reset(new qro_base::AtomicFileOutputStream(path));
    } else {
      out.reset(new qro_base::ZipEntryOutputStream(path.c_str()));
    }
    auto* memory = dynamic_cast<MemoryOutputStream*>(out.get());
    auto* buffered = dynamic_cast<qro_base::BufferedOutputStream*>(out.get());
    auto* fileOut = dynamic_cast<qro_base::FileOutputStream*>(out.get());
    auto* zip = dynamic_cast<qro_base::ZipEntryOutputStream*>(out.get());
    auto* atomic = dynamic_cast<qro_base::AtomicFileOutputStream*>(out.get());
    LogCapture log;
    std::unique_ptr<FileSizeLimit> limit;
    expectCalls(c, 2, [&](const std::string& op, std::ostream& said) {
      const std::string text = op.substr(1);
      const long value = std::strtol(text.c_str() + text.find(':') + 1, nullptr, 0);
      qro_base::ZipEntry entry(text, 0);
      std::string report;
      // clang-format off
      switch (op[0]) {
        case 'w': said << out->Write(text.data(), static_cast<unsigned>(text.size())); break;
        case 'p': said << out->Write(text[0]); break;
        case '0': said << out->Write("abc", 0); break;
        case 'N': said << out->Write(nullptr, 3); break;
        case 'k': said << fileOut->Seek(static_cast<unsigned>(value), SEEK_SET); break;
        case 't': said << fileOut->Tell(); break;
        case 'F': said << buffered->Flush(); break;
        case 'c': said << out->Close(); break;
        case 'C': said << (file ? file->IsOpen() : sink.closes); break;
        case 'o': said << out->IsOpen(); break;
        case '!': (memory ? memory : &sink)->fail ^= true; said << '.'; break;
        case '=':
          said << token(memory ? memory->data : kind == "buffered" ? sink.data : readFile(path));
          break;
        case '|': for (const std::string& block : sink.blocks) said << token(block) << '|'; break;
        case 'D': out.reset(); file.reset(); said << '.'; break;
        case '[': limit.reset(new FileSizeLimit(4096)); said << limit->ok(); break;
        case ']': limit.reset(); said << '.'; break;
        case '*': out->Write(std::string(value, 'x').data(), unsigned(value)); said << '.'; break;
        case 'K': said << atomic->Commit(); break;
        case '#': said << std::distance(std::filesystem::directory_iterator(dir.path()), {}); break;
        case 'g': said << log.taken("", dir.path()); break;
        case 'e': {  // and what it printed, in brackets
          testing::internal::CaptureStdout();
          said << zip->PutNextEntry(entry);
          const std::string printed = testing::internal::GetCapturedStdout();
          if (!printed.empty()) said << '(' << escape(printed) << ')';
          break;
        }
        case 'E': said << zip->CloseEntry(); break;
        case 'n': said << zip->GetEntries().size(); break;
        case 'L': said << escape(listing(qro_base::ZipFile(path.c_str(), false))); break;
        case 'Z': said << (runPython(kZipReport, {path}, &report) ? escape(report) : "fail"); break;
        case 'T': said << escape(stamped(readFile(path), started)); break;
        case '>':
          if (text.rfind("u8:", 0) == 0) said << qro_base::writeUInt8(*out, uint8_t(value));
          if (text.rfind("u16:", 0) == 0) said << qro_base::writeUInt16(*out, uint16_t(value));
          if (text.rfind("i16:", 0) == 0) said << qro_base::writeInt16(*out, int16_t(value));
          if (text.rfind("i32:", 0) == 0) said << qro_base::WriteInt32(*out, int(value));
          break;
        default: ADD_FAILURE() << "unknown call " << op;
      }
      // clang-format on
    });
  }
}

}  // namespace
