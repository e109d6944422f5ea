// The default package: both zip back ends list and read every entry, and
// the extracter copies the entries it knows into a data folder.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/ZipEntry.h"
#include "base/ZipEntryInputStream.h"
#include "base/ZipFile.h"
#include "fuzz/FuzzSupport.h"
#include "native/DefaultFontInfoFileExtracter.h"

namespace {

// Reads every entry of the archive to its end (at most 1 MiB each).
void readEntries(const std::string& path, bool useZZip) {
  qro_base::ZipFile zip(path.c_str(), useZZip);
  std::vector<char> buffer(4096);
  for (const qro_base::ZipEntry* entry : zip.GetEntries()) {
    qro_base::ZipEntryInputStream in(zip, entry->GetName().c_str());
    if (!in.IsOpen()) continue;
    unsigned total = 0;
    while (total < (1u << 20)) {
      int got = in.Read(buffer.data(), static_cast<unsigned>(buffer.size()));
      if (got <= 0) break;
      total += static_cast<unsigned>(got);
    }
    in.Read();
    in.Close();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!kelfont_fuzz::takeInput("package/qrfont.zip", data, size)) return 0;
  const std::string package = kelfont_fuzz::scratch() + "package/";
  const std::string storage = kelfont_fuzz::scratch() + "storage/";

  readEntries(package + "qrfont.zip", true);
  readEntries(package + "qrfont.zip", false);

  qro_ni::DefaultFontInfoFileExtracter extracter(storage, package);
  extracter.ExtractFontTable();
  extracter.ExtractFontChain();
  extracter.ExtractDefaultFontsList();
  extracter.ExtractScriptDefaultFontsList();
  extracter.ExtractScriptDefaultFontsList("ko-KR");
  for (int number = 0; number < 4; ++number) extracter.ExtractFontInfoData(number);
  extracter.Extract("../escape");
  extracter.Reload();
  extracter.ExtractFontTable();
  return 0;
}
