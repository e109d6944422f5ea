#include "tests/base/ZipTestSupport.h"

#include "base/ZipEntryInputStream.h"

namespace kelfont_test {

std::string writePythonArchive(const TempDir& dir, std::string* manifest) {
  static const char kProgram[] = R"(
import sys, zipfile
text = ''.join('line %d\n' % i for i in range(1000)).encode()
with zipfile.ZipFile(sys.argv[1], 'w') as z:
    z.mkdir('Fdata')
    z.writestr('Fdata/0', bytes(range(256)), compress_type=zipfile.ZIP_STORED)
    z.writestr('Ftable', text, compress_type=zipfile.ZIP_DEFLATED)
    z.writestr('fc', b'', compress_type=zipfile.ZIP_DEFLATED)
    z.writestr('bzip2', text, compress_type=zipfile.ZIP_BZIP2)
    z.writestr('lzma', text, compress_type=zipfile.ZIP_LZMA)
    z.writestr('corrupt', text, compress_type=zipfile.ZIP_DEFLATED)
    z.writestr('deflate', b'abc', compress_type=zipfile.ZIP_DEFLATED)
    info = z.getinfo('corrupt')
with zipfile.ZipFile(sys.argv[1]) as z:
    z.extractall(sys.argv[1] + '.d')
    for i in z.infolist():
        print(i.filename, i.file_size)
data = bytearray(open(sys.argv[1], 'rb').read())
start = info.header_offset + 30 + len(info.filename) + len(info.extra)
# 0xFF starts a final block of the reserved type 3: invalid at once.
data[start:start + info.compress_size] = b'\xff' * info.compress_size
open(sys.argv[1], 'wb').write(data)
)";
  std::string path = dir.file("python.zip");
  if (!runPython(kProgram, {path}, manifest)) return "";
  return path;
}

std::string listing(const qro_base::ZipFile& zip) {
  std::string out;
  for (const qro_base::ZipEntry* entry : zip.GetEntries()) {
    out += entry->GetName() + " " + std::to_string(entry->GetSize()) + "\n";
  }
  return out;
}

std::string readEntry(qro_base::ZipFile& zip, const char* name, bool* ok) {
  qro_base::ZipEntryInputStream in(zip, name);
  *ok = in.IsOpen();
  if (!in.IsOpen()) return "";
  std::string bytes(in.Available(), '\0');
  if (!bytes.empty()) {
    int read = in.Read(bytes.data(), static_cast<unsigned>(bytes.size()));
    *ok = read == static_cast<int>(bytes.size()) && in.Available() == 0;
  }
  in.Close();
  return bytes;
}

}  // namespace kelfont_test
