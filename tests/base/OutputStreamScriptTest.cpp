// Every output stream driven by scripts of calls (tests/data/output_streams.tsv):
// a stream made over a file or an in-memory sink, the calls, and what they answer.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <iterator>
#include <memory>
#include <sstream>

#include "base/AtomicFileOutputStream.h"
#include "base/BufferedOutputStream.h"
#include "base/ByteOrder.h"
#include "base/FileOutputStream.h"
#include "base/ZipEntryOutputStream.h"
#include "base/ZipFile.h"
#include "tests/base/MemoryStreams.h"
#include "tests/base/ZipTestSupport.h"
#include "tests/support/Cases.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/LogCapture.h"

namespace {

using namespace kelfont_test;

std::string token(const std::string& bytes) { return bytes.empty() ? "''" : escape(bytes); }

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
    ASSERT_TRUE(c[1] == "-" || writeFile(dir.file("f"), c[1]));
    MemoryOutputStream sink;
    std::unique_ptr<qro_base::FileOutputStream> file;
    std::unique_ptr<qro_base::OutputStream> out;
    if (kind == "file" || kind == "file@") {
      out.reset(arg.empty() || kind == "file@" ? new qro_base::FileOutputStream(path.c_str())
                                               : new qro_base::FileOutputStream(path, arg.c_str()));
    } else if (kind == "buffered") {
      out.reset(new qro_base::BufferedOutputStream(&sink, std::stoul(arg)));
    } else if (kind == "buffered-file") {
      file.reset(new qro_base::FileOutputStream(path.c_str()));
      out.reset(new qro_base::BufferedOutputStream(file.get(), std::stoul(arg)));
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
    std::istringstream ops(c[2]);
    std::ostringstream said;
    for (std::string op; ops >> op;) {
      const std::string text = op.substr(1);
      const long value = std::strtol(text.c_str() + text.find(':') + 1, nullptr, 0);
      qro_base::ZipEntry entry(text, 0);
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
        case '=': said << token(memory ? memory->data : kind == "buffered" ? sink.data : readFile(path)); break;
        case '|': for (const std::string& block : sink.blocks) said << token(block) << '|'; break;
        case 'D': out.reset(); file.reset(); said << '.'; break;
        case '[': limit.reset(new FileSizeLimit(4096)); said << limit->ok(); break;
        case ']': limit.reset(); said << '.'; break;
        case '*': out->Write(std::string(value, 'x').data(), static_cast<unsigned>(value)); said << '.'; break;
        case 'K': said << atomic->Commit(); break;
        case '#': said << std::distance(std::filesystem::directory_iterator(dir.path()), {}); break;
        case 'g':
          for (std::string message : log.messages()) {
            said << message.replace(message.find(dir.path()), dir.path().size(), "DIR") << '|';
          }
          break;
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
        case '>':
          if (text.rfind("u8:", 0) == 0) said << qro_base::writeUInt8(*out, static_cast<unsigned char>(value));
          if (text.rfind("u16:", 0) == 0) said << qro_base::writeUInt16(*out, static_cast<unsigned short>(value));
          if (text.rfind("i16:", 0) == 0) said << qro_base::writeInt16(*out, static_cast<short>(value));
          if (text.rfind("i32:", 0) == 0) said << qro_base::WriteInt32(*out, static_cast<int>(value));
          break;
        default: FAIL() << "unknown call " << op;
      }
      // clang-format on
      said << ' ';
    }
    size_t third = c.line.find('\t', c.line.find('\t', c.line.find('\t') + 1) + 1);
    EXPECT_EQ(said.str(), c.line.substr(third + 1) + " ");  // as written, escapes and all
  }
}

}  // namespace
