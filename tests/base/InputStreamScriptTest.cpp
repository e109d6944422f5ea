// Every input stream driven by scripts of calls (tests/data/input_streams.tsv):
// a stream made from a source, the calls, and what they answer.
#include <gtest/gtest.h>

#include <memory>
#include <sstream>

#include "base/BufferedReader.h"
#include "base/ByteOrder.h"
#include "base/DefaultCharsetConverterManager.h"
#include "base/Environment.h"
#include "base/FileInputStream.h"
#include "base/MemoryInputStream.h"
#include "base/PartialInputStream.h"
#include "base/ZipEntryInputStream.h"
#include "base/ZipFile.h"
#include "tests/base/MemoryStreams.h"
#include "tests/base/ZipTestSupport.h"
#include "tests/support/Cases.h"

namespace {

using namespace kelfont_test;

std::string token(const std::string& bytes) { return bytes.empty() ? "''" : escape(bytes); }

// A checked little-endian reader's value, or "fail".
template <typename T>
std::string checked(bool (*read)(qro_base::InputStream&, T&), qro_base::InputStream& in) {
  T value{};
  return read(in, value) ? std::to_string(+value) : "fail";
}

TEST(InputStreams, Scripts) {
  TempDir dir;
  std::string archive = writePythonArchive(dir);
  ASSERT_FALSE(archive.empty());
  ASSERT_TRUE(writeFile(dir.file("plain"), "x"));
  for (const Case& c : cases("input_streams.tsv")) {
    SCOPED_TRACE(c.line);
    std::string kind = c[0].substr(0, c[0].find(':'));
    unsigned size = static_cast<unsigned>(std::strtoul(c[0].c_str() + kind.size() + 1, nullptr, 0));
    std::string source = c[1];
    ASSERT_TRUE(writeFile(dir.file("f"), source));
    bool destroyed = false;
    auto* memory = new MemoryInputStream(source, kind == "chunked" ? size : ~0u, &destroyed);
    std::unique_ptr<MemoryInputStream> owned(memory);
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
      // 0: the source, 1: missing, 2: a folder, 3: below a plain file, 4: no path
      const std::string paths[] = {dir.file("f"), dir.file("missing"), dir.path(),
                                   dir.file("plain/below")};
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
    } else {  // zz:ENTRY or mini:ENTRY
      zip.reset(new qro_base::ZipFile(archive.c_str(), kind == "zz"));
      in.reset(new qro_base::ZipEntryInputStream(*zip, c[0].substr(kind.size() + 1).c_str()));
    }
    std::istringstream ops(c[2]);
    std::ostringstream said;
    std::string got;  // every byte read
    auto* file = dynamic_cast<qro_base::FileInputStream*>(in.get());
    for (std::string op; ops >> op;) {
      unsigned n = static_cast<unsigned>(std::strtoul(op.c_str() + 1, nullptr, 10));
      switch (op[0]) {
        case 'r':
          if (op.size() == 1) {
            int v = in->Read();
            said << v;
            if (v >= 0) got += static_cast<char>(v);
          } else {  // into a heap buffer of exactly n bytes
            std::vector<char> buffer(n);
            int count = in->Read(buffer.data(), n);
            said << count;
            if (count > 0 && count <= 16) said << ':' << token(std::string(buffer.data(), count));
            if (count > 0) got.append(buffer.data(), count);
          }
          break;
        case 'x': {  // n asked, into a buffer of what is available
          std::vector<char> buffer(in->Available());
          int count = in->Read(buffer.data(), n);
          said << count;
          if (count > 0) got.append(buffer.data(), count);
          break;
        }
        case 'f': {
          std::vector<char> buffer(in->Available());
          said << (in->Read(buffer.data(), n) <= 0 ? "fail" : "read");
          break;
        }
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
        case '=': said << (got == readFile(archive + ".d/" + op.substr(1))); break;
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
        case 'd': said << destroyed; break;
        case 'D': in.reset(); said << destroyed; break;
        case 'B': said << zip->GetImpl()->CloseEntry(); break;
        case 'N': in.reset(new qro_base::ZipEntryInputStream(*zip, op.c_str() + 1)); said << '.'; break;
        default: FAIL() << "unknown call " << op;
          // clang-format on
      }
      said << ' ';
    }
    size_t third = c.line.find('\t', c.line.find('\t', c.line.find('\t') + 1) + 1);
    EXPECT_EQ(said.str(), c.line.substr(third + 1) + " ");  // as written, escapes and all
    in.reset();
  }
  qro_base::ensureEnvironment().SetCharsetConverterManager(nullptr);
}

}  // namespace
